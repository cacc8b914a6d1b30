// SPDX-FileCopyrightText: 2026 The Merivo Connections developers
// SPDX-License-Identifier: MIT
#include "hostapi/IComponent.h"
#include "hostapi/IPermissions.h"
#include "hostapi/IPlugin.h"
#include "hostcommands/CommandExt.h"
#include "support/RecordingHost.h"
#include "support/TestPlatform.h"

#include <QJsonArray>
#include <QJsonObject>
#include <QMetaMethod>
#include <QPluginLoader>
#include <QTest>

#include <cstring>

namespace {

/// Returns true if the virtual operations follow one another in the table of their class, from the given place on. A
/// pointer to such a member begins with its offset there, plus one.
template <typename... Methods>
bool inOrder(int first, Methods... methods)
{
    const auto isAt = [](int place, auto method) {
        std::ptrdiff_t start = 0;
        std::memcpy(&start, &method, sizeof start);
        return start == 1 + place * static_cast<std::ptrdiff_t>(sizeof(void*));
    };
    return (isAt(first++, methods) && ...);
}

} // namespace

class TestContract final : public QObject
{
    Q_OBJECT

    QPluginLoader m_loader{MERIVO_LIBRARY};

private Q_SLOTS:
    void initTestCase() { m_loader.setLoadHints({}); } // Qt's default prevents unloading

    void metadata()
    {
        QJsonObject metadata = m_loader.metaData();
        QCOMPARE(metadata["IID"].toString(), QString("com.veltra.lumo.IPlugin/3.2.5.lm2c.RC"));
        QCOMPARE(metadata["className"].toString(), QString("MerivoConnectionsPlugin"));
        QCOMPARE(metadata["MetaData"].toObject(), (QJsonObject{{"keys", QJsonArray{"MerivoConnections"}}}));
    }

    void casts()
    {
        QObject* object = m_loader.instance();
        auto* plugin = qobject_cast<IPlugin*>(object);
        QVERIFY2(plugin, qPrintable(m_loader.errorString()));
        for (const char* name : {"IPlugin", "com.veltra.lumo.IPlugin/3.2.5.lm2c.RC"})
            QVERIFY2(object->qt_metacast(name) == plugin, name);
        for (const char* name : {"IExtension", "IComponent", "com.veltra.lumo.IPlugin/3.2.5.lm2d.RC", ""})
            QVERIFY2(!object->qt_metacast(name), name);
        IComponent* component = plugin->components().first();
        auto* part = dynamic_cast<QObject*>(component);
        QVERIFY(part && part->qt_metacast("IComponent") == component);
        for (const char* name : {"IElement", "IExtension", "IPlugin", "com.veltra.lumo.IPlugin/3.2.5.lm2c.RC"})
            QVERIFY2(!part->qt_metacast(name), name);

        IPermissions permissions;
        RecordingHost host;
        const auto isPoint = [](QObject& point, const char* name, IExtensionPoint* expected) {
            return point.qt_metacast(name) == &point && point.qt_metacast("IExtensionPoint") == expected;
        };
        QVERIFY(isPoint(permissions, "IPermissions", &permissions));
        QVERIFY(isPoint(host.publisher, "IEventPublisher", &host.publisher));
        QVERIFY(isPoint(host.database, "IDatabase", &host.database));
        QVERIFY(m_loader.unload());
    }

    void orderOfOperations()
    {
        if (!HasItaniumAbi)
            QSKIP("Reads pointers to members as the Itanium ABI has them.");
        // Two places of a table with a virtual destructor in front are the destructor's; QObject takes twelve.
        QVERIFY(inOrder(2, &IExtension::title, &IExtension::description, &IExtension::copyright, &IExtension::extraText,
                        &IExtension::version, &IExtension::icon, &IExtension::isFlagged));
        QVERIFY(inOrder(9, &IPlugin::pluginName, &IPlugin::setExtensionRegistry, &IPlugin::initialize,
                        &IPlugin::onHostNotice, &IPlugin::installTranslator, &IPlugin::extensionPoints,
                        &IPlugin::components, &IPlugin::elements));
        QVERIFY(inOrder(9, &IComponent::plugin, &IComponent::isEnabled, &IComponent::menuText, &IComponent::execute,
                        &IComponent::elementKey));
        QVERIFY(inOrder(2, &IServices::formatDate, &IServices::path, &IServices::logLine, &IServices::logValue));
        QVERIFY(inOrder(2, &IDeviceAdmin::acquireDevice, &IDeviceAdmin::setDeviceHold));
        QVERIFY(inOrder(12, &IDevice::reserved0) && inOrder(29, &IDevice::reserved17, &IDevice::drivePath));
        QVERIFY(inOrder(1, &IExtensionRegistry::extensionPoint) && inOrder(2, &ICommandHandler::execute));
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
        QByteArray names;
        for (int i = meta.methodOffset(); i < meta.methodCount(); ++i)
            names += meta.method(i).name() + ' ';
        QCOMPARE(names, QByteArray("commandFailed commandSucceeded commandsReceived patientCreated patientDeleted "
                                   "patientChanged diarySessionOpened diarySessionClosed diaryImported diarySynced "
                                   "diaryChanged queryReply diaryLimits diaryAnalyzed appStartup appShutdown "));
    }
};

QTEST_MAIN(TestContract)
#include "tst_contract.moc"
