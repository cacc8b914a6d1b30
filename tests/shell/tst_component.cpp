// SPDX-FileCopyrightText: 2026 The Merivo Connections developers
// SPDX-License-Identifier: MIT
#include "dialogs/MainDialog.h"
#include "plugin/MerivoConnectionsComponent.h"
#include "plugin/MerivoConnectionsPlugin.h"
#include "plugin/session/PatientSession.h"
#include "reader/CommandFileWriter.h"
#include "reader/StatusFileParser.h"
#include "support/BoxAnswerer.h"
#include "support/ReaderFolder.h"
#include "support/RecordingHost.h"

#include <QApplication>
#include <QDialogButtonBox>
#include <QPushButton>
#include <QSettings>
#include <QTest>

class TestComponent final : public QObject
{
    Q_OBJECT

    RecordingHost m_host;
    MerivoConnectionsPlugin m_plugin;
    MerivoConnectionsComponent* m_component = nullptr;

    void open(const char* puid)
    {
        Q_EMIT m_host.publisher.diarySessionOpened(IDiarySessionOpenedEvtPtr(new PatientEvent<IDiarySessionOpenedEvt>(
            QString::fromLatin1(puid), {QStringLiteral("Doe"), QStringLiteral("Jane")}, QStringLiteral("diary"))));
    }

private Q_SLOTS:
    void initTestCase()
    {
        m_plugin.setExtensionRegistry(&m_host);
        QSettings settings(QStringLiteral("/no/such/file.ini"), QSettings::IniFormat);
        m_plugin.initialize(settings, QDir());
        m_component = static_cast<MerivoConnectionsComponent*>(m_plugin.components().first());
    }

    void firmware_data()
    {
        QTest::addColumn<bool>("accepted");
        // Files of the folder MISC as name=fifth line; "/" stands for a folder of that name, "-" for no MISC at all.
        for (const char* files :
             {"-", "", "V1.log=Firmware version 3.2.23", "V1.log=3.2.24", "V1.log=3.3.0", "V1.log=4.0.0",
              "V1.log=3.10.1", "V1.log=a  3.2.23.1", "V1.log=x 4", "V1.log=3.3", "V1.log=9.9.9-beta",
              "V1.log=3.2.23\r\nV 1.0.0", "V1.log/;V2.log=3.2.23", "version.log=1.0.0;V1.txt=1.0.0;1V.log=1.0.0"})
            QTest::newRow(files) << true;
        for (const char* files :
             {"V1.log=Firmware version 3.2.22", "V1.log=3.2.9", "V1.log=3.1.99", "V1.log=2.9.99", "V1.log=3.2",
              "V1.log=3", "V1.log=V3.2.23", "V1.log=3.2.23b", "V1.log=3,2,23", "V1.log=Firmware 3.2.23 ",
              "V1.log=", "Vx.LOG=1.0.0", "V.log.old=1.0.0", "V1.log=3.2.23;V2.log=3.2.22;V3.log=4.0.0"})
            QTest::newRow(files) << false;
    }
    void firmware()
    {
        const ReaderFolder folder;
        const QStringList files = QString::fromLatin1(QTest::currentDataTag()).split(QLatin1Char(';'));
        for (const QString& file : files) {
            const QString name = file.section(QLatin1Char('='), 0, 0);
            if (name == QLatin1String("-"))
                QVERIFY(QDir(folder.misc()).removeRecursively());
            else if (name.endsWith(QLatin1Char('/')))
                QVERIFY(QDir(folder.misc()).mkdir(name));
            else if (!name.isEmpty())
                QVERIFY(folder.writeFile(name, "1 1.0.0\n2 1.0.0\r\n\n4 1.0.0\n" + file.mid(name.size() + 1).toUtf8()));
        }
        QTEST(MerivoConnectionsComponent::checkFirmware(folder.drive()), "accepted");
    }
    void firmwareOfAShortFile()
    {
        const ReaderFolder folder;
        QVERIFY(folder.writeFile(QStringLiteral("V1.log"), "9.9.9\n9.9.9\n9.9.9\n9.9.9"));
        QVERIFY(!MerivoConnectionsComponent::checkFirmware(folder.drive()));
    }

    void preconditions_data()
    {
        QTest::addColumn<QByteArray>("patient");
        QTest::addColumn<QString>("drive"); // "": a device without one; "none": no device; "old": of old firmware
        QTest::addColumn<QString>("journal");
        const auto row = [](const char* name, const char* patient, const char* drive, const char* journal) {
            QTest::newRow(name) << QByteArray(patient) << QString::fromLatin1(drive) << QString::fromLatin1(journal);
        };
        row("no patient", "", "old",
            "box|Merivo Connection|No patient is selected. Please select first an patient and then start the plugin "
            "again.\nerr|-!- Plugin component execution failed: missing patient||");
        row("no device", "p1", "none",
            "acquireDevice(1, '')\nbox|Merivo Connection|No lumo2 device reader is currently connected.\n"
            "err|-!- Plugin component execution failed: missing device reader||");
        row("no drive", "p1", "",
            "acquireDevice(1, '')\nsetDeviceHold(1)\ndrivePath\n"
            "box|Merivo Connection|No lumo2 device reader is currently connected.\n"
            "err|-!- Plugin component execution failed: missing device reader||\nsetDeviceHold(1)\ndevice deleted");
        row("old firmware", "p1", "old",
            "acquireDevice(1, '')\nsetDeviceHold(1)\ndrivePath\nbox|Merivo Connection|The Lumodevice has an old "
            "firmware. "
            "Please update the DeviceReader and start the plugin again\nerr|-!- Plugin component execution failed: "
            "unsupported firmware version||\nsetDeviceHold(1)\ndevice deleted");
    }
    void preconditions()
    {
        QFETCH(QByteArray, patient);
        QFETCH(QString, drive);
        const ReaderFolder folder;
        QVERIFY(folder.writeFile(QStringLiteral("V1.log"), "1\n2\n3\n4\nversion 3.2.22\n"));
        open(patient.constData());
        m_host.deviceAdmin.hasDevice = drive != QLatin1String("none");
        m_host.deviceAdmin.drivePath = drive == QLatin1String("old") ? folder.drive() : QString();
        m_host.journal.clear();
        QWidget window;
        BoxAnswerer boxes(&m_host.journal.lines);
        QVERIFY(!m_component->execute(&window));

        QCOMPARE(m_host.journal.lines.takeFirst(), QStringLiteral("mcp|--> Plugin component execution started||"));
        QTEST(m_host.journal.lines.join(QLatin1Char('\n')), "journal");
        QCOMPARE(boxes.seen.size(), 1);
        QCOMPARE(boxes.seen.first().icon, QMessageBox::Warning);
        QCOMPARE(boxes.seen.first().buttons, QMessageBox::StandardButtons(QMessageBox::Ok));
        QCOMPARE(boxes.seen.first().parent, &window);
        QVERIFY(!CommandFileWriter::instance() && !StatusFileParser::instance());
        QVERIFY(!QFile::exists(folder.misc() + QStringLiteral("NoCommand.txt")));
    }

    void run_data()
    {
        QTest::addColumn<bool>("simulated");
        QTest::newRow("simulation") << true;
        QTest::newRow("reader") << false;
    }
    void run()
    {
        QFETCH(bool, simulated);
        ReaderFolder folder;
        folder.answer(QStringLiteral("BTISPAIRED"), {{20, QStringLiteral("done"), QStringLiteral("SN-4711")}});
        QVERIFY(folder.writeStatus(QStringLiteral("idle"), QStringLiteral("NONE"), QStringLiteral("done")));
        QVERIFY(folder.writeFile(QStringLiteral("V1.log"), simulated ? "1\n2\n3\n4\n1.0.0" : "1\n2\n3\n4\n3.2.23"));
        m_component->m_simulationPath = simulated ? folder.drive() : QString();
        m_host.deviceAdmin.hasDevice = true;
        m_host.deviceAdmin.drivePath = folder.drive();
        open("p1");
        m_host.journal.clear();

        // The user's part: as soon as the reader has answered, a read-out is reported, and the dialog is closed.
        QTimer user;
        connect(&user, &QTimer::timeout, this, [this, &user, &folder] {
            auto* dialog = qobject_cast<MainDialog*>(QApplication::activeModalWidget());
            auto* close = dialog ? dialog->findChild<QDialogButtonBox*>()->button(QDialogButtonBox::Close) : nullptr;
            if (!close || !close->isEnabled())
                return;
            user.stop();
            QCOMPARE(dialog->parentWidget(), nullptr);
            PatientSession::instance()->setExchangeFilePath(folder.misc() + QStringLiteral("/V1.log"));
            connect(dialog, &QObject::destroyed, this, [this] { m_host.journal.add(QStringLiteral("dialog gone")); });
            Q_EMIT dialog->importDataReady(QStringLiteral("{g}"));
            close->click();
        });
        user.start(10);
        QVERIFY(m_component->execute(nullptr));
        QVERIFY(!user.isActive());

        // The dialog's own lines in between are its own affair.
        const QString text =
            QStringLiteral("mcp|--> Plugin component execution started||\n") +
            (simulated ? "" : "acquireDevice(1, '')\nsetDeviceHold(1)\ndrivePath\n") +
            QStringLiteral("mcp|Command file writer initialized.||%1\nmcp|Status file parser initialized.||%1\n"
                           "execute(3)\nmcp|--- Plugin component execution finishing||\n"
                           "mcp|Status file parser finishing.||%1\nmcp|Status file parser finished.||%1\n"
                           "mcp|Command file writer finished.||%1\ndialog gone\n")
                .arg(folder.misc()) +
            (simulated ? "" : "setDeviceHold(1)\ndevice deleted\n") +
            QStringLiteral("mcp|<-- Plugin component execution finished||");
        const QStringList expected = text.split(QLatin1Char('\n'));
        QStringList milestones;
        for (const QString& line : qAsConst(m_host.journal.lines)) {
            if (expected.contains(line))
                milestones << line;
        }
        QCOMPARE(milestones, expected);
        QCOMPARE(m_host.journal.contains(QStringLiteral("err|Device reader simulation used.||") + folder.drive()),
                 simulated);
        QCOMPARE(folder.commandsSeen, QStringList{QStringLiteral("BTISPAIRED p1")});
        QCOMPARE(m_host.commandHandler.imports.back()->puid(), QStringLiteral("p1"));
        QVERIFY(!CommandFileWriter::instance() && !StatusFileParser::instance());
        for (const QThread* thread : qAsConst(m_host.journal.threads))
            QCOMPARE(thread, QThread::currentThread());
    }
};

QTEST_MAIN(TestComponent)
#include "tst_component.moc"
