// SPDX-FileCopyrightText: 2026 The Merivo Connections developers
// SPDX-License-Identifier: MIT
#include "workbench/reader/Faults.h"

#include "workbench/reader/ReaderFiles.h"
#include "workbench/traffic/ReaderCommand.h"

#include <algorithm>

enum FaultValue {
    None,
    Number,
    Text,
    /// LeavingMoment as a word, and behind a comma how long in milliseconds.
    Moment,
};

/// What a fault can strike.
enum FaultScope {
    Start,
    Command,
    ReadOut,
};

struct FaultEntry
{
    const char* name;
    FaultValue value;
    /// What counts without a value; null if the fault must have one.
    const char* fallback;
    FaultScope scope;
    void (*apply)(Behaviour& behaviour, const QString& value);
    const char* effect;

    bool canStrike(const QString& word) const
    {
        switch (scope) {
        case Start:
            return word.isEmpty();
        case Command:
            return !word.isEmpty();
        case ReadOut:
            break;
        }
        return word == "BTREAD";
    }
};

namespace {

const struct
{
    const char* word;
    LeavingMoment moment;
} Moments[] = {{"command", LeavingMoment::Command}, {"running", LeavingMoment::Running}, {"done", LeavingMoment::Done}};

LeavingMoment momentOf(const QString& value)
{
    const QString word = value.section(',', 0, 0);
    const auto found =
        std::find_if(std::begin(Moments), std::end(Moments), [&](const auto& entry) { return word == entry.word; });
    return found == std::end(Moments) ? LeavingMoment::Never : found->moment;
}

void leave(Behaviour& behaviour, const QString& value, bool wholeDrive)
{
    behaviour.leavesAt = momentOf(value);
    behaviour.leavesWhole = wholeDrive;
    behaviour.awayMs = value.section(',', 1).toInt();
}

using B = Behaviour&;
using V = const QString&;

const FaultEntry Catalogue[] = {
    {"no-start", None, "", Command, [](B b, V) { b.answers = false; }, "takes the command and never shows it"},
    {"no-running", None, "", Command, [](B b, V) { b.showsRunning = false; },
     "shows the end without having shown \"running\""},
    {"no-end", None, "", Command, [](B b, V) { b.ends = false; }, "shows \"running\" and never ends"},
    {"slow", Number, nullptr, Command, [](B b, V v) { b.extraMs = v.toInt(); },
     "takes N milliseconds longer before \"running\" and again before the end"},
    {"fail", Number, nullptr, Command, [](B b, V v) { b.failCode = v.toInt(); },
     "ends with \"failed\" and this error code"},
    {"fail-without-code", None, "", Command, [](B b, V) { b.failCode = NoErrorCode; },
     "ends with \"failed\" and no number in the line of the code"},
    {"foreign-abort", None, "", Command, [](B b, V) { b.abortsItself = true; },
     "shows \"running\", then an ABORT as done that nobody sent, and gives the command up"},
    {"stale-status", None, "", Command, [](B b, V) { b.refreshesStatus = false; },
     "carries the command out and never shows a status of it"},
    {"stale-until", Number, nullptr, Command, [](B b, V v) { b.manner.triggers = v.toInt(); },
     "shows each status from the Nth trigger behind its change on"},
    {"same-header", None, "", Command, [](B b, V) { b.changesHeader = false; },
     "repeats the status file's first line, so that equal answers can't be told apart"},
    {"header-only", None, "", Command, [](B b, V) { b.changesHeaderAlone = true; },
     "changes the status file's first line alone; the others stay those from before"},
    {"unchanged-status", None, "", Command, [](B b, V) { b.endsWithOldStatus = true; },
     "ends with all five lines of the status as before the command"},
    {"half-status", Number, nullptr, Command, [](B b, V v) { b.manner.firstBytes = v.toInt(); },
     "rewrites the status in place: N bytes stand for 250 ms before the rest"},
    {"empty-status", None, "", Command, [](B b, V) { b.emptiesStatus = true; }, "shows an empty status file"},
    {"folder-status", None, "", Command, [](B b, V) { b.manner.isFolder = true; },
     "shows a folder in the status file's place"},
    {"wrong-word", Text, nullptr, Command, [](B b, V v) { b.commandWord = v; },
     "shows this command word in place of the command's"},
    {"lower-case-word", None, "", Command, [](B b, V) { b.hasLowerCaseWord = true; },
     "shows the command word in lower case"},
    {"unknown-status-word", Text, "finished", Command, [](B b, V v) { b.statusWord = v; },
     "shows this status word in place of every other"},
    {"vanish", Moment, nullptr, Command, [](B b, V v) { leave(b, v, true); },
     "the drive goes at MOMENT (command, running, done), and is back after MS"},
    {"vanish-folder", Moment, nullptr, Command, [](B b, V v) { leave(b, v, false); },
     "the same with the folder MISC alone"},
    {"blocked-trigger", Number, "", Command, [](B b, V v) { b.triggerBlockedMs = v.toInt(); },
     "a folder stands in the trigger file's place for N ms from when the command is taken"},
    {"blocked-command", Number, "", Command, [](B b, V v) { b.commandBlockedMs = v.toInt(); },
     "the same with the command file, so that no next command can be written"},
    {"list-missing", None, "", Command, [](B b, V) { b.hasDeviceList = false; }, "ends without a device list"},
    {"list-cut", Number, "200", Command, [](B b, V v) { b.listBytes = v.toInt(); },
     "ends with the first so many bytes of the device list"},
    {"list-devices", Number, nullptr, Command, [](B b, V v) { b.listDevices = v.toInt(); },
     "ends with a device list that is filled up to N pumps"},
    {"no-exchange-file", None, "", ReadOut, [](B b, V) { b.exchange = ExchangeForm::NoFile; },
     "ends with \"done\" but leaves no exchange file"},
    {"two-exchange-files", None, "", ReadOut, [](B b, V) { b.exchange = ExchangeForm::TwoFiles; },
     "leaves two exchange files"},
    {"exchange-folder", None, "", ReadOut, [](B b, V) { b.exchange = ExchangeForm::Folder; },
     "leaves a folder of the exchange file's name"},
    {"exchange-grows", None, "", ReadOut, [](B b, V) { b.exchange = ExchangeForm::GrowingFile; },
     "writes the exchange file piece by piece for a second behind \"done\""},
    {"old-firmware", Text, "3.2.22", Start, [](B b, V v) { b.firmware = v; }, "has this firmware version in its log"},
    {"log-missing", None, "", Start, [](B b, V) { b.hasFirmwareLog = false; }, "has no firmware log"},
    {"log-binary", None, "", Start, [](B b, V) { b.hasBinaryLog = true; },
     "has bytes without sense in its firmware log"},
    {"log-several", Text, "3.2.23", Start, [](B b, V v) { b.secondFirmware = v; },
     "has a second firmware log with this version"},
    {"left-running", Text, "BTREAD", Start, [](B b, V v) { b.leftRunning = v; },
     "shows this command as running, as if an earlier user had left it"},
};

bool isCount(const QString& value)
{
    bool isNumber = false;
    return value.toInt(&isNumber) >= 1 && isNumber;
}

/// Why @p value doesn't fit; empty if it does.
QString objectionTo(FaultValue kind, const QString& value)
{
    switch (kind) {
    case None:
        return "takes no value";
    case Number:
        return isCount(value) ? QString() : "the value must be a whole number, 1 or above";
    case Text:
        return value.isEmpty() ? "the value is empty" : QString();
    case Moment:
        break;
    }
    const bool fits =
        momentOf(value) != LeavingMoment::Never && (!value.contains(',') || isCount(value.section(',', 1)));
    return fits ? QString()
                : "the value must be command, running or done, with a comma and milliseconds behind it "
                  "for a drive that comes back";
}

QString valueInCatalogue(const FaultEntry& entry)
{
    if (entry.value == None)
        return {};
    if (entry.value == Moment)
        return "=MOMENT[,MS]";
    const QString what = entry.value == Number ? "N" : "TEXT";
    if (!entry.fallback)
        return '=' + what;
    const QLatin1String fallback(entry.fallback);
    return QString("[=%1]").arg(fallback.size() == 0 ? what : QString(fallback));
}

} // namespace

bool FaultSet::add(const QString& text, QString* error)
{
    const QString once = ":once";
    const bool strikesOnce = text.endsWith(once);
    const QString fault = strikesOnce ? text.chopped(once.size()) : text;
    const int at = fault.lastIndexOf('@');
    const QString command = at < 0 ? QString() : fault.mid(at + 1);
    const QString assignment = fault.left(at);
    const QString name = assignment.section('=', 0, 0);
    QString value = assignment.section('=', 1);

    const auto entry =
        std::find_if(std::begin(Catalogue), std::end(Catalogue), [&](const FaultEntry& e) { return name == e.name; });
    const auto refuse = [&](const QString& why) {
        *error = QString("fault \"%1\": %2").arg(text, why);
        return false;
    };
    if (entry == std::end(Catalogue))
        return refuse("unknown; --list-faults names them all");
    if (at >= 0 && entry->scope == Start)
        return refuse("can't be tied to a command");
    if (at >= 0 && !isCommandWord(command))
        return refuse(QString("unknown command \"%1\"").arg(command));
    if (assignment.contains('=')) {
        const QString objection = objectionTo(entry->value, value);
        if (!objection.isEmpty())
            return refuse(objection);
    } else if (!entry->fallback) {
        return refuse("needs a value");
    } else {
        value = entry->fallback;
    }
    m_faults.append({entry, value, command, strikesOnce});
    return true;
}

Behaviour FaultSet::strike(const QString& word)
{
    Behaviour behaviour;
    QVector<Fault> left;
    for (const Fault& fault : qAsConst(m_faults)) {
        const bool strikes = fault.entry->canStrike(word) && (fault.command.isEmpty() || fault.command == word);
        if (strikes)
            fault.entry->apply(behaviour, fault.value);
        if (!strikes || !fault.strikesOnce)
            left.append(fault);
    }
    m_faults = left;
    return behaviour;
}

QString FaultSet::catalogue()
{
    QString text;
    for (const FaultEntry& entry : Catalogue) {
        QString name = entry.name + valueInCatalogue(entry);
        if (entry.scope != Start)
            name += "[@COMMAND]";
        name += "[:once]";
        text += QString("%1 %2\n").arg(name, -48).arg(entry.effect);
    }
    return text;
}
