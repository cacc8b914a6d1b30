# SPDX-FileCopyrightText: 2026 The Merivo Connections developers
# SPDX-License-Identifier: MIT
"""A station: the built plug-in in a host, a simulated reader, and a user who presses what the dialogs offer.

Host and reader are two threads of one process, e2e_station, on a clock that jumps while both wait: a time-out of seven
minutes takes seconds, and each run takes the same course again. The process stops after each report, and the clock
with it, so nothing happens while a test decides."""

import contextlib
import hashlib
import hmac
import json
import os
import pathlib
import re
import shutil
import sqlite3
import subprocess
import tempfile

ROOT = pathlib.Path(__file__).resolve().parents[2]
TITLE = "Sanvio Merivo Pump Plugin"
NO_ANSWER = "The Sanvio Lumo device is not responding."
# Seconds of the station's clock.
MAX_LATENESS = 2  # of a time-out
PATIENCE = 30  # for the pauses around a command
MAX_RUN = 3000
# How many seconds the reader has for a command, and to begin it where that is less.
LIMITS = {"SEARCH": 120, "BTPAIR": 120, "BTPAIRCONFIRM": 60, "BTPUMPREASSIGN": 30, "BTREAD": 440}
BEGIN_LIMITS = {"BTREAD": 20}

# Slow enough for the polling to see each state of a command.
TIMES = {"pickup": 900, "isPaired": 30, "search": 300, "connect": 150, "pair": 300, "confirm": 150, "read": 900,
         "reassign": 150, "remove": 150, "abort": 150, "userLimit": 9000, "progress": 300}


def pump(serial, address, code="000000", patient="", user="confirms"):
    return {"serialNumber": serial, "address": address, "confirmationCode": code, "patientId": patient,
            "user": {"does": user, "afterMs": 100}}


FREE = pump("MV-204817", "00:1E:42:7A:03:11", "481207")
DECLINING = pump("MV-211460", "00:1E:42:7A:09:5B", "905518", user="declines")
RICHARDS = pump("MV-198305", "00:1E:42:7A:05:C4", patient="P-2")
FOURTH = pump("MV-220022", "00:1E:42:7A:00:22", "220022")

ENVIRONMENT = {"ASAN_OPTIONS": "detect_leaks=0"} | os.environ | {
    "QT_QPA_PLATFORM": "offscreen", "LC_ALL": "C.UTF-8", "TZ": "UTC", "QT_LOGGING_RULES": "*.debug=false"}


def programs(build):
    """The paths of the built programs by their names."""
    return json.loads((build / "tests/e2e/programs.json").read_text())


def kept_pairings(drive):
    """Patients by the serial numbers of their pumps, as the reader keeps them."""
    pumps = json.loads((drive / ".merivo-reader.json").read_text())["pumps"]
    return {pump["serialNumber"]: pump["patientId"] for pump in pumps if pump.get("patientId")}


def plain(rich_text):
    return re.sub("<[^>]*>", "", re.sub("<br/?>", " ", rich_text))


class Wrong(AssertionError):
    """Something that must never happen."""


class Unexpected(AssertionError):
    """The user waits for something that doesn't come."""


class Station:
    """A folder with a reader's drive and a host's database, and the process that works on them."""

    def __init__(self, build, pairs=(), faults=(), pumps=(FREE, DECLINING, RICHARDS, FOURTH), times=TIMES):
        self.paths = programs(build)
        memory = "/dev/shm" if os.access("/dev/shm", os.W_OK) else None
        self.folder = pathlib.Path(tempfile.mkdtemp(prefix="merivo-e2e-", dir=memory))
        self.drive = self.folder / "drive"
        self.away = self.folder / "drive.away"
        self.database = self.folder / "db"
        self.drive.mkdir()
        owners = dict(pair.split("=") for pair in pairs)
        self.world = {"times": times, "pumps": [one | {"patientId": owners.get(one["serialNumber"], one["patientId"])}
                                                for one in pumps]}
        self.faults = faults
        self.imports = {}
        self.start_host()
        self.start_reader(*faults)

    def close(self):
        """Ends the host as its user does; returns its exit status."""
        self.process.stdin.close()
        return self.process.wait()

    def discard(self):
        self.process.kill()
        self.process.wait()
        self.process.stdout.close()
        shutil.rmtree(self.folder)

    def start_host(self):
        with open(self.folder / "errors", "a") as errors:
            self.process = subprocess.Popen([self.paths["station"], self.paths["plugin"], self.folder],
                                            env=ENVIRONMENT, stdin=subprocess.PIPE, stdout=subprocess.PIPE,
                                            stderr=errors, encoding="utf-8")
        self.on_report = lambda report: None  # of the run under way
        self.presses = 0  # a report that counts fewer is outdated
        self.next_report()
        for patient in ("P-1 Doe Jane 1970-02-03", "P-2 Roe Richard"):
            self.order("add", patient)  # which fails if an earlier host has added it

    def order_reader(self, *faults, pumps=None):
        """Replaces the reader. The new one has the same pumps if no others are named."""
        if self.away.exists():
            self.away.rename(self.drive)
        self.world |= {"faults": faults} | ({} if pumps is None else {"pumps": pumps})
        (self.folder / "world.json").write_text(json.dumps(self.world))
        self.reader_error = "not started"
        self.order("reader")

    def start_reader(self, *faults, pumps=None):
        """Replaces the reader, and waits until the new one serves the drive."""
        self.order_reader(*faults, pumps=pumps)
        while self.reader_error == "not started":
            self.go_on()
        if self.reader_error:
            raise Wrong("no reader: " + self.reader_error)

    def order(self, *words):
        with contextlib.suppress(BrokenPipeError):  # next_report() finds out
            self.process.stdin.write(" ".join(map(str, words)) + "\n")
            self.process.stdin.flush()

    def go_on(self):
        """Lets host and reader go on until the next report."""
        self.order("go")
        self.on_report(self.next_report())

    def next_report(self):
        line = self.process.stdout.readline()
        if not line:
            errors = (self.folder / "errors").read_text(errors="replace")
            raise Wrong(f"the host ended with {self.process.wait()}: {errors[-3000:]}")
        report = json.loads(line)
        if "reader" in report:
            self.reader_error = report["reader"]  # empty while it serves
        return report

    def pairings(self):
        return kept_pairings(self.away if self.away.exists() else self.drive)

    def check_label(self, patient, label):
        """Checks what the main dialog shows, if it does, against what the reader keeps."""
        serials = [serial for serial, owner in self.pairings().items() if owner == patient]
        if len(serials) > 1:
            raise Wrong(f"the reader keeps {serials} for {patient}")
        if label and label != (f"Assigned pump: Serial number '{serials[0]}'." if serials else "No pump assigned"):
            raise Wrong(f'the session of {patient} shows "{label}", the reader keeps {serials}')

    def check_imports(self):
        """Checks that each import is whole and belongs to the patient whose pump the reader keeps."""
        kept = self.pairings()
        with contextlib.closing(sqlite3.connect(self.database)) as database:
            if database.execute("PRAGMA integrity_check").fetchone() != ("ok",):
                raise Wrong("the database is damaged")
            guid = database.execute("SELECT value FROM meta WHERE key = 'guid'").fetchone()[0]
            rows = database.execute("SELECT id, puid, file_name, mac, bytes FROM imports"
                                    " LEFT JOIN import_files ON import_id = id").fetchall()
        shared = re.findall(r"0x([0-9a-f]{2})", (ROOT / "src/hostapi/SharedKey.h").read_text())
        key = ("".join(shared) + guid).encode()
        for number, puid, name, mac, content in rows:
            if content is None or hmac.new(key, content, hashlib.sha256).hexdigest() != mac:
                raise Wrong(f"the import of {name} isn't what its MAC was made of")
            if number in self.imports:
                continue
            if kept.get(re.match(r"I(.+)_", name)[1]) != puid:
                raise Wrong(f"{name} was imported for {puid}, who doesn't have that pump")
            if len(content) < 10000 or content != (self.drive / "MISC" / name).read_bytes():
                raise Wrong(f"the import of {name} differs from the file on the drive")
        imports = {row[0]: row[1] for row in rows}
        if self.imports.items() - imports.items():
            raise Wrong("an import has disappeared")
        self.imports = imports

    def result(self):
        """The pairings that the reader keeps and, with a plus sign, whose the imports are."""
        return ([f"{serial}={owner}" for serial, owner in sorted(self.pairings().items())]
                + ["+" + owner for owner in self.imports.values()])

    def run(self, patient="P-1", faults=()):
        return Run(self, patient, faults)


class Run:
    """One run of the plug-in: what its user does, what is injected, and what came of it."""

    def __init__(self, station, patient, faults):
        self.station = station
        self.patient = patient
        self.faults = list(faults)
        self.boxes, self.records, self.presses = [], [], []
        self.undo = contextlib.ExitStack()  # of faults, at the end of the run
        self.is_reader_due = False
        self.view = {}  # what the window in front shows; empty from a press until its effect
        self.label = None  # of the main dialog, since the last command
        self.ended = False
        self.failures = 0  # of file operations
        self.command, self.limit = "BTISPAIRED", 20
        self.clock_shift = 0
        self.now = self.begin = self.idle_since = 0
        station.on_report = self.on_report
        station.order("diary", patient)
        self.inject("BEGIN")
        station.order("run")

    # What the user does.

    @property
    def choices(self):
        return self.view.get("choices", {})

    def press(self, *names):
        """Presses buttons and rows of tables, each once it is offered. Fails if something else is offered instead, such
        as a message box's Ok."""
        for name in names:
            while name not in self.choices or (name == "Ok" and self.view["window"] == "box"):
                if self.ended or (self.choices and not self.is_busy()):
                    raise Unexpected(f"expected {name}\nseen: {self.seen()}")
                self.station.go_on()
            self.push(name)
        return self

    def push(self, name):
        self.presses.append(name)
        self.inject(name)
        self.view = {}
        self.idle_since = self.now
        self.station.presses += 1
        self.station.order("press", name)

    def press_escape(self):
        self.station.order("escape")
        return self

    def answer(self, name, text):
        """Waits for a message box with that text, and presses its button."""
        self.wait(lambda: self.view.get("window") == "box", f'a box with "{text}"')
        if self.view["title"] != TITLE or text not in plain(self.view["text"]) or name not in self.choices:
            raise Unexpected(f'expected a box "{TITLE}" with "{text}" and {name}\nseen: {self.seen()}')
        self.push(name)
        return self

    def expect(self, place, disabled=(), **labels):
        """Waits until a window or page is in front, with texts of labels and buttons, and disabled buttons."""
        def is_shown():
            texts = self.view.get("labels", {}) | self.choices
            return (place in (self.view.get("window"), self.view.get("page")) and not set(disabled) & set(self.choices)
                    and all(name in texts and text in texts[name] for name, text in labels.items()))
        self.wait(is_shown, f"{place} {labels or ''}, disabled {disabled}")
        return self

    def leave(self, yes="Yes"):
        """Answers and closes what is open until the run ends. Texts of boxes are kept."""
        while not self.ended:
            names = [yes, "No", "Cancel", "Close", "Ok"] + ["m_OverviewButton", "m_DeclineButton"] * (yes != "Yes")
            offered = [name for name in names if name in self.choices and not self.is_busy()]
            if not offered:
                self.station.go_on()
                continue
            if self.view["window"] == "box":
                if self.view["title"] != TITLE:
                    raise Wrong(f"a box with a title of its own: {self.view['title']}")
                self.boxes.append(plain(self.view["text"]))
            self.push("No" if "retry" in self.view["text"] else offered[0])
        return self

    def close(self):
        return self.press("Close").end()

    def end(self):
        """Waits until the run ends by itself."""
        self.wait(lambda: self.ended, "the end of the run")
        return self

    def wait(self, condition, what):
        begin = None
        while not condition():
            begin = begin or self.now
            # What is offered in vain for so long won't change.
            if self.ended or (self.now == self.idle_since and self.now - begin > PATIENCE):
                raise Unexpected(f"expected {what}\nseen: {self.seen()}")
            self.station.go_on()

    def agree(self):
        """Checks dialog, reader and database against each other."""
        self.wait(lambda: self.label, "the main dialog")
        self.station.check_label(self.patient, self.label)
        self.station.check_imports()
        return self

    def seen(self):
        if self.ended:
            return f"the run ended, {self.records[-4:]}"
        return f"{self.view.get('window')} {self.view.get('text')} {self.view.get('labels')} {list(self.choices)}"

    def is_busy(self):
        """Returns whether the only available button stops the current operation."""
        is_reading = self.view.get("window") == "PumpReadDialog" and "m_ReadButton" not in self.choices
        return is_reading or list(self.choices) == ["m_OverviewButton"] == self.presses[-1:]

    # What happens.

    def on_report(self, report):
        self.now = report["at"] / 1000
        self.begin = self.begin or self.now
        self.idle_since = self.idle_since or self.now
        if "record" in report:
            self.on_record(report["record"], report["level"])
        elif "due" in report and self.is_reader_due:  # and wasn't asked for by an earlier run
            self.is_reader_due = False
            self.station.order_reader(*self.station.faults)
        elif "ended" in report:
            self.ended = True
            self.failures = report["failures"]
            self.undo.close()
        elif "seen" in report and report["presses"] == self.station.presses:
            self.view = report["seen"]
            if self.view.get("window") == "MainDialog" and self.choices:
                self.label = self.view["labels"].get("m_pumpAssignLabel")
        shift = max(0, -self.clock_shift)  # a clock that is set back moves the limits
        if not self.view or (self.choices and not self.is_busy()):
            self.idle_since = self.now
        elif self.now - self.idle_since > self.limit + shift + PATIENCE:
            raise Wrong(f"no answer to {self.command} and no end: {self.seen()}")
        if self.now - self.begin > MAX_RUN + shift:
            raise Wrong(f"the run doesn't end: {self.seen()}")

    def on_record(self, text, level):
        self.records.append(f"{level} {text}")
        if late := re.search(r"command' timeout .*?: (\d+) of", text):
            if int(late[1]) > 1000 * (self.limit + MAX_LATENESS) and not self.clock_shift:
                raise Wrong(f"a time-out of {self.command} came too late: {text}")
            self.station.order("stall off")
        if submission := re.match("(?:<==|=!=) <([A-Z]+) .*> (?:submitted|failed)", text):
            self.command, self.label = submission[1], None
            self.limit = BEGIN_LIMITS.get(self.command, LIMITS.get(self.command, 20))
            self.idle_since = self.now
            self.inject(self.command)
        elif "Observer polling started" in text:
            self.inject(self.command + "-polling")
        elif text == "Observed operation started.":
            self.limit = LIMITS.get(self.command, 20)
            self.inject(self.command + "-started")
        elif text == "--- Plugin component execution finishing":
            self.inject("END")

    # Faults of everything but the reader, written NAME[=VALUE]@WHEN.

    def inject(self, moment):
        """Injects what is due when a command is submitted, its polling or it itself has started, before a press, and at
        BEGIN and END of the run."""
        for fault in list(self.faults):
            text, _, when = fault.partition("@")
            if when == moment:
                self.faults.remove(fault)
                name, _, value = text.partition("=")
                self.inject_fault(name, value)

    def inject_fault(self, name, value):
        station = self.station
        match name:
            case "pull":
                station.drive.rename(station.away)
                self.undo.callback(self.put_back)
                self.replace_reader_after(value)
            case "restart":
                self.replace_reader_after(1200)
            case "stall":  # until the plug-in has timed out
                station.order("stall on")
                self.undo.callback(station.order, "stall off")
            case "clock":
                self.clock_shift += int(value)
                station.order("clock", value)
                self.undo.callback(station.order, "clock", -int(value))
            case "lock":
                lock = self.undo.enter_context(contextlib.closing(
                    sqlite3.connect(station.database, isolation_level=None)))
                lock.execute("BEGIN EXCLUSIVE")
            case "again":
                station.order("run")
            case "delete":
                station.order("delete", self.patient)
                self.undo.callback(station.order, "add", self.patient, "Doe Jane")
            case "change":
                station.order("change", self.patient)
            case "close-diary" | "other-diary":
                station.order("diary", value)
            case "slip-away":  # after the plug-in has written the trigger, and before it reads the status
                station.order("slip-away", 1, station.drive / "MISC/STATUS.TXT")
                self.undo.callback(self.put_back)
            case _:  # the Nth operation on a file
                path = {"kill": "db", "full-database": "db", "swap": "drive/MISC/I"}.get(name, "drive")
                station.order(name.replace("full-database", "no-space"), value, station.folder / path)

    def replace_reader_after(self, milliseconds):
        if milliseconds:
            self.is_reader_due = True
            self.station.order("after", milliseconds)

    def put_back(self):
        if self.station.away.exists():
            self.station.order_reader(*self.station.faults)
