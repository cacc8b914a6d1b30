// SPDX-FileCopyrightText: 2026 The Merivo Connections developers
// SPDX-License-Identifier: MIT
#include "base/Logger.h"
#include "readerlink/CommandFileWriter.h"
#include "readerlink/StatusFileParser.h"
#include "support/MessageCapture.h"
#include "support/ReaderFolder.h"
#include "support/RecordingHost.h"

#include <QDir>
#include <QElapsedTimer>
#include <QRegularExpression>
#include <QTest>

#include <algorithm>
#include <atomic>
#include <utility>

Q_DECLARE_METATYPE(ReaderFolder::Answer)
using DuringPolling = void (*)(const ReaderFolder&);
Q_DECLARE_METATYPE(DuringPolling)

namespace {

constexpr int Limit = 20000; ///< for anything that is waited for, in milliseconds
constexpr int TwoTicks = 250;

using Answers = QList<ReaderFolder::Answer>;

std::atomic<int> s_warnings{0};

/// Without a lock, which would order the two threads and hide their races from ThreadSanitizer.
void countWarnings(QtMsgType type, const QMessageLogContext&, const QString&)
{
    if (type == QtWarningMsg)
        s_warnings.fetch_add(1, std::memory_order_relaxed);
}

void cancel(const ReaderFolder&)
{
    StatusFileParser::instance()->cancel();
    CommandFileWriter::instance()->abort(); // as the dialogs do; the command is another one from here on
}

} // namespace

class TestReaderPolling : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase()
    {
        qInstallMessageHandler(countWarnings);
        Logger::instance(nullptr, &m_host.services);
    }

    void init()
    {
        m_folder = std::make_unique<ReaderFolder>();
        QVERIFY(m_folder->writeStatus("Before", "BTREAD", "done", "old", 3));
        m_writer = CommandFileWriter::create(m_folder->drive());
        m_parser = StatusFileParser::create(m_folder->drive());
        m_ends.clear();
        m_percentages.clear();
        m_host.journal.clear();
        const auto end = [this](const QString& signal) {
            m_ends.append(signal);
            m_record = m_parser->m_lastStatus; // is up to date before the signal
        };
        connect(m_parser, &StatusFileParser::finished, this,
                [end](bool success) { end(QStringLiteral("finished(%1)").arg(success)); });
        connect(m_parser, &StatusFileParser::timeout, this, [end] { end("timeout"); });
        connect(m_parser, &StatusFileParser::progress, this, [this](int value) {
            m_percentages.append(value);
            m_seen = m_parser ? m_parser->m_lastStatus.status : m_seen; // null: its last tick's signal is late
        });
        // On the emitting thread.
        const auto check = [this] {
            if (QThread::currentThread() == thread())
                ++m_strangers;
        };
        connect(m_parser, &StatusFileParser::finished, m_parser, check, Qt::DirectConnection);
        connect(m_parser, &StatusFileParser::timeout, m_parser, check, Qt::DirectConnection);
        connect(m_parser, &StatusFileParser::progress, m_parser, check, Qt::DirectConnection);
    }

    void cleanup()
    {
        delete std::exchange(m_parser, nullptr);
        delete std::exchange(m_writer, nullptr);
        QCOMPARE(m_strangers.load(), 0);
        QCOMPARE(s_warnings.load(), 0);
        for (const QThread* caller : qAsConst(m_host.journal.threads))
            QCOMPARE(caller, thread());
    }

    void polling_data()
    {
        QTest::addColumn<QByteArray>("word");
        QTest::addColumn<Answers>("answers");
        QTest::addColumn<QVector<int>>("limits");
        QTest::addColumn<QString>("end");
        QTest::addColumn<DuringPolling>("duringPolling");
        const auto row = [](const char* name, const Answers& answers, const QVector<int>& limits, const char* end,
                            DuringPolling duringPolling = nullptr, const char* word = "BTREAD") {
            QTest::newRow(name) << QByteArray(word) << answers << limits << QString(end) << duringPolling;
        };
        const QVector<int> ample{20, 0, 5};
        const QVector<int> shortStart{20, 1, 5};
        const QVector<int> shortStop{1, 0, 5};
        row("good", {{20, "running"}, {1300, "done", "R", 7}}, shortStart, // started in time is enough
            "finished(1), mcp Stop [1], status 2, state 2");
        row("done after the limit", {{0, "done", "R", 7}}, {-1, 0, 0}, "finished(1), mcp Stop [1], status 2, state 2");
        row("other's abort", {{0, "running"}, {400, "done", "", 0, "Abort"}}, ample,
            "finished(0), mcp Stop [0], status 2, state 2");

        row("reader doesn't answer", {}, shortStart, "timeout, err Unstarted [0], status 2, state 0");
        row("abort not done", {{20, "running", "", 0, "ABORT"}, {300, "failed", "", 0, "ABORT"}}, shortStart,
            "timeout, err Unstarted [0], status 1, state 0");
        row(
            "not submitted", {}, shortStop, "timeout, err Unfinished [0], status 2, state 0",
            [](const ReaderFolder& f) { f.writeStatus("New", "BTREAD", "done", "old", 3); }, "");
        row("never ends", {{20, "running"}}, shortStop, "timeout, err Unfinished [1], status 0, state 1");
        row("no time", {}, {0, 0, 900}, "timeout, err Unfinished [0], status 2, state 0");

        row("cancel", {{20, "running", "R", 7}}, ample, "finished(1), err Cancel [0], status 3, state 1", cancel);
        row("drive removed", {{20, "running"}}, ample, "timeout, err Error [1], status 0, state 1",
            [](const ReaderFolder& f) { QDir(f.drive()).removeRecursively(); });
    }
    void polling()
    {
        QFETCH(QByteArray, word);
        QFETCH(Answers, answers);
        QFETCH(QVector<int>, limits);
        QFETCH(QString, end);
        QFETCH(DuringPolling, duringPolling);
        m_folder->answer(word, answers);
        const bool blocked = word.isEmpty() && QDir().mkdir(m_folder->misc() + "/CommandFile.txt");
        QCOMPARE(m_writer->read("S"), !blocked);
        QElapsedTimer timer;
        timer.start();
        m_parser->start(limits[0], limits[1], limits[2]);
        QTRY_VERIFY_WITH_TIMEOUT(m_host.journal.lines.size() > 3, Limit); // the polling has begun
        const int delay = limits[2] ? limits[2] : 500;
        QVERIFY(timer.elapsed() >= delay);
        if (duringPolling) {
            QTRY_VERIFY_WITH_TIMEOUT(!m_percentages.isEmpty() && (m_parser->m_state || answers.isEmpty()), Limit);
            duringPolling(*m_folder);
        }
        QTRY_VERIFY_WITH_TIMEOUT(!m_ends.isEmpty(), Limit);
        const StatusRecord record = m_record;
        const int state = m_parser->m_state;
        QTest::qWait(TwoTicks);

        static const QRegularExpression line(
            "^(mcp|err)\\|--- (?|(Stop|Cancel|Error)|'(Un\\w+) command' timeout) during "
            "polling \\(linear progress: -?\\d+ of -?\\d+ = -?\\d+%\\) detected/notified "
            "(\\[changed=[01]\\])\\.\\|\\|$");
        const QStringList ends = m_host.journal.lines.filter(line);
        QCOMPARE(ends.size(), 1);
        const QRegularExpressionMatch match = line.match(ends[0]);
        QCOMPARE(QStringLiteral("%1, %2 %3 %4, status %5, state %6")
                     .arg(m_ends.join('+'), match.captured(1), match.captured(2), match.captured(3).remove("changed="))
                     .arg(static_cast<int>(record.status))
                     .arg(state),
                 end);
        // As the reader wrote them, also after a cancel.
        QCOMPARE(record.result, answers.isEmpty() ? "old" : answers.last().result);
        QCOMPARE(record.error, answers.isEmpty() ? 3 : answers.last().error);
        QVERIFY(std::all_of(m_percentages.cbegin(), m_percentages.cend(), [](int p) { return p >= 0 && p < 100; }));
        QVERIFY(limits[2] != 0 || m_percentages.isEmpty());                              // ended at its first tick
        QVERIFY(state != StatusFileParser::Started || m_seen == CommandStatus::Running); // during the polling too

        const QStringList log = m_host.journal.lines;
        QCOMPARE(log.value(1), QString("mcp|=?= <[Before]: BTREAD, 2, 3, old> status snapshot.||"));
        QCOMPARE(log.value(2), QString("mcp|=== Observer start requested (in %1 msec).||").arg(delay));
        const QString one = "mcp|=== Observer polling started with timeout of '%1'secs.||";
        const QString two = "mcp|=== Observer polling started with timeouts of '%2' (Start) and '%1' (Stop) secs.||";
        QCOMPARE(log.value(3), limits[1] > 0 ? two.arg(limits[0]).arg(limits[1]) : one.arg(limits[0]));
        QVERIFY(state != StatusFileParser::Started || log.count("mcp|Observed operation started.||") == 1);
        QCOMPARE(log.count("mcp|Observed operation finished.||"), state == StatusFileParser::Ended ? 1 : 0);
        if (duringPolling)
            return;
        const QStringList observed = log.filter("> observed.||"); // on a slow machine fewer
        QVERIFY(observed.size() <= answers.size());
        QCOMPARE(observed.isEmpty() ? QString() : observed.last(),
                 answers.isEmpty() ? QString() : "mcp|==> <" + record.toLogText() + "> observed.||");
    }

    void progressFollowsTheCurve()
    {
        const MessageCapture messages;
        m_parser->start(1, 0, 5);
        QTRY_VERIFY_WITH_TIMEOUT(!m_ends.isEmpty(), Limit);
        QVERIFY(m_percentages.size() > 3);
        QList<int> expected;
        int last = 0;
        int shortest = 1000;
        const QRegularExpression tick("^void StatusFileParser::continuePolling\\(\\) Polling continued \\(linear "
                                      "progress: (\\d+) of 1000 = (\\d+)%\\)$");
        for (const QString& line : messages.texts(QtDebugMsg, "default")) {
            const QRegularExpressionMatch match = tick.match(line);
            if (!match.hasMatch())
                continue;
            const int elapsed = match.captured(1).toInt();
            QCOMPARE(match.captured(2).toInt(), elapsed / 10);
            if (!expected.isEmpty())
                shortest = std::min(shortest, elapsed - std::exchange(last, elapsed));
            expected.append(1000 * elapsed / (1000 + 9 * elapsed)); // 52 at a tenth, 90 at half
        }
        QCOMPARE(m_percentages, expected);
        QVERIFY2(shortest >= 99 && shortest < 125, qPrintable(QString::number(shortest))); // of the ticks' distances
    }

    void recordWaitsForTheEventLoop()
    {
        m_writer->read("S");
        m_parser->start(20, 0, 5);
        m_folder->writeStatus("New", "BTREAD", "running");
        QElapsedTimer timer;
        for (timer.start(); m_parser->m_state != StatusFileParser::Started && timer.elapsed() < Limit;)
            QThread::yieldCurrentThread();
        QCOMPARE(m_parser->m_lastStatus, StatusRecord());
        QTRY_COMPARE_WITH_TIMEOUT(m_parser->m_lastStatus.header, QString("New"), Limit);
    }

    void cancelOutsideAPollingEndsOnlyTheNextOne()
    {
        m_parser->cancel();
        QVERIFY(QFile::remove(m_folder->misc() + "/STATUS.TXT"));
        m_parser->start(20, 0, 5); // ends by its failed read: the request stays
        QTRY_COMPARE_WITH_TIMEOUT(m_ends, QStringList("timeout"), Limit);
        QCOMPARE(m_host.journal.lines.filter("snapshot"), QStringList());

        const auto poll = [this](const Answers& answers, int delay) {
            m_folder->writeStatus("Before", "ABORT", "done"); // an old one, which ends nothing
            m_folder->answer("BTREAD", answers);
            m_writer->read("S");
            m_parser->start(20, 0, delay);
        };
        poll({{0, "done"}}, 0); // would end at its first tick, but is cancelled
        QTRY_COMPARE_WITH_TIMEOUT(m_ends.join(' '), QString("timeout finished(1)"), Limit);
        QCOMPARE(m_parser->m_lastStatus.status, CommandStatus::Canceled);
        QCOMPARE(m_percentages, QList<int>());
        QCOMPARE(m_host.journal.lines.filter(QRegularExpression("^err.--- Cancel .*=1\\]")).size(), 1);

        poll({{200, "done"}}, 5); // not ended by the state of the previous polling
        QTRY_COMPARE_WITH_TIMEOUT(m_ends.join(' '), QString("timeout finished(1) finished(1)"), Limit);
        QCOMPARE(m_parser->m_lastStatus.status, CommandStatus::Done);

        poll({{0, "done"}}, 0);
        m_parser->cancel(); // before the polling begins, in the state of an ended one: no effect
        QTRY_COMPARE_WITH_TIMEOUT(m_ends.join(' '), QString("timeout finished(1) finished(1) finished(1)"), Limit);
        QCOMPARE(m_parser->m_lastStatus.status, CommandStatus::Done);
        QCOMPARE(m_host.journal.lines.count("mcp|=== Observer canceling.||"), 2);
    }

    void destroyedDuringAPolling()
    {
        m_folder->answer("BTREAD", {{20, "running"}, {100, "running"}, {100, "running"}});
        m_writer->read("S");
        m_parser->start(20, 0, 5);
        QTRY_VERIFY_WITH_TIMEOUT(m_percentages.size() >= 3, Limit);
        delete std::exchange(m_parser, nullptr);
        QCOMPARE(m_host.journal.lines.last(), "mcp|Status file parser finished.||" + m_folder->misc());
        const int records = m_host.journal.lines.size();
        QTest::qWait(TwoTicks);
        QCOMPARE(m_ends, QStringList());
        QCOMPARE(m_host.journal.lines.size(), records);
    }

private:
    RecordingHost m_host;
    std::unique_ptr<ReaderFolder> m_folder;
    CommandFileWriter* m_writer = nullptr;
    StatusFileParser* m_parser = nullptr;
    QStringList m_ends;
    QList<int> m_percentages;
    StatusRecord m_record;                         ///< when the polling ended
    CommandStatus m_seen = CommandStatus::Unknown; ///< in the record at the last progress
    std::atomic<int> m_strangers{0};               ///< signals emitted on any thread but the worker's
};

QTEST_GUILESS_MAIN(TestReaderPolling)
#include "tst_reader_polling.moc"
