// SPDX-FileCopyrightText: 2026 The Merivo Connections developers
// SPDX-License-Identifier: MIT
#include "plugin/MerivoConnectionsPlugin.h"

#include "base/Logger.h"
#include "base/PatientSession.h"
#include "hostapi/ICommandHandler.h"
#include "hostapi/IDatabase.h"
#include "hostapi/IDeviceAdmin.h"
#include "hostapi/IEventPublisher.h"
#include "hostapi/IExtensionRegistry.h"
#include "hostapi/IServices.h"
#include "plugin/MerivoConnectionsComponent.h"
#include "readerlink/CommandStatus.h"
#include "toolkit/LmTranslator.h"

#include <QLocale>
#include <QSettings>

namespace {

/// Returns the host's extension point of that name, cast to its class, or null.
template <typename ExtensionPoint>
ExtensionPoint* find(IExtensionRegistry* registry, const QString& name)
{
    return registry ? static_cast<ExtensionPoint*>(registry->extensionPoint(name)) : nullptr;
}

} // namespace

MerivoConnectionsPlugin::MerivoConnectionsPlugin()
{
    qRegisterMetaType<CommandStatus>("CommandStatus");
    m_component = std::make_unique<MerivoConnectionsComponent>(&m_commandController, this);
    m_icon = m_component->icon(); // Shared, so that the picture is loaded once.
}

MerivoConnectionsPlugin::~MerivoConnectionsPlugin()
{
    m_component.reset();
    m_services = nullptr;
    m_deviceAdmin = nullptr;
}

QString MerivoConnectionsPlugin::title() const
{
    return QStringLiteral("%1, %2").arg(QLatin1String("Sanvio Lumo Software"),
                                        QLatin1String("Merivo Connections Plug-In"));
}

QString MerivoConnectionsPlugin::description() const
{
    return title();
}

QString MerivoConnectionsPlugin::copyright() const
{
    return QStringLiteral("Copyright \u00A9 2026 The Merivo Connections developers");
}

QString MerivoConnectionsPlugin::version() const
{
    return QStringLiteral(MERIVO_PLUGIN_VERSION);
}

QIcon MerivoConnectionsPlugin::icon() const
{
    return m_icon;
}

QString MerivoConnectionsPlugin::pluginName() const
{
    return QStringLiteral(MERIVO_PLUGIN_NAME);
}

void MerivoConnectionsPlugin::setExtensionRegistry(IExtensionRegistry* registry)
{
    IPlugin::setExtensionRegistry(registry);

    m_services = find<IServices>(registry, QStringLiteral("ServicesExtensionPoint"));
    m_deviceAdmin = find<IDeviceAdmin>(registry, QStringLiteral("DeviceAdminExtensionPoint"));
    auto* handler = find<ICommandHandler>(registry, QStringLiteral("CommandHandlerExtensionPoint"));
    auto* publisher = find<IEventPublisher>(registry, QStringLiteral("EventPublisherExtensionPoint"));
    m_database = find<IDatabase>(registry, QStringLiteral("DatabaseExtensionPoint"));

    m_commandController.m_commandHandler = handler;
    PatientSession::instance(nullptr);
    PatientSession::setHost(m_services, m_database);
    m_eventsObserver.attach(publisher, m_database);
    // The main dialog requires an open diary, so its pictures aren't needed before.
    if (publisher) {
        connect(publisher, &IEventPublisher::diarySessionOpened, m_component.get(),
                &MerivoConnectionsComponent::loadPictures, Qt::UniqueConnection);
    }
}

void MerivoConnectionsPlugin::initialize(QSettings& settings, const QDir& directory)
{
    IPlugin::initialize(settings, directory);

    if (m_services) {
        // This first call sets the logger's host; all others pass null.
        Logger::instance(this, m_services);
        const QString rule(56, QLatin1Char('-'));
        logTrace(rule);
        logTrace(QStringLiteral("---- Merivo Connections Plugin loaded."));
        logTrace(rule);
    }

    const QString enabled = settings.value(QStringLiteral("EnableSimulation")).toString();
    if (enabled.toUpper() != QLatin1String("TRUE"))
        return;

    // An empty path is accepted as the current folder, but m_simulationPath is then empty: the runs use the reader.
    const QString path = settings.value(QStringLiteral("SimulationPath")).toString();
    if (!QDir(path).exists()) {
        logFailure(QStringLiteral("SIMULATION disabled due to missing path."), path);
        return;
    }
    m_component->m_simulationPath = path;
    logTrace(QStringLiteral("SIMULATION enabled."), path);
}

void MerivoConnectionsPlugin::installTranslator()
{
    if (!m_services)
        return;
    const QStringList folders{m_services->path(IServices::TranslationsPath), QStringLiteral(":/lang/i18n/")};
    const QLocale fallback(QLocale::English, QLocale::UnitedKingdom);
    const QString prefix = QStringLiteral("mc_");
    lmInstallTranslator(m_translator, {prefix + QLocale().name(), prefix + fallback.name()}, folders);
}

QList<IComponent*> MerivoConnectionsPlugin::components() const
{
    return {m_component.get()};
}
