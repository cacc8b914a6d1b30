// SPDX-FileCopyrightText: 2026 The Merivo Connections developers
// SPDX-License-Identifier: MIT
#include "plugin/session/Logger.h"
#include "plugin/session/PatientSession.h"
#include "support/MessageCapture.h"
#include "support/RecordingHost.h"

#include <QLoggingCategory>
#include <QTest>

namespace {

QStringList words(const char* text)
{
    return *text ? QString::fromLatin1(text).split(QLatin1Char(',')) : QStringList();
}

} // namespace

class TestSession final : public QObject
{
    Q_OBJECT

    RecordingHost m_host;
    // The host only hands it through.
    IPlugin* const m_source = reinterpret_cast<IPlugin*>(this);

private Q_SLOTS:
    void initTestCase()
    {
        Logger* logger = Logger::instance(m_source, &m_host.services);
        QCOMPARE(Logger::instance(nullptr, nullptr), logger);
        PatientSession::setHost(&m_host.services, &m_host.database);
    }

    void record_data()
    {
        QTest::addColumn<QString>("channel");
        QTest::addColumn<int>("level");
        const QMap<QtMsgType, QStringList> channels{{QtInfoMsg, {"Info", "txt"}},
                                                    {QtWarningMsg, {"Warning"}},
                                                    {QtCriticalMsg, {"Error", "err"}},
                                                    {QtDebugMsg, {"mcp", "ERR", "info", "warning", "err ", ""}}};
        for (auto level = channels.cbegin(); level != channels.cend(); ++level) {
            for (const QString& channel : level.value())
                QTest::newRow(channel.toLatin1()) << channel << int(level.key());
        }
    }
    void record()
    {
        QFETCH(QString, channel);
        QFETCH(int, level);
        const MessageCapture capture;
        m_host.journal.clear();
        Logger* logger = Logger::instance(nullptr, nullptr);
        logger->write("a \"q\"", channel, "", "");
        logger->write("a", channel, "b", "c");
        QLoggingCategory::setFilterRules(QStringLiteral("plugin.merivoconnections=false"));
        logger->write("silent", channel, "", "x"); // for Qt's log alone

        QCOMPARE(capture.messages().size(), 2);
        QCOMPARE(capture.texts(QtMsgType(level), QStringLiteral("plugin.merivoconnections")),
                 (QStringList{"[MC] a \"q\"; ; ", "[MC] a; b; c"}));
        QCOMPARE(m_host.journal.lines,
                 (QStringList{channel + "|a \"q\"||", channel + "|a|b|c", channel + "|silent||x"}));
        QCOMPARE(m_host.services.lastSource, m_source);
        QCOMPARE(Logger::instance(nullptr, nullptr)->logValue({}, {}, {}, {}, {}), quintptr(4));
    }

    void recordsOfAnotherThreadReachTheHostOnOurs()
    {
        const MessageCapture capture;
        m_host.journal.clear();
        const auto write = [](const char* message) {
            Logger::instance(nullptr, nullptr)->write(message, "mcp", {}, {});
        };
        const std::unique_ptr<QThread> worker(QThread::create([&write] {
            write("1");
            write("2");
        }));
        worker->start();
        QVERIFY(worker->wait(10000));
        QVERIFY(m_host.journal.lines.isEmpty());
        write("3"); // What was written before comes before, without an event loop.
        QCOMPARE(m_host.journal.lines.join(QString()), QStringLiteral("mcp|1||mcp|2||mcp|3||"));
        QCOMPARE(m_host.journal.threads, QList<QThread*>({thread(), thread(), thread()}));
        QCOMPARE(capture.texts(QtDebugMsg).size(), 3);
    }

    void names_data()
    {
        QTest::addColumn<QStringList>("pids");
        QTest::addColumn<QString>("name");
        QTest::addColumn<QString>("extension");
        const auto row = [](const char* pids, const char* name, const char* extension) {
            QTest::newRow(pids) << words(pids) << QString(name) << QString(extension);
        };
        row("", "", "");
        row("Doe", "Doe", "");
        row("Doe,", "Doe", "");
        row(",Jane", ", Jane", "");
        row("%1,%2,,X1", "%1, %2", "X1");
        row("Doe,Jane,", "Doe, Jane", "");
        row("Doe,Jane,1970-02-03,", "Doe, Jane", "03.02.1970");
        row("Doe,Jane,1970-02-03,X1,X2", "Doe, Jane", "03.02.1970, X1");
        row("Doe,Jane,1970-02-03", "Doe, Jane", "03.02.1970, 1970-02-03");
        row("Doe,Jane,1970-02-30,X1", "Doe, Jane", "1970-02-30, X1");
    }
    void names()
    {
        QFETCH(QStringList, pids);
        PatientSession* session = PatientSession::create(nullptr);
        session->setPids(pids);
        const MessageCapture capture;
        QTEST(session->patientName(), "name");
        QTEST(session->patientIdExt(), "extension");
        QStringList traced;
        if (!pids.value(2).isEmpty()) {
            const QString line = "static QString PatientSession::patientIdExt(const QStringList&) %1 birthday = '%2'";
            traced << line.arg(">>", pids.at(2)) << line.arg("<<", session->patientIdExt().section(',', 0, 0));
        }
        QCOMPARE(capture.texts(QtDebugMsg, QStringLiteral("default")).mid(0, 2), traced);
    }

    void pump()
    {
        PatientSession* session = PatientSession::create(nullptr);
        QCOMPARE(PatientSession::instance(), session);
        QCOMPARE(session->deviceName(), QStringLiteral("Sanvio Merivo"));
        QVERIFY(session->patientId().isEmpty() && session->pids().isEmpty());
        const QStringList rows[] = {{"123", "Other", "Other"},
                                    {"124", "Cygnara", "Sanvio Merivo"},
                                    {"125", "cygnara", "cygnara"},
                                    {"", "", "Sanvio Merivo"}};
        for (const QStringList& row : rows) {
            session->setPump(row.at(0), row.at(1));
            QCOMPARE(session->pumpSerialNumber(), row.at(0));
            QCOMPARE(session->deviceName(), row.at(2));
        }
    }

    void patientsAreLookedUp()
    {
        m_host.database.records = {
            {"k1", {"p2", words("Doe,Jane")}}, {"k2", {"p1", words("Roe")}}, {"k3", {"p1", words("Poe")}}};
        m_host.journal.clear();
        QCOMPARE(PatientSession::patientIdsOf(QStringLiteral("p1")), words("Roe"));
        QCOMPARE(m_host.journal.lines, (QStringList{QStringLiteral("databaseGuid('/data/open.db')"),
                                                    QStringLiteral("patients('%1')").arg(m_host.database.guid)}));
        QVERIFY(PatientSession::patientIdsOf(QStringLiteral("P2")).isEmpty());
    }
};

QTEST_GUILESS_MAIN(TestSession)
#include "tst_session.moc"
