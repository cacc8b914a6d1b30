// SPDX-FileCopyrightText: 2026 The Merivo Connections developers
// SPDX-License-Identifier: MIT
#include "plugin/session/Logger.h"
#include "plugin/session/PatientSession.h"
#include "reader/CommandFileWriter.h"
#include "reader/StatusFileParser.h"
#include "support/BoxAnswerer.h"
#include "support/ReaderFolder.h"
#include "support/RecordingHost.h"
#include "workflows/AddPumpControl.h"
#include "workflows/ReadoutPumpControl.h"
#include "workflows/RemovePumpControl.h"

#include <QDir>
#include <QRegularExpression>
#include <QTest>

/// What happens stands in the host's journal: log lines, boxes and signals, and ahead of each what is new in the
/// session.
class TestWorkflows final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { Logger::instance(nullptr, &m_host.services); }

    void init()
    {
        m_reader = std::make_unique<ReaderFolder>();
        const QString device = "<DEVICE><SERIALNR>%1</SERIALNR><INTERFACE><BTADR>B</BTADR><PATIENT_ID>%2</PATIENT_ID>"
                               "</INTERFACE></DEVICE>";
        const QString devices = device.arg("PU1", "%2") + device.arg("PU123", "0") + device.arg("pu12", "P") +
                                device.arg("PU2", "p") + device.arg("PU3", "p&x;"); // whose patient can't be read
        QVERIFY(m_reader->writeStatus("idle", "NONE", "done"));
        QVERIFY(m_reader->writeFile("DEVLIST.XML", "<DEVICELIST>" + devices.toUtf8() + "</DEVICELIST>"));
        m_host.database.records = {{"p", {"P", {"%2"}}}}; // the key alone counts, as it is written
        CommandFileWriter::create(m_reader->drive());
        QVERIFY(QDir::setCurrent(m_reader->drive()));
        StatusFileParser* parser = StatusFileParser::create("."); // as a simulation may be named
        PatientSession::create(nullptr)->setPatientId("P");
        usePump("OLD");
        m_host.services.beforeLogLine = [this](const QString& message) {
            noteSession();
            if (message.startsWith("Error message box"))
                usePump("LATE"); // comes while the box stands
        };

        m_add = std::make_unique<AddPumpControl>(&m_host.services, &m_host.database);
        m_read = std::make_unique<ReadoutPumpControl>();
        m_remove = std::make_unique<RemovePumpControl>();
        const auto note = [this](const char* name) {
            return [this, name](const auto&... values) {
                noteSession();
                m_host.journal.add((QStringList{name} << ... << shown(values)).join(' '));
            };
        };
        connect(parser, &StatusFileParser::pollingRequested, this, note("poll"));
        connect(m_add.get(), &AddPumpControl::pairingSearchStopped, this, note("search stopped"));
        connect(m_add.get(), &AddPumpControl::pairingSearchResults, this, note("results"));
        connect(m_add.get(), &AddPumpControl::pairingSearchProgress, this, note("progress"));
        connect(m_add.get(), &AddPumpControl::pairingProcessStopped, this, note("process stopped"));
        connect(m_add.get(), &AddPumpControl::pairingCodeReceived, this, note("code"));
        connect(m_add.get(), &AddPumpControl::pairingConfirmStopped, this, note("confirm stopped"));
        connect(m_add.get(), &AddPumpControl::pairingDeclineFinished, this, note("decline finished"));
        connect(m_add.get(), &AddPumpControl::reassignStopped, this, note("reassign stopped"));
        connect(m_add.get(), &AddPumpControl::pumpAssigned, this, note("assigned"));
        connect(m_read.get(), &ReadoutPumpControl::searchingFinished, this, note("searching"));
        connect(m_read.get(), &ReadoutPumpControl::readoutFinished, this, note("readout"));
        connect(m_read.get(), &ReadoutPumpControl::readoutSucceeded, this, note("succeeded"));
        connect(m_read.get(), &ReadoutPumpControl::readoutProgress, this, note("progress"));
        connect(m_remove.get(), &RemovePumpControl::removingSucceeded, this, note("removed"));
        connect(m_remove.get(), &RemovePumpControl::removingFinished, this, note("removing"));
        m_host.journal.clear();
    }

    void cleanup()
    {
        delete StatusFileParser::instance();
        delete CommandFileWriter::instance();
    }

    void endsEachWay_data()
    {
        QTest::addColumn<QString>("steps"); // a letter, + or - for the outcome, the status; the last one counts
        QTest::addColumn<QString>("files"); // there ahead of the first; a name that ends in "/" is a folder
        QTest::addColumn<QString>("expected");
        const auto row = [](const char* steps, const char* files, const QString& expected) {
            QTest::addRow("%s %s", steps, files) << steps << files << expected;
        };
        // Where a box comes ahead of the log line and where behind it, and where the session: uneven on purpose.
        row("S-2", "", "err|=!= [Add] Pairing search failed.\nsearch stopped 4");
        row("S-3", "", "err|=!= [Add] Pairing search failed.\nsearch stopped 4");
        row("S+0", "", "");
        row("S+1", "", "[box]\nerr|=!= [Add] Pairing search failed: status='1'.\nsearch stopped 1");
        row("S+2", "",
            "progress '' 100\ndatabaseGuid('/data/open.db')\npatients('" + m_host.database.guid +
                "')\nmcp|=== [Add] Original devices list: count='5'.\nmcp|<== <BTDELETEADDR  \"PU2\"> submitted.\n"
                "mcp|=== [Add] Deprecated pairing info (puid='p', snr='PU2') removed.\n"
                "mcp|<== <BTDELETEADDR  \"PU1\"> submitted.\n"
                "mcp|=== [Add] Deprecated pairing info (puid='%2', snr='PU1') removed.\n"
                "mcp|=== [Add] Cleared devices list: count='5'.\n"
                "mcp|==> [Add] Pairing search succeeded: status='2'.\nresults 5 PU1,PU123,pu12 of P,PU2,PU3 of ");
        row("S+2", "DEVLIST.XML",
            "progress '' 100\nerr|=!= [Add] Empty device list.\n"
            "mcp|==> [Add] Pairing search succeeded: status='2'.\nresults 0 ");
        row("S+3", "", "mcp|=!= [Add] Pairing search stopped: status='3'.");
        row("S+4", "", "");
        row("S+2 P-2", "", "err|=!= [Add] Pairing process start failed.\nprocess stopped 4");
        row("S+2 P+1", "", "[box]\nerr|=!= [Add] Pairing process start failed: status='1'.\n[none]\nprocess stopped 1");
        row("S+2 P+2", "", "mcp|==> [Add] Pairing process start succeeded: status='2'.\ncode 'R'");
        row("S+2 S+3 P+3", "", "err|=!= [Add] Pairing process start failed: status='3'.\n[none]\nprocess stopped 3");
        row("S+2 P+2 S+4 P+4", "",
            "err|=!= [Add] Pairing process start failed: status='4'.\n[none]\nprocess stopped 4");
        row("S+2 P+2 C-2", "", "err|=!= [Add] Pairing confirm failed.\nconfirm stopped 4");
        row("S+2 P+2 C+1", "",
            "[none]\n[box]\nerr|=!= [Add] Pairing confirm failed: status='1'.\n[none]\nconfirm stopped 1");
        row("S+2 P+2 C+2", "",
            "mcp|==> [Add] Pairing confirm succeeded: status='2'.\npump PU123/Sanvio Merivo\nassigned");
        row("S+2 P+2 C+3", "", "err|=!= [Add] Pairing confirm failed: status='3'.\n[none]\nconfirm stopped 3");
        row("S+2 P+2 C+4", "", "err|=!= [Add] Pairing confirm failed: status='4'.\n[none]\nconfirm stopped 4");
        row("S+2 P+2 D-1", "", "err|=!= [Add] Pairing decline failed.\ndecline finished 4");
        row("S+2 P+2 D+1", "", "mcp|==> [Add] Pairing decline finished: status='1'.\ndecline finished 1");
        row("S+2 P+2 D+2", "", "mcp|==> [Add] Pairing decline finished: status='2'.\ndecline finished 2");
        row("S+2 A-2", "", "err|=!= [Add] Reassign failed.\nreassign stopped 4");
        row("S+2 A+1", "", "[box]\nerr|=!= [Add] Reassign failed: status='1'.\n[none]\nreassign stopped 1");
        row("S+2 A+2", "", "pump PU2/Sanvio Merivo\nmcp|==> [Add] Reassign succeeded: status='2'.\nassigned");
        row("S+2 A+3", "", "err|=!= [Add] Reassign failed: status='3'.\nreassign stopped 3");
        row("S+2 A+4", "", "err|=!= [Add] Reassign failed: status='4'.\nreassign stopped 4");
        row("X-2", "", "err|=!= [Remove] Removing failed.\nremoving 4");
        row("X+1", "", "[box]\nerr|=!= [Remove] Removing failed: error='32'.\nremoving 1");
        row("X+2", "", "mcp|==> [Remove] Removing succeeded: status='2'.\nremoved");
        row("X+3", "", "err|=!= [Remove] Removing failed: error='32'.\nremoving 3");
        row("X+4", "", "err|=!= [Remove] Removing failed: error='32'.\nremoving 4");

        const char* success = "progress 'PU123' 100\nfile [misc]/%1\n"
                              "mcp|==> [Read] Readout succeeded: status='2'.||[misc]/%1\nsucceeded";
        const char* tooMany =
            "progress 'PU123' 100\nerr|=!= [Read] Readout failed: To many (=2) exchange files found.\n"
            "readout 4";
        row("R+2", "I1.xml J1.xml I1.txt", QString(success).arg("I1.xml"));
        row("R+2", "i1.XML", QString(success).arg("i1.XML"));
        row("R+2", "Ix.xml/", QString(success).arg("Ix.xml"));
        row("R+2", "J.xml", "progress 'PU123' 100\nerr|=!= [Read] Readout failed: missing exchange file.\nreadout 4");
        row("R+2", "I1.xml I2.xml", tooMany);
        row("R+2", "I1.xml i2.xml/", tooMany);
        row("R+3", "I1.xml", "err|=!= [Read] Readout canceled: error='32'.\nreadout 3");
        row("R-3", "I1.xml", "err|=!= [Read] Readout canceled: error='32'.\nreadout 3");
        row("R-1", "I1.xml", "err|=!= [Read] Readout failed.\nreadout 4");
        row("R+1", "I1.xml", "[box]\nerr|=!= [Read] Readout failed: error='32'.\nreadout 1");
        row("F+3", "", "err|=!= [Read] Searching canceled: error='32'.\nsearching 3");
        row("F-3", "", "err|=!= [Read] Searching canceled: error='32'.\nsearching 3");
        row("F-2", "", "err|=!= [Read] Searching failed.\nsearching 4");
        row("F+1", "", "err|=!= [Read] Searching failed: error='32'.\n[box]\nsearching 1");
        row("F+2", "",
            "box|Merivo Connections|The paired device for the patient can't be found.\n"
            "err|=!= [Read] Searching failed: no paired pump with snr='PU12' for patient found.\nsearching 2");
    }

    void endsEachWay()
    {
        QFETCH(QString, steps);
        QFETCH(QString, files);
        QFETCH(QString, expected);
        QHash<QChar, QPair<std::function<void()>, QString>> known; // how a step begins, and what is seen of it
        const auto step = [&known](char letter, const QString& lines, const char* limits, const auto& begin) {
            known[letter] = {begin, lines + " submitted.\npoll " + limits};
        };
        step('S', "progress '[old]' 0\nmcp|<== [Add] Start pairing search.\nmcp|<== <SEARCH 00100>", "120 0 500",
             [this] { m_add->startPairingSearch(); });
        step('P', "mcp|<== [Add] Start pairing process: snr='PU123'.\nmcp|<== <BTPAIR B \"PU123\" P>", "120 0 500",
             [this] { m_add->startPairing(1); });
        step('C', "mcp|<== [Add] Start pairing confirm: snr='PU123'.\nmcp|<== <BTPAIRCONFIRM 1>", "60 0 500",
             [this] { m_add->startPairingConfirm(true); });
        step('D', "mcp|<== [Add] Start pairing confirm: snr='PU123'.\nmcp|<== <BTPAIRCONFIRM 0>", "60 0 500",
             [this] { m_add->startPairingConfirm(false); });
        step('A', "mcp|<== [Add] Start Reassign process: snr='PU2'.\nmcp|<== <BTPUMPREASSIGN \"PU2\" P>", "30 0 500",
             [this] { m_add->startReassign(3); });
        step('X', "mcp|<== [Remove] Start removing: snr='OLD'.\nmcp|<== <BTDELETEADDR  \"OLD\">", "20 0 500",
             [this] { m_remove->startRemoving(); });
        step('R', "progress '' 0\nmcp|<== [Read] Start readout: snr='PU123'.\nmcp|<== <BTREAD \"PU123\">", "440 20 500",
             [this] { m_read->startReadout("PU123"); });
        step('F', "mcp|<== [Read] Start searching: snr='PU12'.\nmcp|<== <SEARCH 00100>", "20 0 500",
             [this] { m_read->startSearching("PU12"); });
        for (const QString& file : files.split(' ', Qt::SkipEmptyParts))
            QVERIFY(file.endsWith('/') ? QDir().mkdir(m_reader->misc() + '/' + file)
                                       : m_reader->writeFile(file, "<x/>"));

        BoxAnswerer boxes(&m_host.journal.lines);
        QString old; // what the progress of a search tells
        for (const QString& name : steps.split(' ')) {
            takeLines();
            known[name[0]].first();
            QCOMPARE(takeLines(), whole(known[name[0]].second).replace("[old]", old));
            Q_EMIT StatusFileParser::instance()->progress(50);
            Q_EMIT StatusFileParser::instance()->timeout();
            QCOMPARE(takeLines(), QString()); // the handlers don't run on the thread that emits
            QCoreApplication::sendPostedEvents();
            const QString report = name[0] == 'S' ? QString("progress '%1' 50").arg(old) : "progress 'PU123' 50";
            QCOMPARE(takeLines(), name[0] == 'S' || name[0] == 'R' ? report : QString()); // and stay behind a time-out
            end(name[1] == '+', name.mid(2).toInt());
            old = name[0] == 'P' ? "PU123" : old;
        }
        QCOMPARE(takeLines(), whole(expected));
        for (const BoxAnswerer::Box& box : qAsConst(boxes.seen))
            QVERIFY(box.icon == QMessageBox::Warning && box.buttons == QMessageBox::Ok && !box.parent);
        Q_EMIT StatusFileParser::instance()->progress(50);
        end(true, 2);
        QCOMPARE(takeLines(), QString()); // nothing of the ended run is left
    }

    void takesItsOwnRowsAndAnyCode()
    {
        m_add->startPairing(0); // no list yet
        m_add->startPairingSearch();
        end(true, 2);
        m_host.journal.clear();
        for (const int row : {-1, 5}) {
            m_add->startPairing(row);
            m_add->startReassign(row);
        }
        end(true, 2);
        QCOMPARE(m_host.journal.lines, QStringList());
        for (const QString& code : {QString(), QString(" %1<b>\n"), QString(10000, 'x')}) {
            m_add->startPairing(1);
            end(true, 2, code);
            QCOMPARE(m_host.journal.lines.last(), "code '" + code + '\'');
        }
        QVERIFY(QDir(m_reader->misc()).removeRecursively()); // a command that can't be written is awaited all the same
        m_add->startPairing(1);
        QCOMPARE(m_host.journal.lines.last(), QString("poll 120 0 500"));
    }

    void searchThenReadout()
    {
        m_reader->answer("SEARCH", {{10, "running"}, {200, "done"}});
        m_reader->answer("BTREAD", {{10, "running"}, {700, "done"}});
        QVERIFY(m_reader->writeFile("I1.xml", "<x/>"));
        m_read->startSearching("PU1");
        QTRY_VERIFY_WITH_TIMEOUT(m_host.journal.contains("succeeded"), 10000);

        QCOMPARE(m_reader->commandsSeen, (QStringList{"SEARCH 00100", "BTREAD \"PU1\""}));
        const QStringList lines = takeLines().split('\n').filter(QRegularExpression("^poll|Controller"));
        QCOMPARE(lines.join('\n'), whole("mcp|<== [Read] Start searching: snr='PU1'.\npoll 20 0 500\n"
                                         "mcp|==> [Read] Searching succeeded: status='2'.\n"
                                         "mcp|<== [Read] Start readout: snr='PU1'.\npoll 440 20 500\n"
                                         "mcp|==> [Read] Readout succeeded: status='2'.||[misc]/I1.xml"));
    }

private:
    static QString shown(CommandStatus status) { return QString::number(int(status)); }
    static QString shown(int number) { return QString::number(number); }
    static QString shown(const QString& text) { return '\'' + text + '\''; }
    static QString shown(const QList<DeviceInfo>& devices)
    {
        QStringList texts;
        for (const DeviceInfo& d : devices)
            texts << d.serialNumber + (d.paired ? " of " : "") + d.patientId;
        return QString::number(devices.size()) + ' ' + texts.join(',');
    }

    void usePump(const QString& serialNumber)
    {
        PatientSession::instance()->setPump(serialNumber, "Other");
        m_session = session();
    }

    static QStringList session()
    {
        const PatientSession* s = PatientSession::instance();
        return {"pump " + s->pumpSerialNumber() + '/' + s->deviceName(), "file " + s->exchangeFilePath()};
    }

    void noteSession()
    {
        const QStringList before = std::exchange(m_session, session());
        for (const QString& state : qAsConst(m_session)) {
            if (!before.contains(state))
                m_host.journal.add(state);
        }
    }

    /// Without the reader link's own trace, and without details that say nothing.
    QString takeLines()
    {
        static const QRegularExpression told("^(?!mcp)|Controller\\]|submitted");
        static const QRegularExpression noDetail("\\|\\|(/.*CommandFile.txt)?$");
        return std::exchange(m_host.journal.lines, {}).filter(told).replaceInStrings(noDetail, {}).join('\n');
    }

    QString whole(QString lines) const
    {
        return lines.replace(QRegularExpression("\\[(Add|Read|Remove)\\]"), "[\\1 Controller]")
            .replace("[misc]", m_reader->misc())
            .replace("[none]", "pump /Sanvio Merivo")
            .replace("[box]",
                     "err|Error message box: code='32'\nbox|Merivo Connections|<b>Connection lost</b><br/>Maybe the "
                     "battery is weak, or the pump is too far away. Please move it closer and try again to connect.");
    }

    void end(bool success, int status, const QString& result = "R")
    {
        StatusFileParser* parser = StatusFileParser::instance();
        parser->m_lastStatus = {"h", "X", CommandStatus(status), result, 32};
        const QStringList before = m_host.journal.lines;
        Q_EMIT parser->finished(success);
        QCOMPARE(m_host.journal.lines, before); // the handlers don't run on the thread that emits
        QCoreApplication::sendPostedEvents();
    }

    RecordingHost m_host;
    QStringList m_session; // as last noted
    std::unique_ptr<ReaderFolder> m_reader;
    std::unique_ptr<AddPumpControl> m_add;
    std::unique_ptr<ReadoutPumpControl> m_read;
    std::unique_ptr<RemovePumpControl> m_remove;
};

QTEST_MAIN(TestWorkflows)

#include "tst_workflows.moc"
