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
        QTest::addColumn<QStringList>("files"); // name=fifth line; a name that ends in "/" is a folder
        QTest::addColumn<bool>("accepted");
        const auto row = [](const char* name, const QStringList& files, bool accepted) {
            QTest::newRow(name) << files << accepted;
        };
        const auto version = [&row](const char* fifth, bool accepted) {
            row(fifth, {QStringLiteral("V1.log=") + QLatin1String(fifth)}, accepted);
        };
        row("no folder", {QStringLiteral("-")}, true);
        row("no file", {}, true);
        for (const char* fifth : {"Firmware version 3.2.23", "3.2.24", "3.3.0", "4.0.0", "3.10.1", "a  3.2.23.1", "x 4",
                                  "3.3", "9.9.9-beta"})
            version(fifth, true);
        for (const char* fifth : {"Firmware version 3.2.22", "3.2.9", "3.1.99", "2.9.99", "3.2", "3", "V3.2.23",
                                  "3.2.23b", "Firmware 3.2.23 ", "", "3,2,23"})
            version(fifth, false);
        row("capitals", {QStringLiteral("Vx.LOG=1.0.0")}, false);
        row("in the middle", {QStringLiteral("V.log.old=1.0.0")}, false);
        row("hidden by none",
            {QStringLiteral("version.log=1.0.0"), QStringLiteral("V1.txt=1.0.0"), QStringLiteral("1V.log=1.0.0")},
            true);
        row("any old one",
            {QStringLiteral("V1.log=3.2.23"), QStringLiteral("V2.log=3.2.22"), QStringLiteral("V3.log=4.0.0")}, false);
        row("folder in its place", {QStringLiteral("V1.log/"), QStringLiteral("V2.log=3.2.23")}, true);
        row("CRLF", {QStringLiteral("V1.log=3.2.23\r\nV 1.0.0")}, true);
    }
    void firmware()
    {
        QFETCH(QStringList, files);
        const ReaderFolder folder;
        for (const QString& file : qAsConst(files)) {
            const QString name = file.section(QLatin1Char('='), 0, 0);
            if (name == QLatin1String("-"))
                QVERIFY(QDir(folder.misc()).removeRecursively());
            else if (name.endsWith(QLatin1Char('/')))
                QVERIFY(QDir(folder.misc()).mkdir(name));
            else
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
        QTest::addColumn<QString>("patient");
        QTest::addColumn<QString>("drive"); // "": a device without one; "none": no device; "old": of old firmware
        QTest::addColumn<QStringList>("journal");
        const QString start = QStringLiteral("mcp|--> Plugin component execution started||");
        const QString box = QStringLiteral("box|Merivo Connection|%1");
        const QString failure = QStringLiteral("err|-!- Plugin component execution failed: %1||");
        const QString acquire = QStringLiteral("acquireDevice(1, '')");
        const QString hold = QStringLiteral("setDeviceHold(1)");
        const QString deleted = QStringLiteral("device deleted");
        const QString noReader = box.arg(QLatin1String("No lumo2 device reader is currently connected."));
        const QString missingReader = failure.arg(QLatin1String("missing device reader"));

        QTest::newRow("no patient") << ""
                                    << "old"
                                    << QStringList{
                                           start,
                                           box.arg(QLatin1String("No patient is selected. Please select first an "
                                                                 "patient and then start the plugin again.")),
                                           failure.arg(QLatin1String("missing patient"))};
        QTest::newRow("no device") << "p1"
                                   << "none" << QStringList{start, acquire, noReader, missingReader};
        QTest::newRow("no drive") << "p1"
                                  << "" << QStringList{start, acquire, hold, noReader, missingReader, hold, deleted};
        QTest::newRow("old firmware")
            << "p1"
            << "old"
            << QStringList{start,
                           acquire,
                           hold,
                           box.arg(QLatin1String("The Lumodevice has an old firmware. Please update the DeviceReader "
                                                 "and start the plugin again")),
                           failure.arg(QLatin1String("unsupported firmware version")),
                           hold,
                           deleted};
    }
    void preconditions()
    {
        QFETCH(QString, patient);
        QFETCH(QString, drive);
        const ReaderFolder folder;
        QVERIFY(folder.writeFile(QStringLiteral("V1.log"), "1\n2\n3\n4\nversion 3.2.22\n"));
        open(patient.toLatin1());
        m_host.deviceAdmin.hasDevice = drive != QLatin1String("none");
        m_host.deviceAdmin.drivePath = drive == QLatin1String("old") ? folder.drive() : QString();
        m_host.journal.clear();
        QWidget window;
        BoxAnswerer boxes(&m_host.journal.lines);
        QVERIFY(!m_component->execute(&window));

        QTEST(m_host.journal.lines, "journal");
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

        const QString misc = folder.misc();
        QStringList expected{
            QStringLiteral("mcp|--> Plugin component execution started||"),
            QStringLiteral("mcp|Command file writer initialized.||") + misc,
            QStringLiteral("mcp|Status file parser initialized.||") + misc,
            QStringLiteral("execute(3)"),
            QStringLiteral("mcp|--- Plugin component execution finishing||"),
            QStringLiteral("mcp|Status file parser finishing.||") + misc,
            QStringLiteral("mcp|Status file parser finished.||") + misc,
            QStringLiteral("mcp|Command file writer finished.||") + misc,
            QStringLiteral("dialog gone"),
            QStringLiteral("mcp|<-- Plugin component execution finished||"),
        };
        if (!simulated) {
            expected.insert(1, QStringLiteral("setDeviceHold(1)"));
            expected.insert(1, QStringLiteral("acquireDevice(1, '')"));
            expected.insert(expected.size() - 1, QStringLiteral("setDeviceHold(1)"));
            expected.insert(expected.size() - 1, QStringLiteral("device deleted"));
        }
        QStringList milestones; // The dialog's own lines in between are its own affair.
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
