// SPDX-FileCopyrightText: 2026 The Merivo Connections developers
// SPDX-License-Identifier: MIT
#include "workbench/reader/Faults.h"

#include "workbench/reader/ReaderCommand.h"

#include <algorithm>

enum class FaultValue {
    None,
    Number,
    Text,
};

struct FaultEntry
{
    const char* name;
    FaultValue value;
    /// What counts without a value; null if the fault must have one.
    const char* fallback;
    /// True if the fault can be tied to one command.
    bool perCommand;
    void (*apply)(Behaviour& behaviour, const QString& value);
    const char* effect;
};

namespace {

const FaultEntry Catalogue[] = {
    {"no-start", FaultValue::None, "", true, [](Behaviour& b, const QString&) { b.answers = false; },
     "takes the command and never shows it"},
    {"no-end", FaultValue::None, "", true, [](Behaviour& b, const QString&) { b.ends = false; },
     "shows \"running\" and never ends"},
    {"fail", FaultValue::Number, nullptr, true, [](Behaviour& b, const QString& v) { b.failCode = v.toInt(); },
     "ends with \"failed\" and this error code"},
    {"slow", FaultValue::Number, nullptr, true, [](Behaviour& b, const QString& v) { b.extraMs = v.toInt(); },
     "takes so many milliseconds longer before \"running\" and again before the end"},
    {"unknown-status-word", FaultValue::Text, "finished", true,
     [](Behaviour& b, const QString& v) { b.statusWord = v; }, "shows this status word in place of every other"},
    {"no-exchange-file", FaultValue::None, "", false, [](Behaviour& b, const QString&) { b.exchangeFiles = 0; },
     "ends a read-out with \"done\" but leaves no exchange file"},
    {"two-exchange-files", FaultValue::None, "", false, [](Behaviour& b, const QString&) { b.exchangeFiles = 2; },
     "leaves two exchange files behind a read-out"},
    {"stale-status", FaultValue::None, "", false, [](Behaviour& b, const QString&) { b.refreshesStatus = false; },
     "never shows a status newer than the one at the start"},
    {"same-header", FaultValue::None, "", false, [](Behaviour& b, const QString&) { b.changesHeader = false; },
     "repeats the status file's first line, so that equal answers can't be told apart"},
    {"old-firmware", FaultValue::Text, "3.2.22", false, [](Behaviour& b, const QString& v) { b.firmware = v; },
     "has this firmware version in its log"},
    {"left-running", FaultValue::Text, "BTREAD", false, [](Behaviour& b, const QString& v) { b.leftRunning = v; },
     "shows this command as running at the start, as if an earlier user had left it"},
};

} // namespace

bool FaultSet::add(const QString& text, QString* error)
{
    const int at = text.lastIndexOf(QLatin1Char('@'));
    const QString command = at < 0 ? QString() : text.mid(at + 1);
    const QString assignment = text.left(at);
    const QString name = assignment.section(QLatin1Char('='), 0, 0);
    QString value = assignment.section(QLatin1Char('='), 1);

    const auto entry = std::find_if(std::begin(Catalogue), std::end(Catalogue),
                                    [&](const FaultEntry& e) { return name == QLatin1String(e.name); });
    const auto refuse = [&](const QString& why) {
        *error = QStringLiteral("fault \"%1\": %2").arg(text, why);
        return false;
    };
    if (entry == std::end(Catalogue))
        return refuse(QStringLiteral("unknown; --list-faults names them all"));
    if (at >= 0 && !entry->perCommand)
        return refuse(QStringLiteral("can't be tied to a command"));
    if (at >= 0 && !isCommandWord(command))
        return refuse(QStringLiteral("unknown command \"%1\"").arg(command));
    if (!assignment.contains(QLatin1Char('='))) {
        if (!entry->fallback)
            return refuse(QStringLiteral("needs a value"));
        value = QLatin1String(entry->fallback);
    } else if (entry->value == FaultValue::None) {
        return refuse(QStringLiteral("takes no value"));
    }
    bool isNumber = false;
    const int number = value.toInt(&isNumber);
    if (entry->value == FaultValue::Number && (!isNumber || number < 1))
        return refuse(QStringLiteral("the value must be a whole number, 1 or above"));
    if (entry->value == FaultValue::Text && value.isEmpty())
        return refuse(QStringLiteral("the value is empty"));

    m_faults.append({entry, value, command});
    return true;
}

Behaviour FaultSet::behaviourFor(const QString& word) const
{
    Behaviour behaviour;
    for (const Fault& fault : m_faults) {
        if (fault.command.isEmpty() || fault.command == word)
            fault.entry->apply(behaviour, fault.value);
    }
    return behaviour;
}

QString FaultSet::catalogue()
{
    QString text;
    for (const FaultEntry& entry : Catalogue) {
        QString name = QLatin1String(entry.name);
        if (entry.value != FaultValue::None)
            name += entry.fallback ? QStringLiteral("[=%1]").arg(QLatin1String(entry.fallback)) : QStringLiteral("=N");
        if (entry.perCommand)
            name += QStringLiteral("[@COMMAND]");
        text += QStringLiteral("%1 %2\n").arg(name, -40).arg(QLatin1String(entry.effect));
    }
    return text;
}
