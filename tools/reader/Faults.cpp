// SPDX-FileCopyrightText: 2026 The Merivo Connections developers
// SPDX-License-Identifier: MIT
#include "tools/reader/Faults.h"

#include "tools/traffic/ReaderCommand.h"

#include <QRegularExpression>

#include <algorithm>
#include <iterator>

namespace {

struct ValueForm
{
    const char* shown; ///< in the catalogue
    const char* pattern;
    const char* rule;
};

const ValueForm NoValue{"", "(?!)", "takes no value"};
const ValueForm Number{"N", "0*[1-9][0-9]{0,8}", "the value must be a whole number from 1 to 999999999"};
const ValueForm Text{"TEXT", ".+", "the value is empty"};
const ValueForm Moment{"MOMENT[,MS]", "(command|running|done)(,0*[1-9][0-9]{0,8})?",
                       "the value must be command, running or done, and a comma and milliseconds may follow"};

const char* const AnyCommand = nullptr;
const char* const ReadOut = "BTREAD";
const char* const AtStart = "";

} // namespace

struct FaultEntry
{
    const char* name;
    const ValueForm& form;
    const char* fallback; ///< the default value; null if a value is required
    const char* command;  ///< the only command that it can apply to; null for any
    const char* effect;

    bool appliesTo(const QString& word) const { return command ? word == QLatin1String(command) : !word.isEmpty(); }
};

namespace {

const FaultEntry Catalogue[] = {
    {"no-start", NoValue, "", AnyCommand, "receives the command and never shows it"},
    {"no-running", NoValue, "", AnyCommand, "ends without having shown \"running\""},
    {"no-end", NoValue, "", AnyCommand, "shows \"running\" and never ends"},
    {"slow", Number, nullptr, AnyCommand, "takes N ms longer before \"running\" and again before the end"},
    {"fail", Number, nullptr, AnyCommand, "ends with \"failed\" and the error code N, without an effect"},
    {"fail-without-code", NoValue, "", AnyCommand,
     "ends with \"failed\" and no number as its error code, without an effect"},
    {"foreign-abort", NoValue, "", AnyCommand,
     "shows \"running\" and, 300 ms after a trigger made that visible, an unsolicited ABORT; cancels the command"},
    {"stale-status", NoValue, "", AnyCommand, "executes the command and never shows a status of it"},
    {"stale-until", Number, nullptr, AnyCommand, "shows each status only from the Nth trigger after its change"},
    {"same-header", NoValue, "", AnyCommand,
     "repeats the status file's first line, so that two equal answers are the same file"},
    {"header-only", NoValue, "", AnyCommand, "changes only the status file's first line"},
    {"unchanged-status", NoValue, "", AnyCommand, "ends with the five lines that the status had before the command"},
    {"half-status", Number, nullptr, AnyCommand, "rewrites the status in place: N bytes, and the rest 250 ms later"},
    {"empty-status", NoValue, "", AnyCommand, "shows an empty status file"},
    {"folder-status", NoValue, "", AnyCommand, "shows an empty folder in place of the status file"},
    {"wrong-word", Text, nullptr, AnyCommand, "shows this command word instead of the command's"},
    {"lower-case-word", NoValue, "", AnyCommand, "shows the command word in lower case"},
    {"unknown-status-word", Text, "finished", AnyCommand, "shows this status word instead of every other"},
    {"vanish", Moment, nullptr, AnyCommand,
     "removes the drive (renames it to DRIVE.away) at MOMENT: command, running or done; restores it after MS"},
    {"vanish-folder", Moment, nullptr, AnyCommand,
     "removes the folder MISC (renames it to .MISC.away) at MOMENT: command, running or done; restores it after MS"},
    {"blocked-trigger", Number, "", AnyCommand,
     "puts a folder in the trigger file's place when the command is received, for N ms or until the next start"},
    {"blocked-command", Number, "", AnyCommand,
     "puts a folder in the command file's place when the command is received, for N ms or until the next start"},
    {"list-missing", NoValue, "", AnyCommand, "ends without a device list"},
    {"list-cut", Number, "200", AnyCommand, "ends with the first N bytes of the device list"},
    {"list-devices", Number, nullptr, AnyCommand, "ends with a device list of N pumps, filled up with unknown ones"},
    {"no-exchange-file", NoValue, "", ReadOut, "ends with \"done\" but leaves no exchange file"},
    {"two-exchange-files", NoValue, "", ReadOut, "leaves two exchange files"},
    {"exchange-folder", NoValue, "", ReadOut, "leaves a folder with the exchange file's name"},
    {"exchange-grows", NoValue, "", ReadOut, "writes the exchange file in ten pieces within the second after \"done\""},
    {"old-firmware", Text, "3.2.22", AtStart, "has this firmware version in its log"},
    {"log-missing", NoValue, "", AtStart, "has no firmware log"},
    {"log-binary", NoValue, "", AtStart, "has 4096 random bytes in its firmware log"},
    {"log-several", Text, "3.2.23", AtStart, "has a second firmware log with this version"},
    {"left-running", Text, "BTREAD", AtStart, "shows this command as running, as an earlier session may have left it"},
};

QString shownName(const FaultEntry& entry)
{
    const bool hasDefault = entry.fallback && *entry.fallback;
    QString name = entry.name;
    if (&entry.form != &NoValue)
        name += QString(entry.fallback ? "[=%1]" : "=%1").arg(hasDefault ? entry.fallback : entry.form.shown);
    return name + (entry.command == AtStart ? "[:once]" : "[@COMMAND][:once]");
}

} // namespace

bool FaultSet::add(const QString& text, QString* error)
{
    const QString once = ":once";
    const bool appliesOnce = text.endsWith(once);
    const QString fault = appliesOnce ? text.chopped(once.size()) : text;
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
        return refuse("unknown; see --list-faults");
    if (at >= 0 && entry->command == AtStart)
        return refuse("can't be restricted to a command");
    if (at >= 0 && !isCommandWord(command))
        return refuse(QString("unknown command \"%1\"").arg(command));
    if (!assignment.contains('=')) {
        if (!entry->fallback)
            return refuse("needs a value");
        value = entry->fallback;
    } else if (!QRegularExpression(QRegularExpression::anchoredPattern(entry->form.pattern)).match(value).hasMatch()) {
        return refuse(entry->form.rule);
    }
    m_faults.append({entry, value, command, appliesOnce});
    return true;
}

ActiveFaults FaultSet::take(const QString& word)
{
    ActiveFaults active;
    QVector<Fault> left;
    for (const Fault& fault : qAsConst(m_faults)) {
        const bool applies = fault.entry->appliesTo(word) && (fault.command.isEmpty() || fault.command == word);
        if (applies)
            active.insert(fault.entry->name, fault.value);
        if (!applies || !fault.appliesOnce)
            left.append(fault);
    }
    m_faults = left;
    return active;
}

QString FaultSet::catalogue()
{
    QString text;
    for (const FaultEntry& entry : Catalogue)
        text += QString("%1 %2\n").arg(shownName(entry), -48).arg(entry.effect);
    return text;
}
