# SPDX-FileCopyrightText: 2026 The Merivo Connections developers
# SPDX-License-Identifier: MIT
"""Each fault of the catalogue at the commands that it can hit, each failing file operation, and random faults. After a
fault nothing is lost, and the next run works."""

import collections
import itertools
import random
import signal
import subprocess

import faults
from conftest import is_whole
from station import ENVIRONMENT, FREE, RICHARDS, TIMES, Unexpected, Wrong, plain, programs

FILE_FAILURES = ["open", "read", "cut-read", "write", "no-space", "close", "list", "kill", "full-database"]
# For cases that go through all file operations: each state of a command is seen by few polls.
FEW_POLLS = TIMES | {"pickup": 600, "isPaired": 210, "search": 210, "pair": 210, "read": 210}


SEARCH = ["m_addPumpButton", "m_OverviewButton"]
WAYS = {
    "read": ["m_readPumpButton"],
    "add": [*SEARCH, FREE["serialNumber"], "m_AssignButton", "m_ConfirmButton", "Ok"],
    "remove": ["m_removePumpButton", "Ok", "Yes"],
    "reassign": [*SEARCH, RICHARDS["serialNumber"], "m_AssignButton", "Ok", "Yes"],
    "stop": [*SEARCH, "m_OverviewButton"],
}


def go(run, way, yes="Yes"):
    """Goes a way as far as it is open, or wanders, and leaves."""
    try:
        way(run) if callable(way) else run.press(*WAYS[way])
    except Unexpected:
        pass  # the outcome is compared
    return run.leave(yes)


def check_next_run(station, renews_reader):
    """A run without faults reads the patient's pump, after adding it if need be."""
    if renews_reader or station.reader_error:
        station.start_reader()
    run = station.run()
    run.wait(lambda: run.choices, "the main dialog")
    run.expect("MainDialog")
    station.check_label("P-1", run.label)
    go(run, "read" if "m_readPumpButton" in run.choices else "add")
    assert not run.boxes and any("MAC verified" in record or "already for the patient" in record
                                 for record in run.records), f"the next run doesn't work: {run.seen()} {run.boxes}"
    station.check_imports()
    assert station.close() == 0, "the host crashes at its end"


def carry_out(station, way, injected=(), yes="Yes"):
    """A run with faults, whose process may be killed."""
    run = station.run(faults=injected)
    try:
        go(run, way, yes)
    except Wrong:
        if station.process.poll() != -signal.SIGKILL or not any("kill" in fault for fault in injected):
            raise
        run.failures = 1
        run.undo.close()
        station.start_host()
        station.start_reader()
    if station.reader_error or not (station.drive / "MISC").exists():
        station.start_reader()
    station.check_imports()
    return run


def pytest_generate_tests(metafunc):
    whole = is_whole(metafunc.config)
    if "seed" in metafunc.fixturenames:
        metafunc.parametrize("seed", range(1, 101 if whole else 5))
    if "case" in metafunc.fixturenames:
        metafunc.parametrize("case", faults.all_cases() if whole else faults.sample(), ids=lambda case: case.name)
    if "failure" in metafunc.fixturenames:
        ways = ["read", "add", "remove", "reassign"]
        chosen = itertools.product(FILE_FAILURES, ways) if whole else zip(FILE_FAILURES, itertools.cycle(ways))
        metafunc.parametrize("failure, way", chosen)


def test_failing_file_operation(failure, way, make_station, request):
    """The 1st, 2nd, 3rd ... operation fails, until a run passes without coming to it; in the sample a few of them."""
    has_failed = False
    for turn in itertools.count(1) if is_whole(request.config) else (1, 6):
        station = make_station([faults.JANE] if way in ("read", "remove") else [], times=FEW_POLLS)
        run = carry_out(station, way, [f"{failure}={turn}@BEGIN"])
        if not run.failures:
            break
        has_failed = True
        check_next_run(station, False)
    assert has_failed != (way == "remove" and failure in ("kill", "full-database"))  # a removal writes nothing there


def test_fault(case, make_station):
    station = make_station(case.command.pairs, case.reader_faults)
    run = carry_out(station, case.command.way, case.other_faults)
    matching = [one for one, result in case.outcomes if matches(one, result, run)]
    expected = "\n  or ".join(f"{result}, box {one.box}, log {one.log}" for one, result in case.outcomes)
    failures = [record for record in run.records if not record.startswith("Trace") or "Trace ---" in record]
    assert matching, f"expected: {expected}\nseen: {station.result()}, boxes {run.boxes}, log {failures}"
    # The session doesn't know what only the reader knows. A cut status is taken for a whole one.
    if matching[0].state != "reader_only" and "half-status" not in case.name:
        station.check_label("P-1", run.label)
    check_next_run(station, case.stays)


def matches(outcome, result, run):
    records = iter(run.records)  # each part is searched for after the one before
    level_and_text = [part.split(" ", 1) for part in outcome.log]
    return (run.station.result() == result and len(run.boxes) == (1 if outcome.box else 0)
            and all(outcome.box in text for text in run.boxes)
            and all(any(record.startswith(level) and text in record for record in records)
                    for level, text in level_and_text))


def wander(run, chance):
    """Presses without an aim for some steps."""
    for _ in range(14):
        run.wait(lambda: run.choices, "something to press")
        if run.view["window"] == "box":
            run.boxes.append(plain(run.view["text"]))
        if run.is_busy() and chance.random() < 0.75:
            run.wait(lambda: not run.is_busy(), "an end")
        else:
            run.push(chance.choice(sorted(run.choices)))


def test_random_faults(seed, make_station):
    """Up to three faults and three runs. Nothing may be lost."""
    chance = random.Random(seed)
    chosen = chance.choices(faults.FAULTS, k=chance.randint(1, 3))
    cases = [chance.choice(list(faults.cases_of(fault))) for fault in chosen]
    station = make_station(chance.choice([[], ["MV-204817=P-1"], ["MV-211460=P-1"]]),
                           [fault for case in cases for fault in case.reader_faults])
    print("injected:", *(case.name for case in cases))
    injected = [fault for case in cases for fault in case.other_faults]
    for _ in range(3):
        way = chance.choice(["add", "stop", "remove", *[lambda run: wander(run, chance)] * 3])
        run = carry_out(station, way, injected, "No")
        print("pressed:", run.presses, "boxes:", run.boxes)
        injected = []
        if not run.boxes and not any("half-status" in case.name for case in cases):
            station.check_label("P-1", run.label)
    check_next_run(station, True)


def test_stale_drive(build, request):
    """No command takes the result of another one from a drive that shows old statuses first."""
    count = "10000" if is_whole(request.config) else "1000"
    subprocess.run([programs(build)["station"], "stale-drive", count], env=ENVIRONMENT, check=True)
