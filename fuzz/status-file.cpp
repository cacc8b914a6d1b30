// SPDX-FileCopyrightText: 2026 The Merivo Connections developers
// SPDX-License-Identifier: MIT

// The status file: its bytes.

#include "fuzz/Drive.h"
#include "reader/StatusFileParser.h"

#include <QCoreApplication>
#include <QTextStream>

#include <memory>

namespace {

/// Where a line is cut, if it has no end by then.
const int LongestLine = 65536;

/// The lines of a text, with an empty one for each that is missing.
QStringList linesOf(const QString& text)
{
    QStringList lines = text.split(QLatin1Char('\n'));
    for (QString& line : lines) {
        // Also at the end of the text, where a line feed may be still to come.
        if (line.endsWith(QLatin1Char('\r')))
            line.chop(1);
    }
    while (lines.size() < 5)
        lines.append(QString());
    return lines;
}

int codeIn(const QString& line)
{
    const QString code = line.mid(line.lastIndexOf(QLatin1Char('-')) + 1);
    bool isNumber = false;
    const int number = code.left(code.size() - 1).toInt(&isNumber, 10);
    return isNumber ? number : 0;
}

void checkRecord(const StatusRecord& record, const QStringList& lines)
{
    require(record.header == lines.at(0), "the first line is the header");
    require(record.command == lines.at(1).mid(4), "the command stands behind four characters");
    const QString word = lines.at(2).mid(10);
    require((record.status == CommandStatus::Running) == (word == QLatin1String("running")), "running is running");
    require((record.status == CommandStatus::Failed) == (word == QLatin1String("failed")), "failed is failed");
    require((record.status == CommandStatus::Done) == (word == QLatin1String("done")), "done is done");
    require(record.status != CommandStatus::Canceled, "no reader cancels");
    require(record.result == lines.at(3).mid(10), "the result stands behind ten characters");
    require(record.error == codeIn(lines.at(4)), "the code stands between the last hyphen and the last character");
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    silenceLog();
    static int argc = 1;
    static char name[] = "status-file";
    static char* argv[] = {name, nullptr};
    static QCoreApplication application(argc, argv);
    static const Drive drive;
    static const std::unique_ptr<StatusFileParser> parser(StatusFileParser::create(drive.path()));

    const QByteArray bytes(reinterpret_cast<const char*>(data), static_cast<int>(size));
    drive.write(QStringLiteral("STATUS.TXT"), bytes);
    const StatusRecord record = parser->readStatus();
    require(record == parser->readStatus(), "two reads of a file are equal");
    require(record.header.size() <= LongestLine && record.command.size() <= LongestLine &&
                record.result.size() <= LongestLine,
            "a line is cut");

    QTextStream stream(bytes);
    const QStringList lines = linesOf(stream.readAll());
    if (bytes.size() < LongestLine)
        checkRecord(record, lines);
    else
        require(lines.at(0).startsWith(record.header), "the header is of the first line");

    // What marks a failed read is an empty first line alone, and the log's form has all that the record has.
    require(record.header.isEmpty() == lines.at(0).isEmpty(), "only an empty first line gives an empty header");
    const QString shown = record.toLogText();
    require(shown.startsWith(QLatin1Char('[') + record.header + QLatin1String("]: ") + record.command) &&
                shown.endsWith(QString::number(record.error) + QLatin1String(", ") + record.result),
            "the log shows the record");
    return 0;
}
