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

/// The place of a virtual operation in its class's table, counted from 0: by the Itanium ABI a pointer to such a member
/// starts with one more than its offset there. -1 where pointers to members look otherwise.
template <typename Method>
int placeOf(Method method)
{
#if defined(__x86_64__) && !defined(_WIN32)
    std::ptrdiff_t offset = 0;
    std::memcpy(&offset, &method, sizeof offset);
    return static_cast<int>((offset - 1) / static_cast<std::ptrdiff_t>(sizeof(void*)));
#else
    Q_UNUSED(method)
    return -1;
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

    void orderOfOperations_data()
    {
        QTest::addColumn<QList<int>>("places");
        QTest::addColumn<int>("first");
        // Two places of a table with a virtual destructor in front are the destructor's; QObject takes twelve.
        QTest::newRow("IExtension") << QList<int>{placeOf(&IExtension::title),     placeOf(&IExtension::description),
                                                  placeOf(&IExtension::copyright), placeOf(&IExtension::extraText),
                                                  placeOf(&IExtension::version),   placeOf(&IExtension::icon),
                                                  placeOf(&IExtension::isFlagged)}
                                    << 2;
        QTest::newRow("IPlugin")
            << QList<int>{placeOf(&IPlugin::pluginName),        placeOf(&IPlugin::setExtensionRegistry),
                          placeOf(&IPlugin::initialize),        placeOf(&IPlugin::onHostNotice),
                          placeOf(&IPlugin::installTranslator), placeOf(&IPlugin::extensionPoints),
                          placeOf(&IPlugin::components),        placeOf(&IPlugin::elements)}
            << 9;
        QTest::newRow("IComponent") << QList<int>{placeOf(&IComponent::plugin), placeOf(&IComponent::isEnabled),
                                                  placeOf(&IComponent::menuText), placeOf(&IComponent::execute),
                                                  placeOf(&IComponent::elementKey)}
                                    << 9;
        QTest::newRow("IExtensionRegistry") << QList<int>{placeOf(&IExtensionRegistry::extensionPoint)} << 1;
        QTest::newRow("IServices") << QList<int>{placeOf(&IServices::formatDate), placeOf(&IServices::path),
                                                 placeOf(&IServices::logLine), placeOf(&IServices::logValue)}
                                   << 2;
        QTest::newRow("IDeviceAdmin") << QList<int>{placeOf(&IDeviceAdmin::acquireDevice),
                                                    placeOf(&IDeviceAdmin::setDeviceHold)}
                                      << 2;
        QTest::newRow("IDevice") << QList<int>{placeOf(&IDevice::reserved17), placeOf(&IDevice::drivePath)} << 29;
        QTest::newRow("ICommandHandler") << QList<int>{placeOf(&ICommandHandler::execute)} << 2;
        QTest::newRow("IDatabase") << QList<int>{placeOf(&IDatabase::import), placeOf(&IDatabase::databaseGuid),
                                                 placeOf(&IDatabase::reserved2), placeOf(&IDatabase::reserved3),
                                                 placeOf(&IDatabase::patients)}
                                   << 12;
        QTest::newRow("IModeData") << QList<int>{placeOf(&IModeData::optionA), placeOf(&IModeData::optionB),
                                                 placeOf(&IModeData::control), placeOf(&IModeData::mode)}
                                   << 2;
        QTest::newRow("IPatientData") << QList<int>{placeOf(&IPatientData::puid),
                                                    placeOf(&IPatientData::pids),
                                                    placeOf(&IPatientData::pid),
                                                    placeOf(&IPatientData::patientText0),
                                                    placeOf(&IPatientData::diaryName),
                                                    placeOf(&IPatientData::patientText1),
                                                    placeOf(&IPatientData::patientText2)}
                                      << 2;
        QTest::newRow("ICommand") << QList<int>{placeOf(&ICommand::isValid), placeOf(&ICommand::clone)} << 0;
        QTest::newRow("IImportDataCmd") << QList<int>{placeOf(&IImportDataCmd::filePath),
                                                      placeOf(&IImportDataCmd::importTag),
                                                      placeOf(&IImportDataCmd::fileMac),
                                                      placeOf(&IImportDataCmd::isImportFlagged),
                                                      placeOf(&IImportDataCmd::importNote)}
                                        << 2;
        QTest::newRow("CommandExt") << QList<int>{placeOf(&CommandExt::command),      placeOf(&CommandExt::commandName),
                                                  placeOf(&CommandExt::isExecutable), placeOf(&CommandExt::prepare),
                                                  placeOf(&CommandExt::parseOption),  placeOf(&CommandExt::extraResult)}
                                    << 2;
    }
    void orderOfOperations()
    {
        QFETCH(QList<int>, places);
        QFETCH(int, first);
        if (placeOf(&IExtension::title) < 0)
            QSKIP("Pointers to members tell no place by this ABI.");
        for (int i = 0; i < places.size(); ++i)
            QCOMPARE(places.at(i), first + i);
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
