# SPDX-FileCopyrightText: 2026 The Merivo Connections developers
# SPDX-License-Identifier: MIT
"""Whole runs as a user goes through them, and what reader, database, dialog and log hold then."""

import signal
import subprocess

import pytest
from station import DECLINING, ENVIRONMENT, FOURTH, FREE, NO_ANSWER, RICHARDS, ROOT, kept_pairings, programs, pump


@pytest.fixture
def start(make_station):
    """A function that makes a station, and starts a run there."""
    return lambda *arguments, **named: make_station(*arguments, **named).run().agree()


def finish(station, result, *log):
    """Checks the result, parts of the log in their order, and that a run with a sound reader shows each one's pump."""
    station.start_reader()
    for patient in ("P-1", "P-2"):
        station.run(patient).agree().close()
    assert station.result() == result.split()
    text, position = (station.folder / "host.log").read_text(), 0
    for part in log:
        position = text.find(part, position)
        assert position >= 0, f"{part} isn't in the log, or not in its place:\n{text}"
    assert station.close() == 0


def search_and_choose(run, serial):
    return run.press("m_addPumpButton", "m_OverviewButton", serial)


def compare_code(run):
    search_and_choose(run, "MV-204817").press("m_AssignButton")
    return run.expect("m_AssignPage", m_AssignPairingCode="481207", disabled=["Cancel"])


def test_read(start):
    """Also if the host opens the diary of the same patient again. A second read-out imports nothing new."""
    run = start(["MV-204817=P-1"])
    run.press("m_readPumpButton").expect("PumpReadDialog", m_ProgressLabel="Download in progress...")
    run.station.order("diary P-1")
    run.press_escape().end()
    run.station.run().agree().press("m_readPumpButton").end()
    run.station.check_imports()
    finish(run.station, "MV-198305=P-2 MV-204817=P-1 +P-1", "<== <BTISPAIRED P-1> submitted.",
           '<== <BTREAD "MV-204817"> submitted.', "==> [Read Controller] Readout succeeded: status='2'.", "MAC verified",
           "--- Plugin component execution finishing", "already for the patient")


def test_pump_of_another_patient(start):
    run = start(["MV-204817=P-2"], pumps=[FREE])
    assert sorted(run.choices) == ["Close", "m_addPumpButton"]
    run.close()
    finish(run.station, "MV-204817=P-2", "=== Paired pump query for patient 'P-1' finished: snr=''.")


def test_add_and_read(start):
    run = start()
    run.press("m_addPumpButton").expect("m_StartPage")
    run.press("m_OverviewButton").expect("m_OverviewPage", disabled=["m_AssignButton"])
    assert list(run.choices.values()).count("row") == 4
    run.press("Cancel").agree()
    compare_code(run).press_escape().press("m_ConfirmButton").expect("m_ConfirmPage", Ok="")
    assert "m_ConfirmBusyLabel" not in run.view["labels"]
    run.press("Ok").end()
    finish(run.station, "MV-198305=P-2 MV-204817=P-1 +P-1", "<== [Add Controller] Start pairing search.",
           "==> [Add Controller] Pairing confirm succeeded: status='2'.",
           "<== [Read Controller] Start readout: snr='MV-204817'.", "MAC verified")


def test_decline(start):
    """By the user, also where the reader fails at it, by the pump's user, and by one who walks away."""
    run = start()
    compare_code(run).press("m_DeclineButton").agree()
    run.station.start_reader("fail=32@BTPAIRCONFIRM")
    compare_code(run).press("m_DeclineButton").agree()
    run.station.start_reader()
    search_and_choose(run, DECLINING["serialNumber"]).press("m_AssignButton", "m_ConfirmButton")
    run.answer("Ok", "Error Code: 21").agree()
    run.station.start_reader(pumps=[pump("MV-220022", FOURTH["address"], user="walks away")])
    search_and_choose(run, "MV-220022").press("m_AssignButton", "m_ConfirmButton")
    run.answer("Ok", "Connection lost").agree().close()
    finish(run.station, "MV-198305=P-2", "==> [Add Controller] Pairing decline finished: status='2'.",
           "==> [Add Controller] Pairing decline finished: status='1'.",
           "=!= [Add Controller] Pairing confirm failed: status='1'.",
           "=!= [Add Controller] Pairing confirm failed: status='1'.")


def test_search_finds_nothing_or_is_stopped(start):
    """A pump in the fourth row counts as none."""
    run = start(pumps=[])
    run.press("m_addPumpButton", "m_OverviewButton").answer("Ok", "No device found.")
    run.station.start_reader("slow=9000@SEARCH", "slow=3200@ABORT", pumps=[FREE, DECLINING, RICHARDS, FOURTH])
    run.press("m_OverviewButton").expect("PumpAddDialog", m_OverviewButton="Abort")
    run.press_escape().press("m_OverviewButton").expect("PumpAddDialog", m_OverviewButton="Search")
    run.station.start_reader()
    run.press("m_OverviewButton", "MV-220022", "m_AssignButton").answer("Ok", "No device selected.")
    run.agree().close()
    finish(run.station, "MV-198305=P-2", "=!= [Add Controller] Empty device list.", "<== <ABORT > submitted.",
           "=!= [Add Controller] Pairing search stopped: status='3'.")


def test_stop_is_not_answered(start):
    """After a stop without an answer, Search acts as Stop."""
    run = start(faults=["slow=9000@SEARCH", "no-start@ABORT"])
    run.press("m_addPumpButton", "m_OverviewButton", "m_OverviewButton").answer("Ok", NO_ANSWER).agree()
    run.press("m_addPumpButton", "m_OverviewButton").expect("PumpAddDialog", m_OverviewButton="Search", Cancel="")
    run.press("Cancel").agree().close()
    finish(run.station, "MV-198305=P-2", "=== Observer canceling.", "<== <ABORT > submitted.", "--- Cancel during polling",
           "--- 'Unstarted command' timeout during polling", "<== <ABORT > submitted.", "--- Cancel during polling")


def test_pump_of_a_deleted_patient_is_free(start):
    """And is selected already, as the only one; after the pairing nothing is read."""
    run = start(pumps=[FREE | {"patientId": "gone-1"}])
    run.press("m_addPumpButton", "m_OverviewButton").expect("m_OverviewPage", m_AssignButton="Assign")
    end = run.now + 3  # nobody waits until the reader has forgotten the pairing
    run.wait(lambda: run.now > end, "a pause")
    run.press("m_AssignButton").expect("m_AssignPage", m_AssignPairingCode="481207")
    run.press("m_ConfirmButton").expect("m_ConfirmPage", Ok="").press("Cancel").agree()
    assert "MV-204817" in run.label
    run.close()
    finish(run.station, "MV-204817=P-1",
           "=== [Add Controller] Deprecated pairing info (puid='gone-1', snr='MV-204817') removed.",
           "==> [Add Controller] Pairing confirm succeeded: status='2'.")


def test_reassign(start):
    """After a No, a step back and a Yes; the pump is read for its new patient."""
    run = start()
    search_and_choose(run, "MV-198305").expect("m_OverviewPage", m_AssignButton="Reassign")
    run.press("m_AssignButton").expect("m_ReassignPage").press("Ok")
    run.answer("No", "reassign the pump MV-198305 from patient 'Roe, Richard' to patient 'Doe, Jane'?")
    run.press("m_OverviewButton").expect("m_OverviewPage").press("Cancel").agree()
    search_and_choose(run, "MV-198305").press("m_AssignButton", "Ok", "Yes").end()
    finish(run.station, "MV-198305=P-1 +P-1", '<== <BTPUMPREASSIGN "MV-198305" P-1> submitted.',
           "==> [Add Controller] Reassign succeeded: status='2'.", "MAC verified")


def test_remove(start):
    """After a No, a Cancel and a failure."""
    run = start(["MV-204817=P-1"])
    run.press("m_removePumpButton").expect("PumpRemoveDialog", Ok="")
    assert list(run.choices.values()).count("row") == 1
    run.press("Ok").answer("No", "assignment of the pump MV-204817 to patient record Doe, Jane").press("Cancel")
    run.station.start_reader("slow=1500@BTDELETEADDR", "fail=31@BTDELETEADDR")
    run.agree().press("m_removePumpButton", "Ok", "Yes").expect("PumpRemoveDialog", disabled=["Ok", "Cancel"])
    run.press_escape().answer("Ok", "Pump communication error").agree()
    assert "MV-204817" in run.label
    run.station.start_reader()
    run.press("m_removePumpButton", "Ok", "Yes")
    run.expect("MainDialog", m_pumpAssignLabel="No pump assigned", m_addPumpButton="").close()
    finish(run.station, "MV-198305=P-2", "=!= [Remove Controller] Removing failed: error='31'.",
           "==> [Remove Controller] Removing succeeded: status='2'.")


def test_demo(build, tmp_path):
    """The programs themselves, by the system's clock. The pairings outlive a reader that is killed."""
    (tmp_path / "drive").mkdir()
    serve = [programs(build)["reader"], "--scenario", ROOT / "tools/reader/scenarios/clinic.json",
             "--log", tmp_path / "reader.log", tmp_path / "drive"]
    work = [programs(build)["host"], "--database", tmp_path / "db", "--drive", tmp_path / "drive", "--log",
            tmp_path / "host.log", "--robot", ROOT / "tools/demo/demo.steps", "--pictures", tmp_path]
    for is_first in (True, False):
        with subprocess.Popen(serve, env=ENVIRONMENT, stdout=subprocess.PIPE, text=True) as reader:
            try:
                assert "serving" in reader.stdout.readline()
                assert kept_pairings(tmp_path / "drive").get("MV-219034") == ("P-1001" if is_first else "P-1003")
                if is_first:
                    host = subprocess.run(work, env=ENVIRONMENT, capture_output=True, text=True, timeout=400)
                    assert host.returncode == 0, host.stdout + host.stderr + (tmp_path / "host.log").read_text()[-5000:]
            finally:
                reader.send_signal(signal.SIGKILL)
    assert len(list(tmp_path.glob("*.png"))) == 20

