// SPDX-FileCopyrightText: 2026 The Merivo Connections developers
// SPDX-License-Identifier: MIT
#include "tools/traffic/ReaderCommand.h"

#include "tools/support/Platform.h"

#include <QRegularExpression>

#include <algorithm>
#include <iterator>

namespace {

const QString Begin = "QD17-C RemoteControl File\nCommand=";

struct CommandForm
{
    const char* word;
    const char* arguments; ///< after the name and a space; words in capitals are values
};

const CommandForm Forms[] = {
    {"SEARCH", "00100"},
    {"BTPAIR", "ADDRESS \"SERIAL\" PATIENT"},
    {"BTPAIRCONFIRM", "0|1"},
    {"BTREAD", "\"SERIAL\""},
    {"BTISPAIRED", "PATIENT"},
    // The only command with two spaces before the quote.
    {"BTDELETEADDR", " \"SERIAL\""},
    {"BTPUMPREASSIGN", "\"SERIAL\" PATIENT"},
    {"ABORT", ""},
};

const CommandForm* formOf(const QString& word)
{
    const auto found = std::find_if(std::begin(Forms), std::end(Forms),
                                    [&word](const CommandForm& form) { return word == form.word; });
    return found == std::end(Forms) ? nullptr : found;
}

QRegularExpression patternOf(QString arguments)
{
    arguments.replace("ADDRESS", "(?<ADDRESS>[^ ]+)")
        .replace("SERIAL", "(?<SERIAL>[^\"]*)")
        .replace("PATIENT", "(?<PATIENT>.*)");
    return QRegularExpression(QRegularExpression::anchoredPattern(arguments));
}

} // namespace

std::optional<ReaderCommand> parseCommandFile(const QByteArray& bytes, QString* fault)
{
    const QString text = QString::fromLocal8Bit(bytes.constData(), bytes.size());
    if (text.toLocal8Bit() == bytes)
        return parseCommand(text, fault);
    *fault = QString("it isn't %1, or begins with a byte order mark").arg(Platform::localeCodecName());
    return std::nullopt;
}

std::optional<ReaderCommand> parseCommand(const QString& text, QString* fault)
{
    const auto refuse = [fault](const QString& what) {
        *fault = what;
        return std::nullopt;
    };
    static const QRegularExpression controlCharacter("[\\x00-\\x1f\\x7f]");
    if (!text.startsWith(Begin))
        return refuse("it doesn't begin with the line \"QD17-C RemoteControl File\" and \"Command=\"");
    const QString given = text.mid(Begin.size());
    if (given.contains(controlCharacter))
        return refuse("a control character or a line end inside the command");

    ReaderCommand command;
    command.word = given.section(' ', 0, 0);
    const CommandForm* form = formOf(command.word);
    if (!form)
        return refuse(QString("unknown command \"%1\"").arg(command.word));
    const auto match = patternOf(form->arguments).match(given.mid(command.word.size() + 1));
    command.serialNumber = match.captured("SERIAL");
    command.address = match.captured("ADDRESS");
    command.patientId = match.captured("PATIENT");
    command.accepted = match.captured(0) == "1";
    // An additional space can't be distinguished from an id that begins or ends with one, so neither is valid.
    if (!given.contains(' ') || !match.hasMatch() || command.patientId != command.patientId.trimmed())
        return refuse(QString("\"%1\" isn't of the form \"%2 %3\"").arg(given, form->word, form->arguments));
    return command;
}

bool isCommandWord(const QString& word)
{
    return formOf(word) != nullptr;
}
