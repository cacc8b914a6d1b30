// SPDX-FileCopyrightText: 2026 The Merivo Connections developers
// SPDX-License-Identifier: MIT
#include "plugin/MerivoConnectionsPlugin.h"

#include "host/IComponent.h"
#include "plugin/MerivoConnectionsComponent.h"
#include "plugin/session/PatientSession.h"
#include "reader/CommandStatus.h"
#include "support/MessageCapture.h"
#include "support/RecordingHost.h"

#include <QPointer>
#include <QSettings>
#include <QTemporaryDir>
#include <QTest>

namespace {

MerivoConnectionsComponent* componentOf(const MerivoConnectionsPlugin& plugin)
{
    return static_cast<MerivoConnectionsComponent*>(plugin.components().first());
}

} // namespace

class TestPlugin final : public QObject
{
    Q_OBJECT

    RecordingHost m_host;
    QSettings m_settings{QStringLiteral("/no/such/file.ini"), QSettings::IniFormat};
    MerivoConnectionsPlugin m_plugin; // the one that the log names, for as long as the program runs

private Q_SLOTS:
    void startsInTheHostsOrder()
    {
        QVERIFY(QMetaType::type("CommandStatus") != QMetaType::UnknownType);
        const MessageCapture capture;
        m_plugin.setExtensionRegistry(&m_host);
        QStringList points;
        for (const char* name : {"Services", "DeviceAdmin", "CommandHandler", "EventPublisher", "Database"})
            points << QStringLiteral("extensionPoint('%1ExtensionPoint')").arg(QLatin1String(name));
        QCOMPARE(m_host.journal.lines, points);
        QVERIFY(capture.messages().isEmpty());

        m_plugin.initialize(m_settings, QDir(QStringLiteral("/somewhere")));
        const QString rule(56, QLatin1Char('-'));
        const QStringList banner{rule, QStringLiteral("---- Merivo Connections Plugin loaded."), rule};
        for (int i = 0; i < 3; ++i) {
            QCOMPARE(m_host.journal.lines.at(5 + i), QStringLiteral("mcp|%1||").arg(banner.at(i)));
            QCOMPARE(capture.texts(QtDebugMsg).at(i), QStringLiteral("[MC] %1; ; ").arg(banner.at(i)));
        }
        QCOMPARE(m_host.journal.lines.size(), 8);
        QCOMPARE(m_host.services.lastSource, static_cast<IPlugin*>(&m_plugin));
        QVERIFY(componentOf(m_plugin)->m_simulationPath.isEmpty());
    }

    void answers()
    {
        IPlugin& plugin = m_plugin;
        QCOMPARE(plugin.title(), QStringLiteral("Sanvio Lumo Software, Merivo Connections Plug-In"));
        QCOMPARE(plugin.description(), plugin.title());
        QCOMPARE(plugin.copyright(), QStringLiteral("Copyright © 2026 The Merivo Connections developers"));
        QCOMPARE(plugin.version(), QStringLiteral("3.2.5.22129"));
        QCOMPARE(plugin.pluginName(), QStringLiteral("MerivoConnections"));
        QVERIFY(plugin.extraText().isEmpty() && !plugin.isFlagged());
        QVERIFY(plugin.extensionPoints().isEmpty() && plugin.elements().isEmpty());
        QCOMPARE(plugin.components().size(), 1);
        QCOMPARE(plugin.components(), plugin.components());

        IComponent& component = *plugin.components().first();
        QCOMPARE(component.plugin(), &plugin);
        QCOMPARE(component.title(), QStringLiteral("Merivo Connection"));
        QCOMPARE(component.menuText(), component.title());
        QCOMPARE(component.description() + component.copyright() + component.version() + component.elementKey(),
                 plugin.description() + plugin.copyright() + plugin.version() + plugin.pluginName());
        QVERIFY(component.isEnabled() && !component.isFlagged() && component.extraText().isEmpty());

        // Two pictures each, the plain one dark and the disabled one light.
        for (const QIcon& icon : {plugin.icon(), component.icon()}) {
            const QSize size(32, 32);
            const QImage dark = icon.pixmap(size, QIcon::Normal).toImage();
            QVERIFY(!dark.isNull());
            QCOMPARE(dark, QIcon(QStringLiteral(":/img/Images/PumpDownloadGreyDark.svg")).pixmap(size).toImage());
            QVERIFY(icon.pixmap(size, QIcon::Disabled).toImage() != dark);
        }
    }

    void componentWithoutPlugin()
    {
        MerivoConnectionsComponent component(nullptr, nullptr);
        m_host.journal.clear();
        QCOMPARE(component.plugin(), nullptr);
        QVERIFY(component.description().isEmpty() && component.copyright().isEmpty() && component.version().isEmpty());
        QCOMPARE(component.elementKey(), component.title());
        QVERIFY(!component.execute(nullptr));
        QCOMPARE(m_host.journal.lines, QStringList{QStringLiteral("mcp|--> Plugin component execution started||")});
    }

    void simulation_data()
    {
        QTest::addColumn<QVariant>("enabled");
        QTest::addColumn<QVariant>("path"); // "." stands for a folder that exists
        QTest::addColumn<QString>("logged");
        const QString on = QStringLiteral("mcp|SIMULATION enabled.||%1");
        const QString missing = QStringLiteral("err|SIMULATION disabled due to missing path.||%1");
        for (const char* word : {"true", "True", "TRUE", "tRuE"})
            QTest::newRow(word) << QVariant(word) << QVariant(".") << on;
        for (const char* word : {"1", "yes", "false", "", "true "})
            QTest::newRow(word) << QVariant(word) << QVariant(".") << QString();
        QTest::newRow("a bool") << QVariant(true) << QVariant(".") << on;
        QTest::newRow("nothing") << QVariant() << QVariant(".") << QString();
        QTest::newRow("no such folder") << QVariant(true) << QVariant("/no/such/folder") << missing;
        QTest::newRow("no path") << QVariant(true) << QVariant() << on; // the current folder, and yet the reader
    }
    void simulation()
    {
        QFETCH(QVariant, enabled);
        QFETCH(QVariant, path);
        QFETCH(QString, logged);
        const QTemporaryDir folder;
        if (path == QVariant("."))
            path = folder.path();
        QSettings settings(folder.filePath(QStringLiteral("plugin.ini")), QSettings::IniFormat);
        if (enabled.isValid())
            settings.setValue(QStringLiteral("EnableSimulation"), enabled);
        if (path.isValid())
            settings.setValue(QStringLiteral("SimulationPath"), path);

        MerivoConnectionsPlugin plugin; // Without services of its own: the log is made, the banner isn't repeated.
        m_host.journal.clear();
        plugin.initialize(settings, QDir());
        QCOMPARE(m_host.journal.lines.join(QString()), logged.isEmpty() ? logged : logged.arg(path.toString()));
        const bool on = logged.startsWith(QLatin1String("mcp"));
        QCOMPARE(componentOf(plugin)->m_simulationPath, on ? path.toString() : QString());
    }

    void withoutExtensionPoints()
    {
        RecordingHost bare;
        bare.empty = true;
        for (IExtensionRegistry* registry :
             {static_cast<IExtensionRegistry*>(nullptr), static_cast<IExtensionRegistry*>(&bare)}) {
            MerivoConnectionsPlugin plugin;
            plugin.setExtensionRegistry(registry);
            QVERIFY(!plugin.m_services && !plugin.m_deviceAdmin && !plugin.m_database);
            m_host.journal.clear();
            const MessageCapture capture;
            plugin.initialize(m_settings, QDir());
            plugin.installTranslator();
            QCOMPARE(plugin.components().first()->title(), QStringLiteral("Merivo Connection"));
            QVERIFY(m_host.journal.lines.isEmpty() && capture.messages().isEmpty());
        }
        QCOMPARE(bare.journal.lines.size(), 5);
        PatientSession::setHost(&m_host.services, &m_host.database);
    }

    void goesAwayWithItsComponentAlone()
    {
        RecordingHost host;
        QPointer<QObject> component;
        const auto open = [&host](const char* puid) {
            Q_EMIT host.publisher.diarySessionOpened(IDiarySessionOpenedEvtPtr(
                new PatientEvent<IDiarySessionOpenedEvt>(QString::fromLatin1(puid), {}, QString())));
        };
        {
            MerivoConnectionsPlugin plugin;
            plugin.setExtensionRegistry(&host);
            component = componentOf(plugin);
            open("p1");
        }
        QVERIFY(!component);
        open("p2");
        QCOMPARE(PatientSession::instance()->patientId(), QStringLiteral("p1"));
        PatientSession::setHost(&m_host.services, &m_host.database);
    }

    void language_data()
    {
        QTest::addColumn<QString>("hostFiles");
        QTest::addColumn<QString>("logged"); // %1: the host's folder
        const auto row = [](const char* locale, const char* hostFiles, const char* logged) {
            QTest::addRow("%s %s", locale, hostFiles) << QString::fromLatin1(hostFiles) << QString::fromLatin1(logged);
        };
        row("en_GB", "", "Translator \"mc_en_GB\" installed from \":/lang/i18n/\"");
        row("en_GB", "mc_en_GB", "Translator \"mc_en_GB\" installed from \"%1\"");
        for (const char* lesser : {"", "mc_de", "mc_en"}) {
            row("de_DE", lesser,
                "Translator resource \"mc_de_DE\" not found\nTranslator \"mc_en_GB\" installed from \":/lang/i18n/\"");
        }
        row("de_DE", "mc_en_GB",
            "Translator resource \"mc_de_DE\" not found\nTranslator \"mc_en_GB\" installed from \"%1\"");
        row("de_DE", "mc_en_GB,mc_de_DE", "Translator \"mc_de_DE\" installed from \"%1\"");
    }
    void language()
    {
        QFETCH(QString, hostFiles);
        QFETCH(QString, logged);
        const QTemporaryDir folder;
        for (const QString& name : hostFiles.split(QLatin1Char(','), Qt::SkipEmptyParts))
            QVERIFY(
                QFile::copy(QStringLiteral(":/lang/i18n/mc_en_GB.qm"), folder.filePath(name + QStringLiteral(".qm"))));
        logged.replace(QStringLiteral("%1"), folder.path());
        QLocale::setDefault(QLocale(QString::fromLatin1(QTest::currentDataTag()).section(QLatin1Char(' '), 0, 0)));
        RecordingHost host;
        host.services.paths.insert(IServices::TranslationsPath, folder.path());

        QString source;
        {
            MerivoConnectionsPlugin plugin;
            plugin.setExtensionRegistry(&host);
            const IComponent* component = plugin.components().first();
            source = component->title();
            const MessageCapture capture;
            for (int i = 0; i < 2; ++i) {
                plugin.installTranslator();
                QCOMPARE(component->title(), QStringLiteral("Sanvio Merivo Pump Plugin"));
            }
            QStringList lines;
            for (const MessageCapture::Message& message : capture.messages()) {
                lines << message.text;
                QCOMPARE(message.type, message.text.endsWith(QLatin1String("not found")) ? QtWarningMsg : QtInfoMsg);
            }
            QCOMPARE(lines.join(QLatin1Char('\n')), QStringList({logged, logged}).join(QLatin1Char('\n')));
        }
        QCOMPARE(source, QStringLiteral("Merivo Connection"));
        QCOMPARE(componentOf(m_plugin)->title(), source); // The translator has gone with its owner.
        PatientSession::setHost(&m_host.services, &m_host.database);
    }
};

QTEST_MAIN(TestPlugin)
#include "tst_plugin.moc"
