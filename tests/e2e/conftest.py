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


@pytest.hookimpl(hookwrapper=True)
def pytest_runtest_makereport(item, call):
    report = (yield).get_result()
    for station in getattr(item, "stations", []) if report.failed else []:
        for name in ("reader.log", "host.log", "errors"):
            text = (station.folder / name).read_text(errors="replace") if (station.folder / name).exists() else ""
            report.sections.append((name, "\n".join(text.splitlines()[-80:])))


@pytest.fixture
def build(request):
    return request.config.getoption("build").resolve()


@pytest.fixture
def make_station(request, build):
    request.node.stations = []

    def make(*arguments, **named):
        station = Station(build, *arguments, **named)
        request.node.stations.append(station)
        return station

    yield make
    for station in request.node.stations:
        station.discard()
