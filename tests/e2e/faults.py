# SPDX-FileCopyrightText: 2026 The Merivo Connections developers
# SPDX-License-Identifier: MIT
"""The catalogue of faults, and what comes of each."""

import collections
import dataclasses
import itertools
import re

from station import NO_ANSWER

# Richard's pump and Jane's, with whom the reader has it paired, and an import for Jane.
RICHARD, JANE, IMPORT = "MV-198305=P-2", "MV-204817=P-1", "+P-1"


@dataclasses.dataclass(frozen=True)
class Command:
    """How a user gets to a command, and what reader and database hold after a fault there."""
    way: str
    press: str  # the button that submits it, or another moment of the run before it
    before: list  # nothing of the command took effect
    done: list  # all of it did
    reader_only: list = None  # the reader executed it, but the host wasn't notified; as before where it changes nothing
    pairs: tuple = ()  # to start with
    also: tuple = ()  # faults that make the way possible


COMMANDS = {
    "BTISPAIRED": Command("read", "BEGIN", pairs=(JANE,), before=[RICHARD, JANE], done=[RICHARD, JANE, IMPORT]),
    "SEARCH": Command("add", "m_OverviewButton", before=[RICHARD], done=[RICHARD, JANE, IMPORT]),
    "BTPAIR": Command("add", "m_AssignButton", before=[RICHARD], done=[RICHARD, JANE, IMPORT]),
    "BTPAIRCONFIRM": Command("add", "m_ConfirmButton", before=[RICHARD], reader_only=[RICHARD, JANE],
                             done=[RICHARD, JANE, IMPORT]),
    "BTREAD": Command("read", "m_readPumpButton", pairs=(JANE,), before=[RICHARD, JANE], done=[RICHARD, JANE, IMPORT]),
    "BTPUMPREASSIGN": Command("reassign", "Ok", before=[RICHARD], reader_only=["MV-198305=P-1"],
                              done=["MV-198305=P-1", IMPORT]),
    "BTDELETEADDR": Command("remove", "Ok", pairs=(JANE,), before=[RICHARD, JANE], reader_only=[RICHARD],
                            done=[RICHARD]),
    "ABORT": Command("stop", "SEARCH-polling", also=("slow=2000@SEARCH",), before=[RICHARD], done=[RICHARD]),
}
ALL = tuple(COMMANDS)
ALL_BUT_ABORT = ALL[:-1]
WITH_NEXT_COMMAND = ("BTISPAIRED", "SEARCH", "BTPAIR", "BTPAIRCONFIRM", "BTPUMPREASSIGN")


@dataclasses.dataclass(frozen=True)
class Outcome:
    """The state above, a part of the message box's text, and parts of records with their level, in order."""
    state: str
    box: str = None
    log: tuple = ()


def done(*log):
    return Outcome("done", None, log)


def before(box, *log):
    return Outcome("before", box, tuple("Error " + text for text in log))


def reader_only(box, *log):
    return Outcome("reader_only", box, tuple("Error " + text for text in log))


def except_at(others, **by_command):
    """Outcomes that differ by the command."""
    return (others if isinstance(others, dict) else dict.fromkeys(ALL, others)) | by_command


# Of several outcomes in a list each is right.
NOT_STARTED = before(NO_ANSWER, "'Unstarted command'")
NOT_ENDED = before(NO_ANSWER, "'Unfinished command'")
# The add dialog polls its ABORT three seconds late, and waits in vain for a reader that had answered by then.
SUCCEEDS = except_at(done(), ABORT=[done(), NOT_STARTED])
NO_REACTION = except_at(NOT_ENDED, BTREAD=NOT_STARTED, ABORT=NOT_STARTED)
UNSEEN = reader_only(NO_ANSWER, "command' timeout during polling")
# The polling of an ABORT begins long after the reader's answer, and ends at once.
TOO_LATE = except_at(reader_only(NO_ANSWER, "'Unfinished command'"), ABORT=SUCCEEDS["ABORT"])
DRIVE_GONE = before(NO_ANSWER, "Error during polling")
DRIVE_GONE_AT_SUBMISSION = except_at(before(NO_ANSWER, "> failed", "Error during polling"),
                                     BTISPAIRED=before("No Sanvio Lumo device connected", "missing device reader"))
DRIVE_GONE_AFTER_TRIGGER = before(NO_ANSWER, "Status file open failed", "Error during polling")
# The drive can be back when the polling of an ABORT begins, without an answer to it.
DRIVE_GONE_FOR_A_WHILE = except_at(DRIVE_GONE, ABORT=[DRIVE_GONE, NOT_STARTED])
UNREADABLE = reader_only(NO_ANSWER, "Error during polling")
DIARY_GONE = reader_only("diary was closed or changed", "Diary closed or changed")
DIARY_GONE_BEFORE = before("diary was closed or changed", "Diary closed or changed")
DIARY_GONE_AND_DECLINED = Outcome("before", "The patient's diary was closed or changed. Nothing was imported.",
                                  ("Trace <BTPAIRCONFIRM 0> submitted", "Trace Pairing decline finished"))
OLD_FIRMWARE = before("old software version", "unsupported firmware version")
ABORTED_FIRST = done("Trace Prepare (abort old running) succeeded.")
SECOND_RUN_IGNORED = done("Trace execution ignored: another one is under way")
ASKED_AGAIN = done("Error 1. Paired pump query for patient 'P-1' not executed")
GIVEN_UP = SUCCEEDS | {
    "BTISPAIRED": before("Do you want to retry", "1. Paired pump query for patient 'P-1' not executed",
                         "2. Paired pump query"),
    "SEARCH": before(None, "Pairing search failed."),
    "BTPAIR": before(None, "Pairing process start failed."),
    "BTPAIRCONFIRM": before(None, "Pairing confirm failed."),
    "BTREAD": before(None, "Readout failed."),
    "BTPUMPREASSIGN": before(None, "Reassign failed."),
    "BTDELETEADDR": before(None, "Removing failed."),
}
# The command is through, and the next one can't be written or seen.
NEXT_DRIVE_GONE = except_at(DRIVE_GONE, BTPAIRCONFIRM=UNREADABLE, BTPUMPREASSIGN=UNREADABLE,
                            BTREAD=before(None, "Import refused: the file"))
NEXT_NOT_WRITTEN = except_at(
    before(NO_ANSWER, "> failed.", "command' timeout during polling"),
    BTPAIRCONFIRM=reader_only(NO_ANSWER, "> failed.", "command' timeout during polling"),
    BTPUMPREASSIGN=reader_only(NO_ANSWER, "> failed.", "command' timeout during polling"))
EMPTY_LIST = before("No device found", "Empty device list")
PUMP_WITHOUT_ADDRESS = Outcome("before", NO_ANSWER, ("Trace <BTPAIR", "Error 'Unfinished command'"))
NO_SUCH_PUMP = before("Pump communication error", "Error message box: code='31'")


def fails_with(code, box):
    """The reader ends a command with an error code. For a user who stops, a failed ABORT is no news."""
    message = f"Error message box: code='{code}'"
    return except_at(before(box, message, "failed:"), ABORT=SUCCEEDS["ABORT"],
                     BTISPAIRED=before(box, f"Paired pump query for patient 'P-1' failed: <{code} :", message))


@dataclasses.dataclass(frozen=True)
class Fault:
    """A fault at some commands. Each of its texts is one case; "{}" is replaced by the command, {press} by what submits
    it. Each of the numbers, in place of N, is a fault of its own."""
    outcomes: dict  # by text; an outcome, several in a list, or a dictionary of these by command
    commands: tuple
    numbers: object
    is_readers: bool


def reader(text, commands, outcome, once=None, numbers=(0,)):
    """A fault of the reader when it takes the command, and of one that has it only the first time."""
    return Fault({text + "@{}:once": once or outcome, text + "@{}": outcome}, commands, numbers, True)


def cut_status(commands, numbers, outcome):
    """A status that is rewritten in place, seen when it has so many bytes."""
    return Fault({"half-status=N@{}": outcome}, commands, numbers, True)


def at_start(text, outcome):
    """A reader that differs from its start on."""
    return Fault({text: outcome}, ("BTISPAIRED",), (0,), True)


def around(text, commands, outcome, numbers=(0,)):
    """A fault of drive, host, user or computer, with its moment after an @. Its part "slow" is the reader's."""
    return Fault({text: outcome}, commands, numbers, False)


FAULTS = [
    reader("no-start", ALL, NO_REACTION),
    reader("no-end", ALL, NOT_ENDED),
    reader("no-running", ALL, SUCCEEDS),
    reader("slow=700", ALL, SUCCEEDS),
    reader("slow=450000", ALL_BUT_ABORT, NO_REACTION),
    reader("fail=31", ALL, fails_with(31, "Pump communication error")),
    reader("fail=32", ALL, fails_with(32, "Connection lost")),
    reader("fail=110", ALL, fails_with(110, "Pairing not possible with this pump version")),
    reader("fail=124", ALL, fails_with(124, "Remove the pump from the Sanvio Merivo pump plugin")),
    reader("fail=140", ALL, fails_with(140, "remove the Sanvio Lumo device from the list")),
    reader("fail=999", ALL, fails_with(999, "Error Code: 999")),
    reader("fail-without-code", ALL, fails_with(0, "Error Code: 0")),
    reader("foreign-abort", ALL, GIVEN_UP, once=GIVEN_UP | {"BTISPAIRED": ASKED_AGAIN}),
    reader("stale-status", ALL, UNSEEN),
    reader("stale-until=2", ALL, SUCCEEDS),
    reader("stale-until=10", ALL_BUT_ABORT, SUCCEEDS),
    reader("same-header", ALL, SUCCEEDS),
    reader("header-only", ALL, UNSEEN),
    reader("unchanged-status", ALL, UNSEEN),
    reader("empty-status", ALL, UNREADABLE),
    reader("folder-status", ALL, UNREADABLE),
    reader("wrong-word=BTOTHER", ALL, UNSEEN),
    reader("lower-case-word", ALL, SUCCEEDS),
    reader("unknown-status-word", ALL, UNSEEN),
    reader("vanish=command", ALL, DRIVE_GONE),
    reader("vanish=running", ALL_BUT_ABORT, DRIVE_GONE),
    reader("vanish=done", (*WITH_NEXT_COMMAND, "BTREAD"), NEXT_DRIVE_GONE),
    reader("vanish=command,2000", ALL, DRIVE_GONE_FOR_A_WHILE),
    reader("vanish=running,500", ALL_BUT_ABORT, DRIVE_GONE),
    reader("vanish-folder=command", ALL, DRIVE_GONE),
    reader("vanish-folder=running", ALL_BUT_ABORT, DRIVE_GONE),
    reader("blocked-trigger=500", ALL, except_at(UNREADABLE, ABORT=[done(), NOT_STARTED, DRIVE_GONE])),
    reader("blocked-command=6000", WITH_NEXT_COMMAND, NEXT_NOT_WRITTEN),
    reader("blocked-command=300", ("BTREAD", "BTDELETEADDR", "ABORT"), SUCCEEDS),
    reader("list-missing", ("SEARCH",), EMPTY_LIST),
    reader("list-cut=30", ("SEARCH",), EMPTY_LIST),
    reader("list-cut=200", ("SEARCH",), PUMP_WITHOUT_ADDRESS),
    reader("list-devices=10000", ("SEARCH",), SUCCEEDS),
    reader("no-exchange-file", ("BTREAD",), before(None, "missing exchange file")),
    reader("two-exchange-files", ("BTREAD",), before(None, "To many (=2) exchange files found")),
    reader("exchange-folder", ("BTREAD",), before(None, "Import refused: the file")),
    reader("exchange-grows", ("BTREAD",), SUCCEEDS),
    reader("half-status=45", ("BTISPAIRED", "BTREAD"), SUCCEEDS),
    reader("half-status=N", ("SEARCH", "BTPAIR", "BTPAIRCONFIRM", "BTPUMPREASSIGN", "BTDELETEADDR", "ABORT"), SUCCEEDS,
           numbers=(1, 38, 45, 60, 66, 75, 90)),
    # After the word "done", what is cut off the result is lost.
    cut_status(("BTISPAIRED",), range(1, 67), SUCCEEDS),
    cut_status(("BTISPAIRED",), range(67, 81), before(None)),
    cut_status(("BTISPAIRED",), range(81, 87), NO_SUCH_PUMP),
    cut_status(("BTISPAIRED",), range(87, 104), SUCCEEDS),
    cut_status(("BTREAD",), range(1, 105), SUCCEEDS),

    at_start("old-firmware", OLD_FIRMWARE),
    at_start("log-missing", SUCCEEDS),
    at_start("log-binary", OLD_FIRMWARE),
    at_start("log-several", SUCCEEDS),
    at_start("log-several=3.2.22", OLD_FIRMWARE),
    at_start("left-running", ABORTED_FIRST),
    at_start("left-running=SEARCH", ABORTED_FIRST),

    around("pull@{press}", ALL_BUT_ABORT, DRIVE_GONE_AT_SUBMISSION),
    around("pull@{}", ALL, DRIVE_GONE),
    around("pull@{}-polling", ALL, except_at(DRIVE_GONE, ABORT=SUCCEEDS["ABORT"])),
    around("pull=900@{}", ALL, DRIVE_GONE_FOR_A_WHILE),
    around("slip-away@{}-polling", ALL_BUT_ABORT, DRIVE_GONE_AFTER_TRIGGER),
    around("clock=3600@{}-polling", ALL, TOO_LATE),
    around("clock=-3600@{}-polling", ALL, SUCCEEDS),
    around("restart@{} slow=2000@{}", ALL, NO_REACTION),
    # The reader hangs, and ends the command after the limit.
    around("stall@{}-started slow=500@{}", ALL_BUT_ABORT, TOO_LATE),
    around("no-space=0@{press}", ALL, NO_REACTION),
    around("kill=N@BTREAD", ("BTREAD",), [done(), before(None)], range(1, 13)),
    around("lock@BTREAD", ("BTREAD",), before(None, "locked by another program")),
    around("full-database=N@BTREAD", ("BTREAD",), before(None, "the drive is full"), range(1, 4)),
    # Changed before the MAC of the command's words, before the host reads it, and before the MAC that the host asks for
    # then. Only that last one counts.
    around("swap=N@BTREAD", ("BTREAD",), SUCCEEDS, range(1, 3)),
    around("swap=3@BTREAD", ("BTREAD",), before(None, "its MAC doesn't match the file")),
    around("change@{}", ALL, SUCCEEDS),
    around("delete@{}", ALL, DIARY_GONE),
    around("close-diary@{}", ALL, DIARY_GONE),
    around("other-diary=P-2@{}", ALL, DIARY_GONE),
    around("close-diary@m_readPumpButton", ("BTREAD",), DIARY_GONE_BEFORE),
    around("other-diary=P-2@m_removePumpButton", ("BTDELETEADDR",), DIARY_GONE_BEFORE),
    around("other-diary=P-2@m_ConfirmButton", ("BTPAIRCONFIRM",), DIARY_GONE_AND_DECLINED),
    around("other-diary=P-2@Yes", ("BTPUMPREASSIGN",), DIARY_GONE_BEFORE),
    around("other-diary=P-2@Yes", ("BTDELETEADDR",), DIARY_GONE_BEFORE),
    around("again@BEGIN", ("BTREAD",), SECOND_RUN_IGNORED),
    around("again@END", ("BTREAD",), SECOND_RUN_IGNORED),
]


@dataclasses.dataclass(frozen=True)
class Case:
    """One fault at one command."""
    name: str
    word: str
    command: Command
    reader_faults: tuple
    other_faults: tuple
    stays: bool  # the reader keeps the fault until it is replaced
    outcomes: list  # each with what reader and database hold then


def cases_of(fault):
    for number, word, (text, outcome) in itertools.product(fault.numbers, fault.commands, fault.outcomes.items()):
        command = COMMANDS[word]
        text = text.replace("=N", f"={number}").replace("{}", word).replace("{press}", command.press)
        readers = [part for part in text.split() if fault.is_readers or part.startswith("slow=")]
        others = [part for part in text.split() if part not in readers]
        name = re.sub("[^A-Za-z0-9]+", "-", text if word in text else f"{text}@{word}")
        outcome = outcome[word] if isinstance(outcome, dict) else outcome
        outcomes = [(one, getattr(command, one.state) or command.before)
                    for one in (outcome if isinstance(outcome, list) else [outcome])]
        yield Case(name, word, command, (*readers, *command.also), tuple(others),
                   fault.is_readers and not text.endswith(":once"), outcomes)


def all_cases():
    return [case for fault in FAULTS for case in cases_of(fault)]


def sample():
    """One case of each fault, at the command that was chosen least so far."""
    chosen, met = [], collections.Counter()
    for fault in FAULTS:
        case = min(cases_of(fault), key=lambda one: (met[one.word], met[one.word, one.stays]))
        met.update([case.word, (case.word, case.stays)])
        chosen.append(case)
    return chosen
