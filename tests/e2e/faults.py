# SPDX-FileCopyrightText: 2026 The Merivo Connections developers
# SPDX-License-Identifier: MIT
"""The catalogue of faults, and what comes of each."""

import collections
import dataclasses
import re

from station import NO_ANSWER

# Richard's pump and Jane's, with whom the reader has it paired, and an import for Jane.
RICHARD, JANE, IMPORT = "MV-198305=P-2", "MV-204817=P-1", "+P-1"


@dataclasses.dataclass(frozen=True)
class Command:
    """How a user gets to a command, and what reader and database hold after a fault there."""
    way: str
    before: list  # nothing of the command took effect
    done: list  # all of it did
    reader_only: list = None  # the reader carried it out, and the host wasn't told; as before where it changes nothing
    pairs: tuple = ()  # to start with
    also: tuple = ()  # faults that make the way possible


COMMANDS = {
    "BTISPAIRED": Command("read", pairs=(JANE,), before=[RICHARD, JANE], done=[RICHARD, JANE, IMPORT]),
    "SEARCH": Command("add", before=[RICHARD], done=[RICHARD, JANE, IMPORT]),
    "BTPAIR": Command("add", before=[RICHARD], done=[RICHARD, JANE, IMPORT]),
    "BTPAIRCONFIRM": Command("add", before=[RICHARD], reader_only=[RICHARD, JANE], done=[RICHARD, JANE, IMPORT]),
    "BTREAD": Command("read", pairs=(JANE,), before=[RICHARD, JANE], done=[RICHARD, JANE, IMPORT]),
    "BTPUMPREASSIGN": Command("reassign", before=[RICHARD], reader_only=["MV-198305=P-1"],
                              done=["MV-198305=P-1", IMPORT]),
    "BTDELETEADDR": Command("remove", pairs=(JANE,), before=[RICHARD, JANE], reader_only=[RICHARD], done=[RICHARD]),
    "ABORT": Command("stop", also=("slow=2000@SEARCH",), before=[RICHARD], done=[RICHARD]),
}
ALL = tuple(COMMANDS)
ALL_BUT_ABORT = ALL[:-1]
WITH_NEXT_COMMAND = ("BTISPAIRED", "SEARCH", "BTPAIR", "BTPAIRCONFIRM", "BTPUMPREASSIGN")


@dataclasses.dataclass(frozen=True)
class Outcome:
    """The state above, parts of the texts of the message boxes, and parts of records with their level, in order."""
    state: str
    boxes: tuple = ()
    log: tuple = ()


def outcome(state, box=None, *log):
    return Outcome(state, (box,) if box else (), tuple(tuple(record.split(" ", 1)) for record in log))


def before(box, *log):
    return outcome("before", box, *(f"Error {text}" for text in log))


def reader_only(box, *log):
    return outcome("reader_only", box, *(f"Error {text}" for text in log))


# Where commands differ, an outcome is a dictionary with the key None for the others. Of several in a list each is right.
NOT_STARTED = before(NO_ANSWER, "'Unstarted command'")
NOT_ENDED = before(NO_ANSWER, "'Unfinished command'")
# The add dialog polls its ABORT three seconds late, and waits in vain for a reader that had answered by then.
SUCCEEDS = {None: [outcome("done")], "ABORT": [outcome("done"), NOT_STARTED]}
NO_REACTION = {None: NOT_ENDED, "BTREAD": NOT_STARTED, "ABORT": NOT_STARTED}
UNSEEN = reader_only(NO_ANSWER, "command' timeout during polling")
TOO_LATE = reader_only(NO_ANSWER, "'Unfinished command'")
NO_READER = before("No Sanvio Lumo device connected", "missing device reader")
DRIVE_GONE_AT_SUBMISSION = before(NO_ANSWER, "> failed", "Error during polling")
DRIVE_GONE = before(NO_ANSWER, "Error during polling")
DRIVE_GONE_AFTER_TRIGGER = before(NO_ANSWER, "Status file open failed", "Error during polling")
UNREADABLE = reader_only(NO_ANSWER, "Error during polling")
DIARY_GONE = reader_only("diary was closed or changed", "Diary closed or changed")
DIARY_GONE_BEFORE = before("diary was closed or changed", "Diary closed or changed")
OLD_FIRMWARE = before("old software version", "unsupported firmware version")
ABORTED_FIRST = outcome("done", None, "Trace Prepare (abort old running) succeeded.")
SECOND_RUN_IGNORED = outcome("done", None, "Trace execution ignored: another one is under way")
ASKED_AGAIN = outcome("done", None, "Error 1. Paired pump query for patient 'P-1' not executed")
GIVEN_UP = {
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
NEXT_DRIVE_GONE = {None: DRIVE_GONE, "BTPAIRCONFIRM": UNREADABLE, "BTPUMPREASSIGN": UNREADABLE}
NEXT_NOT_WRITTEN = {None: before(NO_ANSWER, "> failed.", "command' timeout during polling"),
                    **dict.fromkeys(("BTPAIRCONFIRM", "BTPUMPREASSIGN"),
                                    reader_only(NO_ANSWER, "> failed.", "command' timeout during polling"))}
EMPTY_LIST = before("No device found", "Empty device list")
PUMP_WITHOUT_ADDRESS = outcome("before", NO_ANSWER, "Trace <BTPAIR", "Error 'Unfinished command'")
NO_PUMP = before(None)
NO_SUCH_PUMP = before("Pump communication error", "Error message box: code='31'")
NO_EXCHANGE_FILE = before(None, "missing exchange file")
TWO_EXCHANGE_FILES = before(None, "To many (=2) exchange files found")
IMPORT_REFUSED = before(None, "Import refused: the file")
DATABASE_LOCKED = before(None, "locked by another program")
DATABASE_FULL = before(None, "the drive is full")
MAC_WRONG = before(None, "its MAC doesn't match the file")
KILLED = before(None)


def fails_with(code, box):
    """The reader ends a command with an error code."""
    message = f"Error message box: code='{code}'"
    return {None: before(box, message, "failed:"),
            "BTISPAIRED": before(box, f"Paired pump query for patient 'P-1' failed: <{code} :", message)}


@dataclasses.dataclass(frozen=True)
class Fault:
    """A fault at some commands: of the reader when it takes the command, once and always; or others, which name their
    moment after an @ ("{}" is the command). Each of the numbers, in place of N, is a fault of its own."""
    text: str
    commands: tuple
    once: object  # outcome; None where it isn't tried
    always: object = None
    numbers: object = None
    where: str = "reader"


def reader(text, commands, comes_of_it, once=True, numbers=None):
    """What comes of a fault of the reader once and always; @p once differs, or isn't tried."""
    return Fault(text, commands, comes_of_it if once is True else once, comes_of_it, numbers)


def at_start(text, comes_of_it):
    """A reader that differs from its start on."""
    return Fault(text, ("BTISPAIRED",), None, comes_of_it, where="start")


def around(text, commands, comes_of_it, numbers=None):
    """A fault of drive, host, user or computer."""
    return Fault(text, commands, comes_of_it, numbers=numbers, where="around")


FAULTS = [
    reader("no-start", ALL, NO_REACTION),
    reader("no-end", ALL, NOT_ENDED),
    reader("no-running", ALL, SUCCEEDS),
    reader("slow=700", ALL, SUCCEEDS),
    reader("slow=450000", ALL_BUT_ABORT, NO_REACTION),
    reader("fail=31", ALL_BUT_ABORT, fails_with(31, "Pump communication error")),
    reader("fail=32", ALL_BUT_ABORT, fails_with(32, "Connection lost")),
    reader("fail=110", ALL_BUT_ABORT, fails_with(110, "Pairing not possible with this pump version")),
    reader("fail=124", ALL_BUT_ABORT, fails_with(124, "Remove the pump from the Sanvio Merivo pump plugin")),
    reader("fail=140", ALL_BUT_ABORT, fails_with(140, "remove the Sanvio Lumo device from the list")),
    reader("fail=999", ALL_BUT_ABORT, fails_with(999, "Error Code: 999")),
    reader("fail-without-code", ALL_BUT_ABORT, fails_with(0, "Error Code: 0")),
    # A failed ABORT is no news to a user who wanted to stop.
    reader("fail=31", ("ABORT",), SUCCEEDS),
    reader("fail=999", ("ABORT",), SUCCEEDS),
    reader("fail-without-code", ("ABORT",), SUCCEEDS),
    reader("foreign-abort", ("BTISPAIRED",), GIVEN_UP, once=ASKED_AGAIN),
    reader("foreign-abort", ALL_BUT_ABORT[1:], GIVEN_UP),
    reader("foreign-abort", ("ABORT",), SUCCEEDS),
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
    reader("vanish=done", WITH_NEXT_COMMAND, NEXT_DRIVE_GONE),
    reader("vanish=done", ("BTREAD",), IMPORT_REFUSED),
    reader("vanish=command,2000", ALL_BUT_ABORT, DRIVE_GONE),
    # The drive can be back when the polling of an ABORT begins, without an answer to it.
    reader("vanish=command,2000", ("ABORT",), [DRIVE_GONE, NOT_STARTED]),
    reader("vanish=running,500", ALL_BUT_ABORT, DRIVE_GONE),
    reader("vanish-folder=command", ALL, DRIVE_GONE),
    reader("vanish-folder=running", ALL_BUT_ABORT, DRIVE_GONE),
    reader("blocked-trigger=500", ALL_BUT_ABORT, UNREADABLE),
    reader("blocked-trigger=500", ("ABORT",), [outcome("done"), NOT_STARTED, DRIVE_GONE]),
    reader("blocked-command=6000", WITH_NEXT_COMMAND, NEXT_NOT_WRITTEN),
    reader("blocked-command=300", ("BTREAD", "BTDELETEADDR", "ABORT"), SUCCEEDS),
    reader("list-missing", ("SEARCH",), EMPTY_LIST),
    reader("list-cut=30", ("SEARCH",), EMPTY_LIST),
    reader("list-cut=200", ("SEARCH",), PUMP_WITHOUT_ADDRESS),
    reader("list-devices=10000", ("SEARCH",), SUCCEEDS),
    reader("no-exchange-file", ("BTREAD",), NO_EXCHANGE_FILE),
    reader("two-exchange-files", ("BTREAD",), TWO_EXCHANGE_FILES),
    reader("exchange-folder", ("BTREAD",), IMPORT_REFUSED),
    reader("exchange-grows", ("BTREAD",), SUCCEEDS),
    # A status that is rewritten in place is seen cut at each byte. After the word "done", what is cut off the result is
    # lost.
    reader("half-status=N", ("BTISPAIRED",), SUCCEEDS, once=None, numbers=range(1, 67)),
    reader("half-status=N", ("BTISPAIRED",), NO_PUMP, once=None, numbers=range(67, 81)),
    reader("half-status=N", ("BTISPAIRED",), NO_SUCH_PUMP, once=None, numbers=range(81, 87)),
    reader("half-status=N", ("BTISPAIRED",), SUCCEEDS, once=None, numbers=range(87, 104)),
    reader("half-status=N", ("BTREAD",), SUCCEEDS, once=None, numbers=range(1, 105)),
    Fault("half-status=45", ("BTISPAIRED", "BTREAD"), SUCCEEDS),
    reader("half-status=N", ("SEARCH", "BTPAIR", "BTPAIRCONFIRM", "BTPUMPREASSIGN", "BTDELETEADDR", "ABORT"), SUCCEEDS,
           numbers=(1, 38, 45, 60, 66, 75, 90)),

    at_start("old-firmware", OLD_FIRMWARE),
    at_start("log-missing", SUCCEEDS),
    at_start("log-binary", OLD_FIRMWARE),
    at_start("log-several", SUCCEEDS),
    at_start("log-several=3.2.22", OLD_FIRMWARE),
    at_start("left-running", ABORTED_FIRST),
    at_start("left-running=SEARCH", ABORTED_FIRST),

    around("pull@BEGIN", ("BTISPAIRED",), NO_READER),
    around("pull@m_OverviewButton", ("SEARCH",), DRIVE_GONE_AT_SUBMISSION),
    around("pull@m_AssignButton", ("BTPAIR",), DRIVE_GONE_AT_SUBMISSION),
    around("pull@m_ConfirmButton", ("BTPAIRCONFIRM",), DRIVE_GONE_AT_SUBMISSION),
    around("pull@m_readPumpButton", ("BTREAD",), DRIVE_GONE_AT_SUBMISSION),
    around("pull@Ok", ("BTPUMPREASSIGN", "BTDELETEADDR"), DRIVE_GONE_AT_SUBMISSION),
    around("pull@{}", ALL, DRIVE_GONE),
    around("pull@{}-polling", ALL_BUT_ABORT, DRIVE_GONE),
    around("slip-away@{}-polling", ALL_BUT_ABORT, DRIVE_GONE_AFTER_TRIGGER),
    around("pull=900@{}", ALL_BUT_ABORT, DRIVE_GONE),
    around("pull=900@{}", ("ABORT",), [DRIVE_GONE, NOT_STARTED]),
    around("clock=3600@{}-polling", ALL_BUT_ABORT, TOO_LATE),
    # The polling of an ABORT begins long after the reader's answer, and ends at once.
    around("pull@{}-polling", ("ABORT",), SUCCEEDS),
    around("clock=3600@{}-polling", ("ABORT",), SUCCEEDS),
    around("clock=-3600@{}-polling", ALL, SUCCEEDS),
    around("restart@{} slow=2000@{}", ALL, NO_REACTION),
    # The reader hangs, and ends the command after the limit.
    around("stall@{}-started slow=500@{}", ALL_BUT_ABORT, TOO_LATE),
    around("no-space=0@BEGIN", ("BTISPAIRED",), NO_REACTION),
    around("no-space=0@m_OverviewButton", ("SEARCH",), NO_REACTION),
    around("no-space=0@m_AssignButton", ("BTPAIR",), NO_REACTION),
    around("no-space=0@m_ConfirmButton", ("BTPAIRCONFIRM",), NO_REACTION),
    around("no-space=0@m_readPumpButton", ("BTREAD",), NO_REACTION),
    around("no-space=0@Ok", ("BTPUMPREASSIGN", "BTDELETEADDR"), NO_REACTION),
    around("no-space=0@SEARCH-polling", ("ABORT",), NO_REACTION),
    around("kill=N@BTREAD", ("BTREAD",), [outcome("done"), KILLED], numbers=range(1, 13)),
    around("lock@BTREAD", ("BTREAD",), DATABASE_LOCKED),
    around("full-database=N@BTREAD", ("BTREAD",), DATABASE_FULL, numbers=range(1, 4)),
    # Changed before the MAC of the command's words, before the host reads it, and before the MAC that the host asks for
    # then. Only that last one counts.
    around("swap=N@BTREAD", ("BTREAD",), SUCCEEDS, numbers=range(1, 3)),
    around("swap=3@BTREAD", ("BTREAD",), MAC_WRONG),
    around("change@{}", ALL, SUCCEEDS),
    around("delete@{}", ALL, DIARY_GONE),
    around("close-diary@{}", ALL, DIARY_GONE),
    around("other-diary=P-2@{}", ALL, DIARY_GONE),
    around("close-diary@m_readPumpButton", ("BTREAD",), DIARY_GONE_BEFORE),
    around("other-diary=P-2@m_removePumpButton", ("BTDELETEADDR",), DIARY_GONE_BEFORE),
    around("other-diary=P-2@Yes", ("BTPUMPREASSIGN", "BTDELETEADDR"), DIARY_GONE_BEFORE),
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
    outcomes: tuple

    def results(self):
        """The outcomes with what reader and database hold then."""
        return [(one, getattr(self.command, one.state) or self.command.before) for one in self.outcomes]


def all_cases():
    return [case for fault in FAULTS for case in cases_of(fault)]


def sample():
    """One case of each fault, two of one that can hit many commands, at those that were chosen least so far."""
    chosen, met = [], collections.Counter()
    for fault in FAULTS:
        rest = list(cases_of(fault))
        for _ in range(2 if len(rest) > 2 else 1):
            case = min(rest, key=lambda one: (met[one.word], met[one.word, one.stays]))
            rest.remove(case)
            chosen.append(case)
            met.update([case.word, (case.word, case.stays)])
    return chosen


def cases_of(fault):
    for value in fault.numbers or [0]:
        for word in fault.commands:
            for stays, result in ((False, fault.once), (True, fault.always)):
                if result is not None:
                    yield make_case(fault, fault.text.replace("=N", f"={value}"), word, stays, result)


def make_case(fault, text, word, stays, result):
    if isinstance(result, dict):
        result = result.get(word) or result[None]
    command = COMMANDS[word]
    if fault.where == "reader":
        text += f"@{word}" + ("" if stays else ":once")
    texts = text.replace("{}", word).split()
    is_readers = [fault.where != "around" or one.startswith("slow=") for one in texts]
    name = text.replace("{}", word) + ("" if word in text or "{}" in text else "@" + word)
    return Case(re.sub("[^A-Za-z0-9]+", "-", name), word, command,
                tuple(one for one, mine in zip(texts, is_readers) if mine) + command.also,
                tuple(one for one, mine in zip(texts, is_readers) if not mine), stays,
                tuple(result) if isinstance(result, list) else (result,))
