// SPDX-FileCopyrightText: 2026 The Merivo Connections developers
// SPDX-License-Identifier: MIT
#include "reader/StatusRecord.h"

#include <QMap>
#include <QTextStream>

namespace {

constexpr int CommandLabelLength = 4;
constexpr int StatusLabelLength = 10;
constexpr int ResultLabelLength = 10;
/// No line of a reader is nearly as long; a file of garbage without line ends must not fill the memory.
constexpr int MaxLineLength = 65536;

CommandStatus parseStatus(const QString& word)
{
    // Exact words: another letter case or a trailing blank is none of them.
    static const QMap<QString, CommandStatus> words{{QStringLiteral("running"), CommandStatus::Running},
                                                    {QStringLiteral("failed"), CommandStatus::Failed},
                                                    {QStringLiteral("done"), CommandStatus::Done}};
    return words.value(word, CommandStatus::Unknown);
}

/// The number between the last hyphen and the last character, which the firmware adds and which means nothing here.
int parseErrorCode(QString line)
{
    line.remove(0, line.lastIndexOf(QLatin1Char('-')) + 1);
    line.chop(1);
    return line.toInt();
}

} // namespace

StatusRecord StatusRecord::parse(QTextStream& text)
{
    StatusRecord record;
    record.header = text.readLine(MaxLineLength);
    record.command = text.readLine(MaxLineLength).remove(0, CommandLabelLength);
    record.status = parseStatus(text.readLine(MaxLineLength).remove(0, StatusLabelLength));
    record.result = text.readLine(MaxLineLength).remove(0, ResultLabelLength);
    record.error = parseErrorCode(text.readLine(MaxLineLength));
    return record;
}

QString StatusRecord::toLogText() const
{
    // The error stands before the result here, unlike in the file.
    return QStringLiteral("[%0]: %1, %2, %3, %4")
        .arg(header, command, QString::number(static_cast<int>(status)), QString::number(error), result);
}

bool operator==(const StatusRecord& left, const StatusRecord& right)
{
    return left.header == right.header && left.command == right.command && left.status == right.status &&
           left.result == right.result && left.error == right.error;
}
