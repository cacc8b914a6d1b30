// SPDX-FileCopyrightText: 2026 The Merivo Connections developers
// SPDX-License-Identifier: MIT
#include "readerlink/CommandFileWriter.h"
#include "readerlink/StatusFileParser.h"
#include "support/ReaderFolder.h"

#include <QEventLoop>
#include <QRandomGenerator>

#include <cstdio>
#include <memory>

/// Sends commands to a drive that shows each answer only after some ticks of the polling, and what it showed before
/// until then. One in twenty isn't answered in time; its answer comes after the next command is sent, if that has
/// another name. Returns 0 if no command took another one's answer.
int runStaleDrive(int commands)
{
    constexpr int Never = 1000000;
    const ReaderFolder drive;
    const std::unique_ptr<CommandFileWriter> writer(CommandFileWriter::create(drive.drive()));
    const std::unique_ptr<StatusFileParser> parser(StatusFileParser::create(drive.drive()));
    const auto show = [&drive](int number, const QString& name, const QString& status) {
        drive.writeStatus(QString::number(number), name, status, QString::number(number));
    };
    show(0, "NONE", "done");
    QRandomGenerator random(1);
    QString name;
    int ends = 0;
    int rightAnswers = 0;
    int oldAnswers = 0;
    for (int number = 1; number <= commands; ++number) {
        const QString earlierName = name;
        const bool isEarlierLate = ends == Never;
        const int begins = random.bounded(4) > 0 ? 1 : 9; // ticks
        ends = random.bounded(20) > 0 ? begins + random.bounded(3) : Never;
        const bool isRead = random.bounded(2) > 0;
        name = isRead ? "BTREAD" : "BTISPAIRED";
        if (isRead)
            writer->read("S");
        else
            writer->isPaired("P");

        QEventLoop loop;
        int ticks = 0; // on the polling thread
        const auto onTick = [&] {
            ++ticks;
            if (ticks == begins)
                show(number, name, "running");
            if (ticks == ends)
                show(number, name, "done");
        };
        const auto onFinished = [&](bool success) {
            ++(success && parser->m_lastStatus.result.toInt() == number ? rightAnswers : oldAnswers);
            loop.quit();
        };
        QObject::connect(parser.get(), &StatusFileParser::progress, &loop, onTick, Qt::DirectConnection);
        QObject::connect(parser.get(), &StatusFileParser::timeout, &loop, &QEventLoop::quit, Qt::QueuedConnection);
        QObject::connect(parser.get(), &StatusFileParser::finished, &loop, onFinished, Qt::QueuedConnection);
        parser->start(ends == Never ? 3 : 60, 0, 1);
        if (isEarlierLate && earlierName != name)
            show(number - 1, earlierName, "done");
        loop.exec();
    }
    std::printf("%d commands: %d right answers, %d old answers\n", commands, rightAnswers, oldAnswers);
    return oldAnswers > 0 || rightAnswers < commands / 2;
}
