// SPDX-FileCopyrightText: 2026 The Merivo Connections developers
// SPDX-License-Identifier: MIT
#include "e2e/FaultyFiles.h"
#include "reader/CommandFileWriter.h"
#include "reader/StatusFileParser.h"

#include <QDir>
#include <QEventLoop>
#include <QFile>
#include <QRandomGenerator>
#include <QTemporaryDir>

#include <cstdio>

/// Sends commands to a drive that shows each answer only behind some triggers, and what it showed before until then.
/// One in twenty isn't answered in time; its answer comes behind the next command, if that is of another word. Returns
/// 0 if no command took another one's answer.
int runStaleDrive(int commands)
{
    constexpr int Never = 1000000;
    const QTemporaryDir drive;
    QDir(drive.path()).mkdir("MISC");
    QRandomGenerator random(1);
    struct
    {
        int number;
        QByteArray word;
        int begins; // the look from which on the drive shows it as running
        int ends;
    } answer{0, "NONE", 0, 0}, earlier = answer;
    int looks = 0; // the snapshot's with it; the two threads never look at the same time
    const auto show = [&](const auto& shown, const QByteArray& status) {
        const QByteArray number = QByteArray::number(shown.number);
        QFile file(drive.filePath("MISC/STATUS.TXT"));
        if (!file.open(QIODevice::WriteOnly) ||
            file.write(number + "\nCmd=" + shown.word + "\nStatus  = " + status + "\nResult  = " + number) < 0)
            qFatal("the status can't be written");
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
    CommandFileWriter* writer = CommandFileWriter::create(drive.path());
    StatusFileParser* parser = StatusFileParser::create(drive.path());
    int outcomes[3] = {}; // right ones, time-outs, old ones
    for (int number = 1; number <= commands; ++number) {
        earlier = answer;
        looks = 0;
        const int kind = random.bounded(3);
        const int begins = random.bounded(4) > 0 ? 3 : 11;
        answer = {number,
                  kind == 0   ? "SEARCH"
                  : kind == 1 ? "BTREAD"
                              : "BTISPAIRED",
                  begins, random.bounded(20) > 0 ? begins + random.bounded(3) : Never};
        kind == 0 ? writer->search() : kind == 1 ? writer->read("S") : writer->isPaired("P");
        QEventLoop loop;
        int outcome = 1;
        const auto onFinished = [&](bool success) {
            outcome = success && parser->m_lastStatus.result.toInt() == number ? 0 : 2;
            loop.quit();
        };
        QObject::connect(parser, &StatusFileParser::timeout, &loop, &QEventLoop::quit, Qt::QueuedConnection);
        QObject::connect(parser, &StatusFileParser::finished, &loop, onFinished, Qt::QueuedConnection);
        parser->start(answer.ends == Never ? 3 : 60, 0, 1);
        loop.exec();
        ++outcomes[outcome];
    }
    delete parser;
    delete writer;
    std::printf("%d commands: %d right answers, %d time-outs, %d old answers\n", commands, outcomes[0], outcomes[1],
                outcomes[2]);
    return outcomes[2] > 0 || outcomes[0] < commands / 2;
}
