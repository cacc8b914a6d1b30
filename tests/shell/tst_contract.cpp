// SPDX-FileCopyrightText: 2026 The Merivo Connections developers
// SPDX-License-Identifier: MIT
#include "commands/CommandExt.h"
#include "host/IComponent.h"
#include "host/IPermissions.h"
#include "host/IPlugin.h"
#include "support/BoxAnswerer.h"
#include "support/MessageCapture.h"
#include "support/RecordingHost.h"

#include <QJsonArray>
#include <QJsonObject>
#include <QLibrary>
#include <QMetaMethod>
#include <QPluginLoader>
#include <QProcess>
#include <QSettings>
#include <QTest>

#include <cstring>

namespace {

const QString Iid = QStringLiteral("com.veltra.lumo.IPlugin/3.2.5.lm2c.RC");

/// Whether the virtual operations follow one another in their class's table from that place on, counted from 0. By the
/// Itanium ABI a pointer to such a member starts with one more than its offset there; elsewhere nothing is compared.
template <typename... Methods>
bool inOrder(int first, Methods... methods)
{
#if defined(__x86_64__) && !defined(_WIN32)
    const auto isAt = [](int place, auto method) {
        std::ptrdiff_t start = 0;
        std::memcpy(&start, &method, sizeof start);
        return start == 1 + place * static_cast<std::ptrdiff_t>(sizeof(void*));
    };
    return (isAt(first++, methods) && ...);
#else
    return ((first += methods != nullptr) > 0 && ...);
#endif
}

} // namespace

class TestContract final : public QObject
{
    Q_OBJECT

    QPluginLoader m_loader{QStringLiteral(MERIVO_LIBRARY)};

private Q_SLOTS:
    // Without Qt's own hint against it, unloading unloads.
    void initTestCase() { m_loader.setLoadHints({}); }

    void metadata()
    {
        QJsonObject metadata = m_loader.metaData();
        QCOMPARE(metadata.value(QLatin1String("IID")).toString(), Iid);
        QCOMPARE(QString::fromLatin1(qobject_interface_iid<IPlugin*>()), Iid);
        QCOMPARE(metadata.value(QLatin1String("className")).toString(), QStringLiteral("MerivoConnectionsPlugin"));
        QCOMPARE(metadata.value(QLatin1String("MetaData")).toObject(),
                 (QJsonObject{{QStringLiteral("keys"), QJsonArray{QStringLiteral("MerivoConnections")}}}));
    }

    void exports()
    {
#ifdef Q_OS_LINUX
        QProcess nm;
        nm.start(QStringLiteral(MERIVO_NM), {QStringLiteral("-D"), QStringLiteral("--defined-only"),
                                             QStringLiteral("--format=posix"), m_loader.fileName()});
        QVERIFY2(nm.waitForFinished() && nm.exitCode() == 0, nm.readAllStandardError().constData());
        QStringList symbols;
        for (const QString& line :
             QString::fromLatin1(nm.readAllStandardOutput()).split(QLatin1Char('\n'), Qt::SkipEmptyParts))
            symbols << line.section(QLatin1Char(' '), 0, 1);
        QCOMPARE(symbols,
                 (QStringList{QStringLiteral("qt_plugin_instance T"), QStringLiteral("qt_plugin_query_metadata T")}));
#else
        QSKIP("Reads the dynamic symbols of an ELF library.");
#endif
    }

    void oneInstance()
    {
        QObject* instance = m_loader.instance();
        QVERIFY2(instance, qPrintable(m_loader.errorString()));
        QPluginLoader second(m_loader.fileName());
        QCOMPARE(second.instance(), instance);
        QVERIFY(!second.unload()); // The first still holds it.
        QLibrary library(m_loader.fileName());
        const auto entry = reinterpret_cast<QObject* (*)()>(library.resolve("qt_plugin_instance"));
        QVERIFY(entry);
        QCOMPARE(entry(), instance);
        QCOMPARE(entry(), instance);
        library.unload();
    }

    void casts()
    {
        QObject* object = m_loader.instance();
        auto* plugin = qobject_cast<IPlugin*>(object);
        QVERIFY(plugin);
        for (const char* name : {"IPlugin", "com.veltra.lumo.IPlugin/3.2.5.lm2c.RC"})
            QCOMPARE(object->qt_metacast(name), static_cast<void*>(plugin));
        QCOMPARE(object->qt_metacast("MerivoConnectionsPlugin"), static_cast<void*>(object));
        for (const char* name : {"IExtension", "IComponent", "com.veltra.lumo.IPlugin/3.2.5.lm2d.RC", ""})
            QCOMPARE(object->qt_metacast(name), nullptr);

        IComponent* component = plugin->components().first();
        auto* componentObject = dynamic_cast<QObject*>(component);
        QVERIFY(componentObject);
        QCOMPARE(componentObject->qt_metacast("MerivoConnectionsComponent"), static_cast<void*>(componentObject));
        QCOMPARE(componentObject->qt_metacast("IComponent"), static_cast<void*>(component));
        for (const char* name : {"IElement", "IExtension", "IPlugin", "com.veltra.lumo.IPlugin/3.2.5.lm2c.RC"})
            QCOMPARE(componentObject->qt_metacast(name), nullptr);

        class Permissions final : public IPermissions
        {
        } permissions;
        Journal journal;
        RecordingEventPublisher publisher;
        RecordingDatabase database(journal);
        const auto isExtensionPoint = [](QObject& point, const char* name, IExtensionPoint* expected) {
            return point.qt_metacast(name) == &point && point.qt_metacast("IExtensionPoint") == expected;
        };
        QVERIFY(isExtensionPoint(permissions, "IPermissions", &permissions));
        QVERIFY(isExtensionPoint(publisher, "IEventPublisher", &publisher));
        QVERIFY(isExtensionPoint(database, "IDatabase", &database));
    }

    void orderOfOperations()
    {
        // Two places of a table with a virtual destructor in front are the destructor's; QObject takes twelve.
        QVERIFY(inOrder(2, &IExtension::title, &IExtension::description, &IExtension::copyright, &IExtension::extraText,
                        &IExtension::version, &IExtension::icon, &IExtension::isFlagged));
        QVERIFY(inOrder(9, &IPlugin::pluginName, &IPlugin::setExtensionRegistry, &IPlugin::initialize,
                        &IPlugin::onHostNotice, &IPlugin::installTranslator, &IPlugin::extensionPoints,
                        &IPlugin::components, &IPlugin::elements));
        QVERIFY(inOrder(9, &IComponent::plugin, &IComponent::isEnabled, &IComponent::menuText, &IComponent::execute,
                        &IComponent::elementKey));
        QVERIFY(inOrder(1, &IExtensionRegistry::extensionPoint));
        QVERIFY(inOrder(2, &IServices::formatDate, &IServices::path, &IServices::logLine, &IServices::logValue));
        QVERIFY(inOrder(2, &IDeviceAdmin::acquireDevice, &IDeviceAdmin::setDeviceHold));
        QVERIFY(inOrder(12, &IDevice::reserved0) && inOrder(29, &IDevice::reserved17, &IDevice::drivePath));
        QVERIFY(inOrder(2, &ICommandHandler::execute));
        QVERIFY(inOrder(12, &IDatabase::import, &IDatabase::databaseGuid, &IDatabase::reserved2, &IDatabase::reserved3,
                        &IDatabase::patients));
        QVERIFY(inOrder(2, &IModeData::optionA, &IModeData::optionB, &IModeData::control, &IModeData::mode));
        QVERIFY(inOrder(2, &IPatientData::puid, &IPatientData::pids, &IPatientData::pid, &IPatientData::patientText0,
                        &IPatientData::diaryName, &IPatientData::patientText1, &IPatientData::patientText2));
        QVERIFY(inOrder(0, &ICommand::isValid, &ICommand::clone));
        QVERIFY(inOrder(2, &IImportDataCmd::filePath, &IImportDataCmd::importTag, &IImportDataCmd::fileMac,
                        &IImportDataCmd::isImportFlagged, &IImportDataCmd::importNote));
        QVERIFY(inOrder(2, &CommandExt::command, &CommandExt::commandName, &CommandExt::isExecutable,
                        &CommandExt::prepare, &CommandExt::parseOption, &CommandExt::extraResult));
    }

    void orderOfSignals()
    {
        const QMetaObject& meta = IEventPublisher::staticMetaObject;
        QStringList names;
        for (int i = meta.methodOffset(); i < meta.methodCount(); ++i)
            names << QString::fromLatin1(meta.method(i).name());
        QCOMPARE(names.join(QLatin1Char(' ')),
                 QStringLiteral("commandFailed commandSucceeded commandsReceived patientCreated patientDeleted "
                                "patientChanged diarySessionOpened diarySessionClosed diaryImported diarySynced "
                                "diaryChanged queryReply diaryLimits diaryAnalyzed appStartup appShutdown"));
    }

    void refusedLibraries()
    {
        const QString other =
            QPluginLoader(QStringLiteral(FIXTURE_WRONG_IID)).metaData().value(QLatin1String("IID")).toString();
        QCOMPARE(other.size(), Iid.size());
        QVERIFY(other != Iid);
        QPluginLoader none(QStringLiteral(FIXTURE_NOT_A_PLUGIN));
        QVERIFY(none.metaData().isEmpty() && !none.instance());
    }

    /// Whole runs over the library's border, each from a fresh load.
    void loadedAndDriven()
    {
        const QString start = QStringLiteral("mcp|--> Plugin component execution started||");
        QSettings settings(QStringLiteral("/no/such/file.ini"), QSettings::IniFormat);
        RecordingHost host;
        host.deviceAdmin.hasDevice = false;
        BoxAnswerer boxes;
        const auto drive = [&](bool knownNames) {
            auto* plugin = qobject_cast<IPlugin*>(m_loader.instance());
            host.empty = !knownNames;
            host.journal.clear();
            plugin->setExtensionRegistry(&host);
            plugin->initialize(settings, QDir());
            plugin->installTranslator();
            return plugin->components().first();
        };
        const auto logged = [&host] {
            return host.journal.startingWith(QStringLiteral("mcp|")) +
                   host.journal.startingWith(QStringLiteral("err|"));
        };

        IComponent* component = drive(false);
        QCOMPARE(component->title(), QStringLiteral("Merivo Connection"));
        QVERIFY(!component->execute(nullptr)); // Its first record fixes a log without a host.
        component = drive(true);
        QVERIFY(!component->execute(nullptr));
        QVERIFY(logged().isEmpty());

        QVERIFY2(m_loader.unload(), qPrintable(m_loader.errorString()));
        component = drive(true);
        QCOMPARE(component->title(), QStringLiteral("Sanvio Merivo Pump Plugin"));
        QCOMPARE(logged().size(), 3);
        QVERIFY(!component->execute(nullptr));
        Q_EMIT host.publisher.diarySessionOpened(IDiarySessionOpenedEvtPtr(new PatientEvent<IDiarySessionOpenedEvt>(
            QStringLiteral("p1"), {QStringLiteral("Doe")}, QStringLiteral("d"))));
        QVERIFY(!component->execute(nullptr));
        QCOMPARE(
            logged().mid(3),
            (QStringList{start, start, QStringLiteral("err|-!- Plugin component execution failed: missing patient||"),
                         QStringLiteral("err|-!- Plugin component execution failed: missing device reader||")}));
        QCOMPARE(boxes.seen.size(), 4);
        QCOMPARE(boxes.seen.last().text, QStringLiteral("No Sanvio Lumo device connected."));
        QVERIFY(m_loader.unload());
    }
};

QTEST_MAIN(TestContract)
#include "tst_contract.moc"
