// SPDX-FileCopyrightText: 2026 The Merivo Connections developers
// SPDX-License-Identifier: MIT
#include "e2e/FaultyFiles.h"
#include "reader/CommandFileWriter.h"
#include "reader/StatusFileParser.h"
#include "support/ReaderFolder.h"

#include <QEventLoop>
#include <QRandomGenerator>

#include <cstdio>
#include <memory>

/// Sends commands to a drive that shows each answer only behind some triggers, and what it showed before until then.
/// One in twenty isn't answered in time; its answer comes behind the next command, if that is of another word. Returns
/// 0 if no command took another one's answer.
int runStaleDrive(int commands)
{
    constexpr int Never = 1000000;
    const ReaderFolder drive;
    QRandomGenerator random(1);
    struct
    {
        int number;
        QString word;
        int begins; // the look from which on the drive shows it as running
        int ends;
    } answer{0, "NONE", 0, 0}, earlier = answer;
    int looks = 0; // the snapshot's with it; the two threads never look at the same time
    const auto show = [&](const auto& shown, const QString& status) {
        const QString number = QString::number(shown.number);
        drive.writeStatus(number, shown.word, status, number);
    };
    show(answer, "done");
    FaultyFiles::onOpening([&](const QByteArray& path) {
        if (!path.endsWith("MISCNoCommand.txt"))
            return;
        ++looks;
        if (looks == 2 && earlier.ends == Never && earlier.word != answer.word)
            show(earlier, "done");
        if (looks == answer.begins)
            show(answer, "running");
        if (looks == answer.ends)
            show(answer, "done");
    });
    const std::unique_ptr<CommandFileWriter> writer(CommandFileWriter::create(drive.drive()));
    const std::unique_ptr<StatusFileParser> parser(StatusFileParser::create(drive.drive()));
    int outcomes[3] = {}; // right ones, time-outs, old ones
    for (int number = 1; number <= commands; ++number) {
        earlier = answer;
        looks = 0;
        const int begins = random.bounded(4) > 0 ? 3 : 11;
        const int ends = random.bounded(20) > 0 ? begins + random.bounded(3) : Never;
        const QStringList words{"SEARCH", "BTREAD", "BTISPAIRED"};
        answer = {number, words.at(random.bounded(words.size())), begins, ends};
        if (answer.word == "SEARCH")
            writer->search();
        else if (answer.word == "BTREAD")
            writer->read("S");
        else
            writer->isPaired("P");
        QEventLoop loop;
        int outcome = 1;
        const auto onFinished = [&](bool success) {
            outcome = success && parser->m_lastStatus.result.toInt() == number ? 0 : 2;
            loop.quit();
        };
        QObject::connect(parser.get(), &StatusFileParser::timeout, &loop, &QEventLoop::quit, Qt::QueuedConnection);
        QObject::connect(parser.get(), &StatusFileParser::finished, &loop, onFinished, Qt::QueuedConnection);
        parser->start(answer.ends == Never ? 3 : 60, 0, 1);
        loop.exec();
        ++outcomes[outcome];
    }
    std::printf("%d commands: %d right answers, %d time-outs, %d old answers\n", commands, outcomes[0], outcomes[1],
                outcomes[2]);
    return outcomes[2] > 0 || outcomes[0] < commands / 2;
}
