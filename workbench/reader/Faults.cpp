// SPDX-FileCopyrightText: 2026 The Merivo Connections developers
// SPDX-License-Identifier: MIT
#include "workbench/reader/Faults.h"

#include "workbench/reader/ReaderFiles.h"
#include "workbench/traffic/ReaderCommand.h"

#include <algorithm>

enum class FaultValue {
    None,
    Number,
    Text,
    /// LeavingMoment as a word, and behind a comma how long in milliseconds.
    Moment,
};

/// What a fault can strike.
enum class FaultScope {
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
        case FaultScope::Start:
            return word.isEmpty();
        case FaultScope::Command:
            return !word.isEmpty();
        case FaultScope::ReadOut:
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

const FaultEntry Catalogue[] = {
    {"no-start", FaultValue::None, "", FaultScope::Command, [](Behaviour& b, const QString&) { b.answers = false; },
     "takes the command and never shows it"},
    {"no-running", FaultValue::None, "", FaultScope::Command,
     [](Behaviour& b, const QString&) { b.showsRunning = false; }, "shows the end without having shown \"running\""},
    {"no-end", FaultValue::None, "", FaultScope::Command, [](Behaviour& b, const QString&) { b.ends = false; },
     "shows \"running\" and never ends"},
    {"slow", FaultValue::Number, nullptr, FaultScope::Command,
     [](Behaviour& b, const QString& v) { b.extraMs = v.toInt(); },
     "takes N milliseconds longer before \"running\" and again before the end"},
    {"fail", FaultValue::Number, nullptr, FaultScope::Command,
     [](Behaviour& b, const QString& v) { b.failCode = v.toInt(); }, "ends with \"failed\" and this error code"},
    {"fail-without-code", FaultValue::None, "", FaultScope::Command,
     [](Behaviour& b, const QString&) { b.failCode = NoErrorCode; },
     "ends with \"failed\" and no number in the line of the code"},
    {"foreign-abort", FaultValue::None, "", FaultScope::Command,
     [](Behaviour& b, const QString&) { b.abortsItself = true; },
     "shows \"running\", then an ABORT as done that nobody sent, and gives the command up"},
    {"stale-status", FaultValue::None, "", FaultScope::Command,
     [](Behaviour& b, const QString&) { b.refreshesStatus = false; },
     "carries the command out and never shows a status of it"},
    {"stale-until", FaultValue::Number, nullptr, FaultScope::Command,
     [](Behaviour& b, const QString& v) { b.manner.triggers = v.toInt(); },
     "shows each status from the Nth trigger behind its change on"},
    {"same-header", FaultValue::None, "", FaultScope::Command,
     [](Behaviour& b, const QString&) { b.changesHeader = false; },
     "repeats the status file's first line, so that equal answers can't be told apart"},
    {"header-only", FaultValue::None, "", FaultScope::Command,
     [](Behaviour& b, const QString&) { b.changesHeaderAlone = true; },
     "changes the status file's first line alone; the others stay those from before"},
    {"unchanged-status", FaultValue::None, "", FaultScope::Command,
     [](Behaviour& b, const QString&) { b.endsWithOldStatus = true; },
     "ends with all five lines of the status as before the command"},
    {"half-status", FaultValue::Number, nullptr, FaultScope::Command,
     [](Behaviour& b, const QString& v) { b.manner.firstBytes = v.toInt(); },
     "rewrites the status in place: N bytes stand for 250 ms before the rest"},
    {"empty-status", FaultValue::None, "", FaultScope::Command,
     [](Behaviour& b, const QString&) { b.emptiesStatus = true; }, "shows an empty status file"},
    {"folder-status", FaultValue::None, "", FaultScope::Command,
     [](Behaviour& b, const QString&) { b.manner.isFolder = true; }, "shows a folder in the status file's place"},
    {"wrong-word", FaultValue::Text, nullptr, FaultScope::Command,
     [](Behaviour& b, const QString& v) { b.commandWord = v; }, "shows this command word in place of the command's"},
    {"lower-case-word", FaultValue::None, "", FaultScope::Command,
     [](Behaviour& b, const QString&) { b.hasLowerCaseWord = true; }, "shows the command word in lower case"},
    {"unknown-status-word", FaultValue::Text, "finished", FaultScope::Command,
     [](Behaviour& b, const QString& v) { b.statusWord = v; }, "shows this status word in place of every other"},
    {"vanish", FaultValue::Moment, nullptr, FaultScope::Command,
     [](Behaviour& b, const QString& v) { leave(b, v, true); },
     "the drive goes at MOMENT (command, running, done), and is back after MS"},
    {"vanish-folder", FaultValue::Moment, nullptr, FaultScope::Command,
     [](Behaviour& b, const QString& v) { leave(b, v, false); }, "the same with the folder MISC alone"},
    {"blocked-trigger", FaultValue::Number, "", FaultScope::Command,
     [](Behaviour& b, const QString& v) { b.triggerBlockedMs = v.toInt(); },
     "a folder stands in the trigger file's place for N ms from when the command is taken"},
    {"blocked-command", FaultValue::Number, "", FaultScope::Command,
     [](Behaviour& b, const QString& v) { b.commandBlockedMs = v.toInt(); },
     "the same with the command file, so that no next command can be written"},
    {"list-missing", FaultValue::None, "", FaultScope::Command,
     [](Behaviour& b, const QString&) { b.hasDeviceList = false; }, "ends without a device list"},
    {"list-cut", FaultValue::Number, "200", FaultScope::Command,
     [](Behaviour& b, const QString& v) { b.listBytes = v.toInt(); },
     "ends with the first so many bytes of the device list"},
    {"list-devices", FaultValue::Number, nullptr, FaultScope::Command,
     [](Behaviour& b, const QString& v) { b.listDevices = v.toInt(); },
     "ends with a device list that is filled up to N pumps"},
    {"no-exchange-file", FaultValue::None, "", FaultScope::ReadOut,
     [](Behaviour& b, const QString&) { b.exchange = ExchangeForm::NoFile; },
     "ends with \"done\" but leaves no exchange file"},
    {"two-exchange-files", FaultValue::None, "", FaultScope::ReadOut,
     [](Behaviour& b, const QString&) { b.exchange = ExchangeForm::TwoFiles; }, "leaves two exchange files"},
    {"exchange-folder", FaultValue::None, "", FaultScope::ReadOut,
     [](Behaviour& b, const QString&) { b.exchange = ExchangeForm::Folder; },
     "leaves a folder of the exchange file's name"},
    {"exchange-grows", FaultValue::None, "", FaultScope::ReadOut,
     [](Behaviour& b, const QString&) { b.exchange = ExchangeForm::GrowingFile; },
     "writes the exchange file piece by piece for a second behind \"done\""},
    {"old-firmware", FaultValue::Text, "3.2.22", FaultScope::Start,
     [](Behaviour& b, const QString& v) { b.firmware = v; }, "has this firmware version in its log"},
    {"log-missing", FaultValue::None, "", FaultScope::Start,
     [](Behaviour& b, const QString&) { b.hasFirmwareLog = false; }, "has no firmware log"},
    {"log-binary", FaultValue::None, "", FaultScope::Start, [](Behaviour& b, const QString&) { b.hasBinaryLog = true; },
     "has bytes without sense in its firmware log"},
    {"log-several", FaultValue::Text, "3.2.23", FaultScope::Start,
     [](Behaviour& b, const QString& v) { b.secondFirmware = v; }, "has a second firmware log with this version"},
    {"left-running", FaultValue::Text, "BTREAD", FaultScope::Start,
     [](Behaviour& b, const QString& v) { b.leftRunning = v; },
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
    case FaultValue::None:
        return "takes no value";
    case FaultValue::Number:
        return isCount(value) ? QString() : "the value must be a whole number, 1 or above";
    case FaultValue::Text:
        return value.isEmpty() ? "the value is empty" : QString();
    case FaultValue::Moment:
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
    if (entry.value == FaultValue::None)
        return {};
    if (entry.value == FaultValue::Moment)
        return "=MOMENT[,MS]";
    const QString what = entry.value == FaultValue::Number ? "N" : "TEXT";
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
    if (at >= 0 && entry->scope == FaultScope::Start)
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
        if (entry.scope != FaultScope::Start)
            name += "[@COMMAND]";
        name += "[:once]";
        text += QString("%1 %2\n").arg(name, -48).arg(entry.effect);
    }
    return text;
}
