# SPDX-FileCopyrightText: 2026 The Merivo Connections developers
# SPDX-License-Identifier: MIT
import pathlib

import pytest
from station import ROOT, Station


def pytest_addoption(parser):
    parser.addoption("--build", type=pathlib.Path, default=ROOT / "build/dev", help="the build folder; build/dev")
    parser.addoption("--whole", action="store_true", help="run all cases, not only a sample; -k selects among all too")


def is_whole(config):
    return config.getoption("whole") or config.getoption("keyword")


def pytest_collection_modifyitems(items):
    items.sort(key=lambda item: item.name != "test_demo")  # the longest one first


@pytest.fixture
def build(request):
    return request.config.getoption("build").resolve()


@pytest.fixture
def make_station(build):
    """A function that makes stations. Of a test that fails, pytest shows their logs."""
    stations = []

    def make(*arguments, **named):
        stations.append(Station(build, *arguments, **named))
        return stations[-1]

    yield make
    for station in stations:
        for name in ("reader.log", "host.log", "errors"):
            lines = (station.folder / name).read_text(errors="replace").splitlines()
            print(f"--- {name}", *lines[-80:], sep="\n")
        station.discard()
