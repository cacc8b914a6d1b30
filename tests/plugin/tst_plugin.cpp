// SPDX-FileCopyrightText: 2026 The Merivo Connections developers
// SPDX-License-Identifier: MIT
#include "plugin/MerivoConnectionsPlugin.h"

#include "base/Logger.h"
#include "base/PatientSession.h"
#include "dialogs/MainDialog.h"
#include "plugin/MerivoConnectionsComponent.h"
#include "readerlink/CommandFileWriter.h"
#include "readerlink/CommandStatus.h"
#include "readerlink/StatusFileParser.h"
#include "support/MessageCapture.h"
#include "support/ModalUser.h"
#include "support/ReaderFolder.h"
#include "support/RecordingHost.h"

#include <QApplication>
#include <QLoggingCategory>
#include <QPointer>
#include <QSettings>
#include <QTest>

namespace {

const QString Started = "mcp|--> Plugin component execution started||";
const QByteArray OldFirmware = "1\n2\n3\n4\nversion 3.2.22\n";

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
    MerivoConnectionsPlugin m_plugin; // which log records name as their source
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
        PatientSession::setHost(&m_host.services, &m_host.database); // other plug-in objects replace them
        m_host.journal.clear();
    }

    void channelGivesTheLevel()
    {
        const QList<QPair<QString, QtMsgType>> levels{
            {"Info", QtInfoMsg},    {"txt", QtInfoMsg},  {"Warning", QtWarningMsg}, {"Error", QtCriticalMsg},
            {"err", QtCriticalMsg}, {"mcp", QtDebugMsg}, {"ERR", QtDebugMsg}};
        const QString category = "plugin.merivoconnections";
        for (const auto& [channel, level] : levels) {
            const MessageCapture capture(&m_host.journal.lines);
            m_host.journal.clear();
            write("a \"q\"", channel);
            write("a", channel, "b", "c");
            QLoggingCategory::setFilterRules(category + "=false");
            write("silent", channel, "", "x"); // not in Qt's log
            QCOMPARE(m_host.journal.lines.join('\n').replace(channel + '|', "channel|"),
                     QString("qt|[MC] a \"q\"; ; \nchannel|a \"q\"||\nqt|[MC] a; b; c\nchannel|a|b|c\n"
                             "channel|silent||x"));
            QCOMPARE(capture.texts(level, category).size(), 2);
        }
    }

    void recordsOfAnotherThreadReachTheHostOnTheGuiThread()
    {
        const std::unique_ptr<QThread> worker(QThread::create([] {
            write("1");
            write("2");
        }));
        worker->start();
        QVERIFY(worker->wait(10000));
        QVERIFY(m_host.journal.lines.isEmpty());
        write("3"); // after the others, without an event loop
        QCOMPARE(m_host.journal.lines.join(QString()), QString("mcp|1||mcp|2||mcp|3||"));
        QCOMPARE(m_host.journal.threads, QList<QThread*>({thread(), thread(), thread()}));
    }

    void sessionNamesPatientAndPump()
    {
        PatientSession* session = PatientSession::create(nullptr);
        QCOMPARE(PatientSession::instance(), session);
        QCOMPARE(session->patientId() + session->patientName() + session->patientIdExt() + session->deviceName(),
                 QString("Sanvio Merivo"));
        const QStringList patients[] = {{"Doe", "Doe", ""},
                                        {",Jane", ", Jane", ""},
                                        {"%1,%2,,X1", "%1, %2", "X1"},
                                        {"Doe,,1970-02-03,", "Doe", "03.02.1970"},
                                        {"Doe,Jane,1970-02-03", "Doe, Jane", "03.02.1970, 1970-02-03"},
                                        {"Doe,Jane,1970-02-30,X1,X2", "Doe, Jane", "1970-02-30, X1"}};
        for (const QStringList& row : patients) {
            const MessageCapture capture;
            session->setPids(row.at(0).split(','));
            QCOMPARE(session->patientName(), row.at(1));
            QCOMPARE(session->patientIdExt(), row.at(2));
            const QString birthday = session->pids().value(2), shown = row.at(2).section(',', 0, 0);
            const QString line = "static QString PatientSession::patientIdExt(const QStringList&) %1 birthday = '%2'";
            QCOMPARE(capture.texts(QtDebugMsg, "default"),
                     birthday.isEmpty() ? QStringList()
                                        : QStringList({line.arg(">>", birthday), line.arg("<<", shown)}));
        }
        const QStringList pumps[] = {
            {"2", "Cygnara", "Sanvio Merivo"}, {"3", "cygnara", "cygnara"}, {"", "", "Sanvio Merivo"}};
        for (const QStringList& row : pumps) {
            session->setPump(row.at(0), row.at(1));
            QCOMPARE(session->pumpSerialNumber() + session->deviceName(), row.at(0) + row.at(2));
        }
    }

    void hostReadsTextsAndIcons()
    {
        const QString title = "Merivo Connection", product = "Sanvio Lumo Software, Merivo Connections Plug-In";
        const QString rest = product + "|Copyright © 2026 The Merivo Connections developers|3.2.5.22129|";
        const auto texts = [](const IExtension& e) {
            return QStringList{e.title(), e.description(), e.copyright(), e.version(), e.extraText()}.join('|');
        };
        MerivoConnectionsComponent orphan(nullptr, nullptr);
        QCOMPARE(texts(IExtension()), QString("?|???|??|x.x.x.x|"));
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

    void settingsEnableTheSimulation()
    {
        const QTemporaryDir folder;
        const QString on = "mcp|SIMULATION enabled.||", missing = "err|SIMULATION disabled due to missing path.||";
        const QStringList rows[] = {{"true", folder.path(), on},
                                    {"TRUE", folder.path(), on},
                                    {"true ", folder.path(), ""},
                                    {"true", "/no/such/folder", missing},
                                    // The current folder, but without effect.
                                    {"true", "", on}};
        for (const QStringList& row : rows) {
            QSettings settings(folder.filePath("plugin.ini"), QSettings::IniFormat);
            settings.setValue("EnableSimulation", row.at(0));
            settings.setValue("SimulationPath", row.at(1));
            MerivoConnectionsPlugin plugin; // without services: no further banner
            m_host.journal.clear();
            plugin.initialize(settings, QDir());
            QCOMPARE(m_host.journal.lines.join(""), row.at(2).isEmpty() ? "" : row.at(2) + row.at(1));
            QCOMPARE(componentOf(plugin)->m_simulationPath, row.at(2) == on ? row.at(1) : QString());
        }
    }

    void extensionPointsAreReplaced()
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
            const QPointer<IEventPublisher> publisher(host.foundPublisher = new IEventPublisher);
            const QPointer<IDatabase> database(host.foundDatabase = new RecordingDatabase(host.journal));
            QCOMPARE(nulls(&host), 0);
            QCOMPARE(nulls(&host), 0);
            QVERIFY(publisher && database); // the objects it has already aren't deleted
            QCOMPARE(nulls(nullptr), 4);
            QVERIFY(!publisher && !database);
            const MessageCapture capture;
            plugin.initialize(m_settings, QDir());
            plugin.installTranslator();
            QVERIFY(m_host.journal.lines.isEmpty() && capture.texts(QtInfoMsg).isEmpty());
            host.foundPublisher = &host.publisher;
            std::unique_ptr<IDatabase> gone(host.foundDatabase = new RecordingDatabase(host.journal));
            QCOMPARE(nulls(&host), 0);
            gone.reset(); // by the host: not deleted again
            host.foundDatabase = &host.database;
            QCOMPARE(nulls(&host), 0);
            host.openDiary("p1");
        }
        QVERIFY(!component);
        host.openDiary("p2");
        QCOMPARE(PatientSession::instance()->patientId(), QString("p1"));
    }

    void textsOfTheHostsFolderComeFirst()
    {
        const QString missing = "Translator resource \"mc_de_DE\" not found|";
        const QStringList rows[] = {{"mc_de", missing + "Translator \"mc_en_GB\" installed from \":/lang/i18n/\""},
                                    {"mc_en_GB", missing + "Translator \"mc_en_GB\" installed from \"host\""},
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
        QCOMPARE(m_component->title(), QString("Merivo Connection")); // the translator is removed with the plug-in
    }

    void oldFirmwareIsFound()
    {
        const ReaderFolder folder;
        const auto isAccepted = [&folder](const char* log, const QByteArray& lastLine) {
            const bool isWritten = folder.writeFile(log, "9.9.9\n9.9.9\r\n\n9.9.9\n" + lastLine);
            const bool result = MerivoConnectionsComponent::checkFirmware(folder.drive());
            return isWritten && QFile::remove(folder.misc() + '/' + log) && result;
        };
        QVERIFY(QDir(folder.misc()).mkdir("V1.log")); // a folder isn't read
        for (const char* other : {"version.log", "V1.txt", "1V.log"})
            QVERIFY2(isAccepted(other, "3.2.22"), other);
        for (const char* log : {"V2.log", "Vx.LOG", "V.log.old"})
            QVERIFY2(isAccepted(log, "a 3.10.1") && !isAccepted(log, "3.2.22"), log);
    }

    void failedRunShowsAndLogsWhy()
    {
        const ReaderFolder good, old;
        QVERIFY(old.writeFile("V1.log", OldFirmware));
        // The patient, the drive, the patient after the pause, the beginning of the message box's text, the reason in
        // the log.
        const QStringList rows[] = {
            {"", good.drive(), "p1", "No patient is selected.", "missing patient"},
            {"p1", "", "p1", "No lumo2 device reader is currently connected.", "missing device reader"},
            {"p1", old.drive(), "p2", "The Lumodevice has an old firmware.", "unsupported firmware version"},
            {"p1", good.drive(), "p2", "The patient's diary was closed or changed.", "diary closed or changed"}};
        for (const QStringList& row : rows) {
            m_host.openDiary(row.at(0));
            m_host.deviceAdmin.drivePath = row.at(1);
            m_host.deviceAdmin.holdChanges = row.at(2) != "p1";
            if (m_host.deviceAdmin.holdChanges)
                QTimer::singleShot(100, &m_host.publisher, [&] { m_host.openDiary(row.at(2)); });
            m_host.journal.clear();
            QWidget window;
            const BoxAnswerer boxes(&m_host.journal.lines);
            QVERIFY(!m_component->execute(&window));
            const BoxAnswerer::Box& box = boxes.seen.first();
            QVERIFY(box.icon == QMessageBox::Warning && box.buttons == QMessageBox::Ok && box.parent == &window);
            QVERIFY2(box.text.startsWith(row.at(3)), qPrintable(box.text));
            const int place = m_host.journal.lines.indexOf("box|Merivo Connection|" + box.text);
            QCOMPARE(m_host.journal.lines.value(place + 1),
                     QString("err|-!- Plugin component execution failed: %1||").arg(row.at(4)));
            QVERIFY(!m_host.journal.contains("drivePath") || m_host.journal.lines.last() == "device deleted");
        }
        QVERIFY(!CommandFileWriter::instance() && !StatusFileParser::instance() && good.command().isEmpty());
    }

    void runCleansUpInOrder()
    {
        ReaderFolder folder;
        folder.answer("BTISPAIRED", {{20, "done", "SN-4711"}});
        m_host.deviceAdmin.drivePath = folder.drive();
        m_host.deviceAdmin.holdChanges = true;
        m_host.openDiary("p1");

        // As soon as the reader has answered, a read-out is reported and the dialog is closed.
        const ModalUser user([this](QWidget& modal) {
            QPushButton* close = pressableButtons(modal).value("Close");
            if (!close)
                return;
            connect(&modal, &QObject::destroyed, this, [this] { m_host.journal.add("dialog deleted"); });
            Q_EMIT static_cast<MainDialog&>(modal).importDataReady("{g}");
            close->click();
        });
        const QString acquired = "acquireDevice(1, '')\nsetDeviceHold(1)\ndrivePath\n";
        const QString released = "setDeviceHold(0)\ndevice deleted\n";
        for (const bool isSimulated : {false, true}) {
            m_component->m_simulationPath = isSimulated ? folder.drive() : QString();
            QVERIFY(folder.writeStatus("idle", "NONE", "done"));
            QVERIFY(!isSimulated || folder.writeFile("V1.log", OldFirmware)); // isn't read then
            m_host.journal.clear();
            QVERIFY(m_component->execute(nullptr));
            const QString expected =
                Started + '\n' + (isSimulated ? QString() : acquired) +
                QString("mcp|Command file writer initialized.||%1\nmcp|Status file parser initialized.||%1\n"
                        "execute(3)\nmcp|--- Plugin component execution finishing||\n"
                        "mcp|Status file parser finished.||%1\nmcp|Command file writer finished.||%1\n"
                        "dialog deleted\n")
                    .arg(folder.misc()) +
                (isSimulated ? QString() : released) + "mcp|<-- Plugin component execution finished||";
            QStringList seen;
            for (const QString& line : qAsConst(m_host.journal.lines)) {
                if ((acquired + released + expected).split('\n').contains(line)) // the others are the dialog's own
                    seen << line;
            }
            QCOMPARE(seen.join('\n'), expected);
        }
    }
};

QTEST_MAIN(TestPlugin)
#include "tst_plugin.moc"
