// SPDX-FileCopyrightText: 2026 The Merivo Connections developers
// SPDX-License-Identifier: MIT
#include "readerlink/StatusRecord.h"

#include <QMap>
#include <QTextStream>

namespace {

constexpr int CommandLabelLength = 4;
constexpr int StatusLabelLength = 10;
constexpr int ResultLabelLength = 10;
/// Far above the length of any real line; limits the memory for a damaged file without line ends.
constexpr int MaxLineLength = 65536;

CommandStatus parseStatus(const QString& word)
{
    // Exact match: a different case or a trailing blank yields Unknown.
    static const QMap<QString, CommandStatus> words{{QStringLiteral("running"), CommandStatus::Running},
                                                    {QStringLiteral("failed"), CommandStatus::Failed},
                                                    {QStringLiteral("done"), CommandStatus::Done}};
    return words.value(word, CommandStatus::Unknown);
}

/// Parses the number between the last hyphen and the last character, which the firmware adds and which has no meaning.
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
    // The error comes before the result, unlike in the file.
    return QStringLiteral("[%0]: %1, %2, %3, %4")
        .arg(header, command, QString::number(static_cast<int>(status)), QString::number(error), result);
}

bool operator==(const StatusRecord& left, const StatusRecord& right)
{
    return left.header == right.header && left.command == right.command && left.status == right.status &&
           left.result == right.result && left.error == right.error;
}
