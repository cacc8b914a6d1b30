// SPDX-FileCopyrightText: 2026 The Merivo Connections developers
// SPDX-License-Identifier: MIT
#include "plugin/session/Logger.h"
#include "plugin/session/PatientSession.h"
#include "reader/CommandFileWriter.h"
#include "reader/StatusFileParser.h"
#include "support/ModalUser.h"
#include "support/ReaderFolder.h"
#include "support/RecordingHost.h"
#include "workflows/AddPumpControl.h"
#include "workflows/ReadoutPumpControl.h"
#include "workflows/RemovePumpControl.h"

#include <QDir>
#include <QRegularExpression>
#include <QSignalSpy>
#include <QTest>

/// What the dialogs, whose tests run the workflows too, neither use nor show.
class TestWorkflows final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { Logger::instance(nullptr, &m_host.services); }

    void init()
    {
        m_reader = std::make_unique<ReaderFolder>();
        QVERIFY(m_reader->writeStatus("idle", "NONE", "done"));
        QVERIFY(m_reader->writeFile("DEVLIST.XML", "<DEVICELIST><DEVICE><SERIALNR>PU1</SERIALNR><INTERFACE><BTADR>B"
                                                   "</BTADR></INTERFACE></DEVICE></DEVICELIST>"));
        CommandFileWriter::create(m_reader->drive());
        QVERIFY(QDir::setCurrent(m_reader->drive()));
        StatusFileParser::create("."); // as a simulation may be named
        PatientSession::create(nullptr)->setPatientId("P");
        m_add = std::make_unique<AddPumpControl>(&m_host.services, &m_host.database);
        m_read = std::make_unique<ReadoutPumpControl>();
        m_remove = std::make_unique<RemovePumpControl>();
        m_host.journal.clear();
    }

    void cleanup()
    {
        delete StatusFileParser::instance();
        delete CommandFileWriter::instance();
    }

    void statusIsPassedOn()
    {
        const BoxAnswerer boxes;
        const auto check = [this](QSignalSpy&& stopped, const std::function<void()>& begin,
                                  const QVector<CommandStatus>& ends) {
            for (const CommandStatus status : ends) {
                begin();
                end(true, status);
                begin();
                end(false, CommandStatus::Done);
                QCOMPARE(stopped.size(), 2);
                QCOMPARE(stopped.takeFirst().constFirst().value<CommandStatus>(), status);
                QCOMPARE(stopped.takeFirst().constFirst().value<CommandStatus>(), CommandStatus::Unknown);
            }
        };
        m_add->startPairingSearch();
        end(true, CommandStatus::Done);
        const QVector<CommandStatus> all{CommandStatus::Failed, CommandStatus::Canceled, CommandStatus::Unknown};
        check(
            QSignalSpy(m_add.get(), &AddPumpControl::pairingProcessStopped), [this] { m_add->startPairing(0); }, all);
        check(
            QSignalSpy(m_add.get(), &AddPumpControl::pairingConfirmStopped),
            [this] { m_add->startPairingConfirm(true); }, all);
        check(
            QSignalSpy(m_add.get(), &AddPumpControl::pairingDeclineFinished),
            [this] { m_add->startPairingConfirm(false); }, all + QVector<CommandStatus>{CommandStatus::Done});
        check(
            QSignalSpy(m_add.get(), &AddPumpControl::reassignStopped), [this] { m_add->startReassign(0); }, all);
        check(
            QSignalSpy(m_remove.get(), &RemovePumpControl::removingFinished), [this] { m_remove->startRemoving(); },
            all);
        check(QSignalSpy(m_add.get(), &AddPumpControl::pairingSearchStopped), [this] { m_add->startPairingSearch(); },
              {CommandStatus::Failed});
        check(QSignalSpy(m_read.get(), &ReadoutPumpControl::readoutFinished), [this] { m_read->startReadout("PU1"); },
              {CommandStatus::Failed, CommandStatus::Canceled});
    }

    void pairingTakesTheRowsOfItsOwnListAndAnyCode()
    {
        QSignalSpy codes(m_add.get(), &AddPumpControl::pairingCodeReceived);
        QSignalSpy progress(m_add.get(), &AddPumpControl::pairingSearchProgress);
        m_add->startPairing(0); // no list yet
        m_add->startPairingSearch();
        end(true, CommandStatus::Done);
        m_host.journal.clear();
        for (const int row : {-1, 1}) {
            m_add->startPairing(row);
            m_add->startReassign(row);
        }
        end(true, CommandStatus::Done);
        QCOMPARE(m_host.journal.lines, QStringList());
        for (const QString& code : {QString(), QString(" %1<b>\n"), QString(10000, 'x')}) {
            m_add->startPairing(0);
            end(true, CommandStatus::Done, code);
            QCOMPARE(codes.takeFirst(), QVariantList{code});
        }
        QCOMPARE(progress, (QList<QVariantList>{{"", 0}, {"", 100}}));
        QVERIFY(QDir(m_reader->misc()).removeRecursively()); // a command that can't be written is awaited all the same
        QSignalSpy polling(StatusFileParser::instance(), &StatusFileParser::pollingRequested);
        m_add->startPairingSearch();
        QCOMPARE(polling.size(), 1);
        QCOMPARE(progress.last(), (QVariantList{"PU1", 0})); // of the latest pairing
    }

    void searchBeforeAReadOutEndsWithoutOne()
    {
        const BoxAnswerer boxes(&m_host.journal.lines);
        QSignalSpy finished(m_read.get(), &ReadoutPumpControl::searchingFinished);
        const auto endsWith = [&](bool isExecuted, CommandStatus status, CommandStatus signalled) {
            m_host.journal.clear();
            m_read->startSearching("PU");
            end(isExecuted, status);
            const bool isSignalled = finished.takeFirst().constFirst().value<CommandStatus>() == signalled;
            return m_host.journal.lines.filter(QRegularExpression("^(err|box)")).join('\n') +
                   (isSignalled ? "" : "other status");
        };
        const QString failed = "err|=!= [Read Controller] Searching failed";
        const QString cancelled = "err|=!= [Read Controller] Searching canceled: error='32'.||";
        QCOMPARE(endsWith(true, CommandStatus::Canceled, CommandStatus::Canceled), cancelled);
        QCOMPARE(endsWith(false, CommandStatus::Canceled, CommandStatus::Canceled), cancelled);
        QCOMPARE(endsWith(false, CommandStatus::Done, CommandStatus::Unknown), failed + ".||");
        QCOMPARE(endsWith(true, CommandStatus::Failed, CommandStatus::Failed).section("<br/>", 0, 0),
                 failed + ": error='32'.||\nerr|Error message box: code='32'||\n"
                          "box|Merivo Connections|<b>Connection lost</b>");
        QCOMPARE(endsWith(true, CommandStatus::Done, CommandStatus::Done),
                 "box|Merivo Connections|The paired device for the patient can't be found.\n" + failed +
                     ": no paired pump with snr='PU' for patient found.||");
    }

    void foundPumpIsRead()
    {
        m_reader->answer("SEARCH", {{10, "running"}, {200, "done"}});
        m_reader->answer("BTREAD", {{10, "running"}, {700, "done"}});
        QVERIFY(m_reader->writeFile("I1.xml", "<x/>"));
        QSignalSpy succeeded(m_read.get(), &ReadoutPumpControl::readoutSucceeded);
        QSignalSpy polling(StatusFileParser::instance(), &StatusFileParser::pollingRequested);
        m_read->startSearching("PU1");
        QTRY_COMPARE_WITH_TIMEOUT(succeeded.size(), 1, 10000);
        QCOMPARE(m_reader->commandsSeen, (QStringList{"SEARCH 00100", "BTREAD \"PU1\""}));
        QCOMPARE(polling, (QList<QVariantList>{{20, 0, 500}, {440, 20, 500}}));
        QCOMPARE(
            m_host.journal.lines.filter("Controller]"),
            (QStringList{"mcp|<== [Read Controller] Start searching: snr='PU1'.||",
                         "mcp|==> [Read Controller] Searching succeeded: status='2'.||",
                         "mcp|<== [Read Controller] Start readout: snr='PU1'.||",
                         "mcp|==> [Read Controller] Readout succeeded: status='2'.||" + m_reader->misc() + "/I1.xml"}));
    }

private:
    static void end(bool isExecuted, CommandStatus status, const QString& result = {})
    {
        StatusFileParser::instance()->m_lastStatus = {"h", "X", status, result, 32};
        Q_EMIT StatusFileParser::instance()->finished(isExecuted);
        QCoreApplication::sendPostedEvents();
    }

    RecordingHost m_host;
    std::unique_ptr<ReaderFolder> m_reader;
    std::unique_ptr<AddPumpControl> m_add;
    std::unique_ptr<ReadoutPumpControl> m_read;
    std::unique_ptr<RemovePumpControl> m_remove;
};

QTEST_MAIN(TestWorkflows)

#include "tst_workflows.moc"
