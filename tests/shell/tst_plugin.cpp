// SPDX-FileCopyrightText: 2026 The Merivo Connections developers
// SPDX-License-Identifier: MIT
#include "plugin/MerivoConnectionsPlugin.h"

#include "dialogs/MainDialog.h"
#include "plugin/MerivoConnectionsComponent.h"
#include "plugin/session/Logger.h"
#include "plugin/session/PatientSession.h"
#include "reader/CommandFileWriter.h"
#include "reader/CommandStatus.h"
#include "reader/StatusFileParser.h"
#include "support/BoxAnswerer.h"
#include "support/MessageCapture.h"
#include "support/ReaderFolder.h"
#include "support/RecordingHost.h"

#include <QApplication>
#include <QDialogButtonBox>
#include <QLoggingCategory>
#include <QPointer>
#include <QPushButton>
#include <QSettings>
#include <QTest>

namespace {

const QString Started = "mcp|--> Plugin component execution started||";

MerivoConnectionsComponent* componentOf(const MerivoConnectionsPlugin& plugin)
{
    return static_cast<MerivoConnectionsComponent*>(plugin.components().first());
}

void write(const char* message, const QString& channel = "mcp", const char* detail1 = "", const char* detail2 = "")
{
    Logger::instance(nullptr, nullptr)->write(message, channel, detail1, detail2);
}

} // namespace

class TestPlugin final : public QObject
{
    Q_OBJECT

    RecordingHost m_host;
    QSettings m_settings{"/no/such/file.ini", QSettings::IniFormat};
    MerivoConnectionsPlugin m_plugin; // the one that the log names, for as long as the program runs
    MerivoConnectionsComponent* m_component = componentOf(m_plugin);

private Q_SLOTS:
    void initTestCase()
    {
        QVERIFY(QMetaType::type("CommandStatus") != QMetaType::UnknownType);
        const MessageCapture capture(&m_host.journal.lines);
        m_plugin.setExtensionRegistry(&m_host);
        m_plugin.initialize(m_settings, QDir("/somewhere"));
        QStringList expected;
        for (const char* name : {"Services", "DeviceAdmin", "CommandHandler", "EventPublisher", "Database"})
            expected << QString("extensionPoint('%1ExtensionPoint')").arg(name);
        const QString rule(56, '-');
        for (const QString& line : {rule, QString("---- Merivo Connections Plugin loaded."), rule})
            expected += {"qt|[MC] " + line + "; ; ", "mcp|" + line + "||"};
        QCOMPARE(m_host.journal.lines, expected);
        QCOMPARE(m_host.services.lastSource, static_cast<IPlugin*>(&m_plugin));
        QCOMPARE(Logger::instance(nullptr, nullptr)->logValue({}, {}, {}, {}, {}), quintptr(4));
    }
    void init()
    {
        PatientSession::setHost(&m_host.services, &m_host.database); // Other plug-in objects leave theirs.
        m_host.journal.clear();
    }

    void records()
    {
        // The channel and the level of Qt's log.
        const QString rows = "Info=4,txt=4,Warning=1,Error=2,err=2,mcp=0,ERR=0,info=0,warning=0,err =0,=0";
        const QString category = "plugin.merivoconnections";
        for (const QString& row : rows.split(',')) {
            const QString channel = row.section('=', 0, 0);
            const MessageCapture capture(&m_host.journal.lines);
            m_host.journal.clear();
            write("a \"q\"", channel);
            write("a", channel, "b", "c");
            QLoggingCategory::setFilterRules(category + "=false");
            write("silent", channel, "", "x"); // for Qt's log alone
            QCOMPARE(m_host.journal.lines,
                     (QStringList{"qt|[MC] a \"q\"; ; ", channel + "|a \"q\"||", "qt|[MC] a; b; c", channel + "|a|b|c",
                                  channel + "|silent||x"}));
            QCOMPARE(capture.texts(QtMsgType(row.section('=', 1).toInt()), category).size(), 2);
            for (const MessageCapture::Message& message : capture.messages())
                QCOMPARE(message.origin, QString());
        }
    }

    void recordsOfAnotherThreadReachTheHostOnOurs()
    {
        const std::unique_ptr<QThread> worker(QThread::create([] {
            write("1");
            write("2");
        }));
        worker->start();
        QVERIFY(worker->wait(10000));
        QVERIFY(m_host.journal.lines.isEmpty());
        write("3"); // What was written before comes before, without an event loop.
        QCOMPARE(m_host.journal.lines.join(QString()), QString("mcp|1||mcp|2||mcp|3||"));
        QCOMPARE(m_host.journal.threads, QList<QThread*>({thread(), thread(), thread()}));
    }

    void names()
    {
        // The ids, the name, the extension.
        const QString rows = "||;Doe|Doe|;Doe,|Doe|;,Jane|, Jane|;%1,%2,,X1|%1, %2|X1;Doe,Jane,|Doe, Jane|;"
                             "Doe,Jane,1970-02-03,|Doe, Jane|03.02.1970;"
                             "Doe,Jane,1970-02-03,X1,X2|Doe, Jane|03.02.1970, X1;"
                             "Doe,Jane,1970-02-03|Doe, Jane|03.02.1970, 1970-02-03;"
                             "Doe,Jane,1970-02-30,X1|Doe, Jane|1970-02-30, X1";
        PatientSession* session = PatientSession::create(nullptr);
        const QString line = "static QString PatientSession::patientIdExt(const QStringList&) %1 birthday = '%2'";
        for (const QString& text : rows.split(';')) {
            const QStringList row = text.split('|');
            session->setPids(row.at(0).isEmpty() ? QStringList() : row.at(0).split(','));
            const MessageCapture capture;
            QCOMPARE(session->patientName(), row.at(1));
            QCOMPARE(session->patientIdExt(), row.at(2));
            QStringList traced;
            const QString birthday = session->pids().value(2);
            if (!birthday.isEmpty())
                traced << line.arg(">>", birthday) << line.arg("<<", row.at(2).section(',', 0, 0));
            QCOMPARE(capture.texts(QtDebugMsg, "default"), traced);
        }
    }

    void pump()
    {
        PatientSession* session = PatientSession::create(nullptr);
        QCOMPARE(PatientSession::instance(), session);
        QCOMPARE(session->patientId() + session->pids().join(',') + session->deviceName(), QString("Sanvio Merivo"));
        const QStringList rows[] = {
            {"2", "Cygnara", "Sanvio Merivo"}, {"3", "cygnara", "cygnara"}, {"", "", "Sanvio Merivo"}};
        for (const QStringList& row : rows) {
            session->setPump(row.at(0), row.at(1));
            QCOMPARE(session->pumpSerialNumber() + session->deviceName(), row.at(0) + row.at(2));
        }
    }

    void patientsAreLookedUp()
    {
        m_host.database.records = {{"k1", {"p2", {"Doe"}}}, {"k2", {"p1", {"Roe"}}}, {"k3", {"p1", {}}}};
        QCOMPARE(PatientSession::patientIdsOf("p1"), QStringList{"Roe"});
        QCOMPARE(m_host.journal.lines,
                 (QStringList{"databaseGuid('/data/open.db')", "patients('" + m_host.database.guid + "')"}));
        QVERIFY(PatientSession::patientIdsOf("P2").isEmpty());
    }

    void answers()
    {
        const QString title = "Merivo Connection", product = "Sanvio Lumo Software, Merivo Connections Plug-In";
        const QString rest = product + "|Copyright © 2026 The Merivo Connections developers|3.2.5.22129|";
        const auto texts = [](const IExtension& e) {
            return QStringList{e.title(), e.description(), e.copyright(), e.version(), e.extraText()}.join('|');
        };
        MerivoConnectionsComponent orphan(nullptr, nullptr);
        QCOMPARE(texts(m_plugin), product + '|' + rest);
        QCOMPARE(texts(*m_component), title + '|' + rest);
        QCOMPARE(texts(orphan), title + "||||");
        QCOMPARE(m_component->menuText() + orphan.menuText() + orphan.elementKey(), title + title + title);
        QCOMPARE(m_plugin.pluginName() + m_component->elementKey(), QString("MerivoConnectionsMerivoConnections"));
        QCOMPARE(m_plugin.components(), QList<IComponent*>{m_component});
        QVERIFY(!m_plugin.isFlagged() && m_plugin.extensionPoints().isEmpty() && m_plugin.elements().isEmpty());
        QVERIFY(m_component->isEnabled() && !m_component->isFlagged() && m_component->plugin() == &m_plugin);
        QVERIFY(!orphan.isFlagged() && !orphan.plugin() && !orphan.execute(nullptr));
        QCOMPARE(m_host.journal.lines, QStringList{Started});

        const auto picture = [](const QIcon& icon, QIcon::Mode mode = QIcon::Normal) {
            return icon.pixmap(QSize(32, 32), mode).toImage();
        };
        for (const QIcon& icon : {m_plugin.icon(), m_component->icon()}) {
            QCOMPARE(picture(icon), picture(QIcon(":/img/Images/PumpDownloadGreyDark.svg")));
            QCOMPARE(picture(icon, QIcon::Disabled), picture(QIcon(":/img/Images/PumpDownloadGreyLight.svg")));
        }
    }

    void simulation()
    {
        const QTemporaryDir folder;
        const QString on = "mcp|SIMULATION enabled.||", missing = "err|SIMULATION disabled due to missing path.||";
        // An empty path is the current folder, and yet the reader's.
        QList<QStringList> rows{{"true", "", on}, {"true", "/no/such/folder", missing}};
        for (const char* word : {"true", "True", "TRUE", "tRuE", "1", "yes", "false", "", "true "})
            rows.append({word, folder.path(), rows.size() < 6 ? on : ""});
        for (const QStringList& row : qAsConst(rows)) {
            QSettings settings(folder.filePath("plugin.ini"), QSettings::IniFormat);
            settings.setValue("EnableSimulation", row.at(0));
            settings.setValue("SimulationPath", row.at(1));
            MerivoConnectionsPlugin plugin; // Without services of its own: the log is made, the banner isn't repeated.
            m_host.journal.clear();
            plugin.initialize(settings, QDir());
            QCOMPARE(m_host.journal.lines.join(""), row.at(2).isEmpty() ? "" : row.at(2) + row.at(1));
            QCOMPARE(componentOf(plugin)->m_simulationPath, row.at(2) == on ? row.at(1) : QString());
        }
    }

    void extensionPointsComeAndGo()
    {
        RecordingHost host;
        QPointer<QObject> component;
        {
            MerivoConnectionsPlugin plugin;
            component = componentOf(plugin);
            const auto nulls = [&plugin](IExtensionRegistry* registry) {
                plugin.setExtensionRegistry(registry);
                return QList<const void*>{plugin.m_services, plugin.m_deviceAdmin, plugin.m_database,
                                          plugin.commandController().m_commandHandler}
                    .count(nullptr);
            };
            const QPointer<IEventPublisher> publisher(host.foundPublisher = new RecordingEventPublisher);
            const QPointer<IDatabase> database(host.foundDatabase = new RecordingDatabase(host.journal));
            QCOMPARE(nulls(&host), 0);
            QCOMPARE(nulls(nullptr), 4);
            QVERIFY(!publisher && !database); // detached
            const MessageCapture capture;
            plugin.initialize(m_settings, QDir());
            plugin.installTranslator();
            QVERIFY(m_host.journal.lines.isEmpty() && capture.messages().isEmpty());
            host.foundPublisher = &host.publisher;
            host.foundDatabase = &host.database;
            QCOMPARE(nulls(&host), 0);
            host.openDiary("p1");
        }
        QVERIFY(!component);
        host.openDiary("p2");
        QCOMPARE(PatientSession::instance()->patientId(), QString("p1"));
    }

    void language()
    {
        const QStringList rows[] = {{"mc_de", "Translator resource \"mc_de_DE\" not found|"
                                              "Translator \"mc_en_GB\" installed from \":/lang/i18n/\""},
                                    {"mc_de_DE", "Translator \"mc_de_DE\" installed from \"host\""}};
        QLocale::setDefault(QLocale("de_DE"));
        for (const QStringList& row : rows) {
            const QTemporaryDir folder;
            QVERIFY(QFile::copy(":/lang/i18n/mc_en_GB.qm", folder.filePath(row.at(0) + ".qm")));
            RecordingHost host;
            host.services.paths.insert(9, folder.path());
            MerivoConnectionsPlugin plugin;
            plugin.setExtensionRegistry(&host);
            const MessageCapture capture;
            plugin.installTranslator();
            const QStringList logged = capture.texts(QtWarningMsg) + capture.texts(QtInfoMsg);
            QCOMPARE(logged.join('|').replace(folder.path(), "host"), row.at(1));
            plugin.installTranslator();
            QCOMPARE(m_component->title(), QString("Sanvio Merivo Pump Plugin"));
        }
        QCOMPARE(m_component->title(), QString("Merivo Connection")); // The translator has gone with its owner.
    }

    void firmware()
    {
        // Files of the folder MISC as name=fifth line, or with four lines; "/" stands for a folder, "-" for no MISC.
        const auto isAccepted = [](const QString& files) {
            const ReaderFolder folder;
            bool isWritten = true;
            for (const QString& file : files.split(';', Qt::SkipEmptyParts)) {
                const QString name = file.section('=', 0, 0);
                const QByteArray fifth = "1 1.0.0\n2 1.0.0\r\n\n4 1.0.0\n" + file.section('=', 1).toUtf8();
                isWritten &= name == "-" ? QDir(folder.misc()).removeRecursively()
                             : name.endsWith('/')
                                 ? QDir(folder.misc()).mkdir(name)
                                 : folder.writeFile(name, file == name ? "9.9.9\n9.9.9\n9.9.9\n9.9.9" : fifth);
            }
            return isWritten ? int(MerivoConnectionsComponent::checkFirmware(folder.drive())) : -1;
        };
        for (const char* files :
             {"-", "", "V1.log=Firmware version 3.2.23", "V1.log=3.2.24", "V1.log=3.3.0", "V1.log=4.0.0",
              "V1.log=3.10.1", "V1.log=a  3.2.23.1", "V1.log=x 4", "V1.log=3.3", "V1.log=9.9.9-beta",
              "V1.log=3.2.23\r\nV 1.0.0", "V1.log/;V2.log=3.2.23", "version.log=1.0.0;V1.txt=1.0.0;1V.log=1.0.0"})
            QVERIFY2(isAccepted(files) == 1, files);
        for (const char* files :
             {"V1.log=Firmware version 3.2.22", "V1.log=3.2.9", "V1.log=3.1.99", "V1.log=2.9.99", "V1.log=3.2",
              "V1.log=3", "V1.log=V3.2.23", "V1.log=3.2.23b", "V1.log=3,2,23", "V1.log=Firmware 3.2.23 ",
              "V1.log=", "Vx.LOG=1.0.0", "V.log.old=1.0.0", "V1.log=3.2.23;V2.log=3.2.22;V3.log=4.0.0", "V1.log"})
            QVERIFY2(isAccepted(files) == 0, files);
    }

    void preconditions()
    {
        const ReaderFolder old, good;
        QVERIFY(old.writeFile("V1.log", "1\n2\n3\n4\nversion 3.2.22\n"));
        const QString acquired = "acquireDevice(1, '')\n", held = acquired + "setDeviceHold(1)\ndrivePath\n";
        const QString released = "\nsetDeviceHold(1)\ndevice deleted", restored = "\nsetDeviceHold(0)\ndevice deleted";
        const auto failure = [](const char* text, const char* reason) {
            return QString("box|Merivo Connection|%1\nerr|-!- Plugin component execution failed: %2||")
                .arg(text, reason);
        };
        const QString noReader = failure("No lumo2 device reader is currently connected.", "missing device reader");
        const QString oldFirmware = failure("The Lumodevice has an old firmware. Please update the DeviceReader and "
                                            "start the plugin again",
                                            "unsupported firmware version");
        const QString diary =
            failure("The patient's diary was closed or changed. Nothing was imported. Please open the "
                    "diary and start the plugin again.",
                    "diary closed or changed");
        // The patient, the drive or "none" for no device, the diary's patient after a hold with a pause, what happens.
        const QStringList rows[] = {
            {"", good.drive(), "p1",
             failure("No patient is selected. Please select first an patient and then start the plugin again.",
                     "missing patient")},
            {"p1", "none", "p1", acquired + noReader},
            {"p1", "", "p1", held + noReader + released},
            {"p1", old.drive(), "p2", held + oldFirmware + restored},
            {"p1", good.drive(), "p2", held + diary + restored}};
        for (const QStringList& row : rows) {
            m_host.openDiary(row.at(0));
            m_host.deviceAdmin.hasDevice = row.at(1) != "none";
            m_host.deviceAdmin.drivePath = row.at(1);
            m_host.deviceAdmin.holdChanges = row.at(2) != "p1";
            if (m_host.deviceAdmin.holdChanges)
                QTimer::singleShot(100, &m_host.publisher, [&] { m_host.openDiary(row.at(2)); });
            m_host.journal.clear();
            QWidget window;
            const BoxAnswerer boxes(&m_host.journal.lines);
            QVERIFY(!m_component->execute(&window));
            QCOMPARE(m_host.journal.lines.join('\n'), Started + '\n' + row.at(3));
            const BoxAnswerer::Box& box = boxes.seen.first();
            QVERIFY(box.icon == QMessageBox::Warning && box.buttons == QMessageBox::Ok);
            QCOMPARE(box.parent, &window);
            QVERIFY(!CommandFileWriter::instance() && !StatusFileParser::instance());
            QVERIFY(good.command().isEmpty());
        }
    }

    void run()
    {
        for (const bool simulated : {true, false}) {
            m_host.journal.clear();
            ReaderFolder folder;
            folder.answer("BTISPAIRED", {{20, "done", "SN-4711"}});
            QVERIFY(folder.writeStatus("idle", "NONE", "done"));
            QVERIFY(folder.writeFile("V1.log", simulated ? "1\n2\n3\n4\n1.0.0" : "1\n2\n3\n4\n3.2.23"));
            m_component->m_simulationPath = simulated ? folder.drive() : QString();
            m_host.deviceAdmin.hasDevice = true;
            m_host.deviceAdmin.drivePath = folder.drive();
            m_host.deviceAdmin.holdChanges = true;
            m_host.openDiary("p1");
            QTimer::singleShot(100, &m_host.publisher, [this] { m_host.openDiary("p1"); }); // in the pause after a hold

            // The user's part: as soon as the reader has answered, a read-out is reported, and the dialog is closed.
            const ModalUser user([this](QWidget& modal) {
                auto* dialog = qobject_cast<MainDialog*>(&modal);
                auto* close =
                    dialog ? dialog->findChild<QDialogButtonBox*>()->button(QDialogButtonBox::Close) : nullptr;
                if (!close || !close->isEnabled())
                    return;
                connect(dialog, &QObject::destroyed, this, [this] { m_host.journal.add("dialog gone"); });
                Q_EMIT dialog->importDataReady("{g}");
                close->click();
            });
            // Picked again at any time, in the adapter's pauses too: nothing more comes of it.
            int ignored = 0;
            QTimer host;
            connect(&host, &QTimer::timeout, this, [&] { ignored += !m_component->execute(nullptr); });
            host.start(500);
            QVERIFY(m_component->execute(nullptr));
            host.stop();
            const QString again = "mcp|--- Plugin component execution ignored: another one is under way||";
            QCOMPARE(m_host.journal.lines.count(again), ignored);
            QVERIFY(simulated || ignored > 1);

            // The dialog's own lines in between are its own affair.
            const QString text =
                Started + (simulated ? "" : "\nacquireDevice(1, '')\nsetDeviceHold(1)\ndrivePath") +
                "\nmcp|Command file writer initialized.||%1\nmcp|Status file parser initialized.||%1\n"
                "execute(3)\nmcp|--- Plugin component execution finishing||\n"
                "mcp|Status file parser finished.||%1\nmcp|Command file writer finished.||%1\ndialog gone\n" +
                (simulated ? "" : "setDeviceHold(0)\ndevice deleted\n") +
                "mcp|<-- Plugin component execution finished||";
            const QStringList expected = QString(text).replace("%1", folder.misc()).split('\n');
            QStringList milestones = m_host.journal.lines.join('\n').remove(Started + '\n' + again + '\n').split('\n');
            for (const QString& line : m_host.journal.lines) {
                if (!expected.contains(line))
                    milestones.removeOne(line);
            }
            QCOMPARE(milestones, expected);
        }
    }
};

QTEST_MAIN(TestPlugin)
#include "tst_plugin.moc"
