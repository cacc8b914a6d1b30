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
        for (const char* channel : {"Info", "txt"})
            QTest::newRow(channel) << QString::fromLatin1(channel) << int(QtInfoMsg);
        for (const char* channel : {"Error", "err"})
            QTest::newRow(channel) << QString::fromLatin1(channel) << int(QtCriticalMsg);
        for (const char* channel : {"mcp", "ERR", "info", "warning", "err ", ""})
            QTest::newRow(channel) << QString::fromLatin1(channel) << int(QtDebugMsg);
        QTest::newRow("Warning") << QStringLiteral("Warning") << int(QtWarningMsg);
    }
    void record()
    {
        QFETCH(QString, channel);
        QFETCH(int, level);
        const MessageCapture capture;
        const auto write = [&channel](const char* message, const char* detail1, const char* detail2) {
            Logger::instance(nullptr, nullptr)
                ->write(QString::fromLatin1(message), channel, QString::fromLatin1(detail1),
                        QString::fromLatin1(detail2));
        };
        m_host.journal.clear();
        write("a \"q\"", "", "");
        write("a", "b", "c");
        QLoggingCategory::setFilterRules(QStringLiteral("plugin.merivoconnections=false"));
        write("silent", "", "x"); // for Qt's log alone

        QList<MessageCapture::Message> messages = capture.messages();
        QCOMPARE(messages.size(), 2);
        QCOMPARE(messages.first().text, QStringLiteral("[MC] a \"q\"; ; "));
        QCOMPARE(messages.last().text, QStringLiteral("[MC] a; b; c"));
        for (const MessageCapture::Message& message : qAsConst(messages)) {
            QCOMPARE(int(message.type), level);
            QCOMPARE(message.category, QStringLiteral("plugin.merivoconnections"));
        }
        QCOMPARE(m_host.journal.lines,
                 (QStringList{channel + QStringLiteral("|a \"q\"||"), channel + QStringLiteral("|a|b|c"),
                              channel + QStringLiteral("|silent||x")}));
        QCOMPARE(m_host.services.lastSource, m_source);
        QCOMPARE(Logger::instance(nullptr, nullptr)->logValue({}, {}, {}, {}, {}), quintptr(4));
    }

    void recordsOfAnotherThreadReachTheHostOnOurs()
    {
        const MessageCapture capture;
        m_host.journal.clear();
        const auto write = [](const char* message) {
            Logger::instance(nullptr, nullptr)->write(QString::fromLatin1(message), QStringLiteral("mcp"), {}, {});
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
        QTest::addColumn<QStringList>("traced");
        const auto row = [](const char* pids, const char* name, const char* extension, const char* traced) {
            QTest::newRow(pids) << words(pids) << QString::fromLatin1(name) << QString::fromLatin1(extension)
                                << words(traced);
        };
        row("", "", "", "");
        row("Doe", "Doe", "", "");
        row("Doe,", "Doe", "", "");
        row(",Jane", ", Jane", "", "");
        row("Doe,Jane,,X1", "Doe, Jane", "X1", "");
        row("Doe,Jane,", "Doe, Jane", "", "");
        row("Doe,Jane,,", "Doe, Jane", "", "");
        row("Doe,Jane,1970-02-03,", "Doe, Jane", "03.02.1970", ">> '1970-02-03',<< '03.02.1970'");
        row("Doe,Jane,1970-02-03,X1,X2", "Doe, Jane", "03.02.1970, X1", ">> '1970-02-03',<< '03.02.1970'");
        row("Doe,Jane,1970-02-03", "Doe, Jane", "03.02.1970, 1970-02-03", ">> '1970-02-03',<< '03.02.1970'");
        row("Doe,Jane,1970-02-30,X1", "Doe, Jane", "1970-02-30, X1", ">> '1970-02-30',<< '1970-02-30'");
        row("%1,%2", "%1, %2", "", "");
    }
    void names()
    {
        QFETCH(QStringList, pids);
        QFETCH(QStringList, traced);
        PatientSession* session = PatientSession::create(nullptr);
        session->setPids(pids);
        const MessageCapture capture;
        QTEST(session->patientName(), "name");
        QTEST(session->patientIdExt(), "extension");
        for (QString& line : traced) {
            line.insert(3, QStringLiteral("birthday = "));
            line.prepend(QStringLiteral("static QString PatientSession::patientIdExt(const QStringList&) "));
        }
        QCOMPARE(capture.texts(QtDebugMsg, QStringLiteral("default")), traced);
    }

    void pump()
    {
        PatientSession* session = PatientSession::create(nullptr);
        QCOMPARE(PatientSession::instance(), session);
        QCOMPARE(session->deviceName(), QStringLiteral("Sanvio Merivo"));
        QVERIFY(session->patientId().isEmpty() && session->pids().isEmpty());
        const struct
        {
            const char* serialNumber;
            const char* device;
            const char* shown;
        } rows[] = {{"123", "Other", "Other"},
                    {"124", "Cygnara", "Sanvio Merivo"},
                    {"125", "cygnara", "cygnara"},
                    {"", "", "Sanvio Merivo"}};
        for (const auto& row : rows) {
            session->setPump(QString::fromLatin1(row.serialNumber), QString::fromLatin1(row.device));
            QCOMPARE(session->pumpSerialNumber(), QString::fromLatin1(row.serialNumber));
            QCOMPARE(session->deviceName(), QString::fromLatin1(row.shown));
        }
    }

    void patientsAreLookedUp()
    {
        m_host.database.records = {{QStringLiteral("k1"), {QStringLiteral("p2"), words("Doe,Jane")}},
                                   {QStringLiteral("k2"), {QStringLiteral("p1"), words("Roe")}},
                                   {QStringLiteral("k3"), {QStringLiteral("p1"), words("Poe")}}};
        m_host.journal.clear();
        QCOMPARE(PatientSession::patientIdsOf(QStringLiteral("p1")), words("Roe"));
        QCOMPARE(m_host.journal.lines, (QStringList{QStringLiteral("databaseGuid('/data/open.db')"),
                                                    QStringLiteral("patients('%1')").arg(m_host.database.guid)}));
        QVERIFY(PatientSession::patientIdsOf(QStringLiteral("P2")).isEmpty());
    }
};

QTEST_GUILESS_MAIN(TestSession)
#include "tst_session.moc"
