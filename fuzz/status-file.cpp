// SPDX-FileCopyrightText: 2026 The Merivo Connections developers
// SPDX-License-Identifier: MIT

// The bytes of the status file.

#include "fuzz/Target.h"
#include "readerlink/StatusFileParser.h"

#include <QCoreApplication>
#include <QTextStream>

#include <memory>

namespace {

/// The parser cuts longer lines.
const int MaxLine = 65536;

/// Returns the lines of a text, at least five.
QStringList linesOf(const QString& text)
{
    QStringList lines = text.split('\n');
    for (QString& line : lines) {
        if (line.endsWith('\r'))
            line.chop(1);
    }
    while (lines.size() < 5)
        lines.append(QString());
    return lines;
}

int codeIn(const QString& line)
{
    const QString code = line.mid(line.lastIndexOf('-') + 1);
    bool isNumber = false;
    const int number = code.left(code.size() - 1).toInt(&isNumber, 10);
    return isNumber ? number : 0;
}

void checkRecord(const StatusRecord& record, const QStringList& lines)
{
    require(record.header == lines.at(0), "the first line is the header");
    require(record.command == lines.at(1).mid(4), "the command follows four characters");
    const QString word = lines.at(2).mid(10);
    require((record.status == CommandStatus::Running) == (word == "running"), "running is running");
    require((record.status == CommandStatus::Failed) == (word == "failed"), "failed is failed");
    require((record.status == CommandStatus::Done) == (word == "done"), "done is done");
    require(record.status != CommandStatus::Canceled, "a reader doesn't cancel");
    require(record.result == lines.at(3).mid(10), "the result follows ten characters");
    require(record.error == codeIn(lines.at(4)), "the code is between the last hyphen and the last character");
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    static int argc = 1;
    static char name[] = "status-file";
    static char* argv[] = {name, nullptr};
    static QCoreApplication application(argc, argv);
    static const Drive drive;
    static const std::unique_ptr<StatusFileParser> parser(StatusFileParser::create(drive.path()));

    const QByteArray bytes = inputOf(data, size);
    drive.write("STATUS.TXT", bytes);
    const StatusRecord record = parser->readStatus();
    require(record == parser->readStatus(), "two reads of a file are equal");
    require(record.header.size() <= MaxLine && record.command.size() <= MaxLine && record.result.size() <= MaxLine,
            "long lines are cut");

    QTextStream stream(bytes);
    const QStringList lines = linesOf(stream.readAll());
    if (bytes.size() < MaxLine)
        checkRecord(record, lines);
    else
        require(lines.at(0).startsWith(record.header), "the header is the start of the first line");

    // An empty header marks a failed read.
    require(record.header.isEmpty() == lines.at(0).isEmpty(), "the header is empty only if the first line is");
    const QString shown = record.toLogText();
    require(shown.startsWith('[' + record.header + "]: " + record.command) &&
                shown.endsWith(QString::number(record.error) + ", " + record.result),
            "the log shows the record");
    return 0;
}
