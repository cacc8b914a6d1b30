// SPDX-FileCopyrightText: 2026 The Merivo Connections developers
// SPDX-License-Identifier: MIT
#pragma once

#include "hostapi/IPlugin.h"
#include "hostcommands/CommandController.h"
#include "hostcommands/EventsObserver.h"

#include <QIcon>
#include <QTranslator>

#include <memory>

class IDatabase;
class IDeviceAdmin;
class IServices;
class MerivoConnectionsComponent;

/// The object that the host loads, once per process; IPlugin documents the order of its calls. It looks up the host's
/// extension points, creates the log, selects a reader or a simulation folder for the runs, and owns what lives longer
/// than a run. GUI thread only.
class MerivoConnectionsPlugin final : public QObject, public IPlugin
{
    Q_OBJECT
    Q_PLUGIN_METADATA(IID MERIVO_PLUGIN_IID FILE "MerivoConnectionsPlugin.json")
    Q_INTERFACES(IPlugin)
    Q_DISABLE_COPY_MOVE(MerivoConnectionsPlugin)

public:
    /// Doesn't write to the log: the first record would create a logger without the host.
    MerivoConnectionsPlugin();
    ~MerivoConnectionsPlugin() override;

    QString title() const override;
    QString description() const override;
    QString copyright() const override;
    QString version() const override;
    QIcon icon() const override;

    QString pluginName() const override;
    /// Looks up the five extension points and passes them on. They are null if the registry is null or doesn't know
    /// them.
    void setExtensionRegistry(IExtensionRegistry* registry) override;
    /// Reads "EnableSimulation", which is on for "true" in any letter case, and "SimulationPath". If the simulation
    /// folder doesn't exist, logs a failure and uses the reader.
    void initialize(QSettings& settings, const QDir& directory) override;
    /// Prefers the user's language to British English, and the host's folder to the compiled-in files. Without
    /// services, or if no file is found, the user sees the source texts.
    void installTranslator() override;
    /// Returns the only component.
    QList<IComponent*> components() const override;

    /// Returns the controller that the imports use.
    const CommandController& commandController() const { return m_commandController; }

private:
    // Declaration order matters: destroyed in reverse, after the component.
    CommandController m_commandController;
    EventsObserver m_eventsObserver;
    std::unique_ptr<MerivoConnectionsComponent> m_component;

public:
    /// The host's extension points. Not owned; null until setExtensionRegistry().
    IServices* m_services = nullptr;
    IDeviceAdmin* m_deviceAdmin = nullptr;
    IDatabase* m_database = nullptr;

private:
    QIcon m_icon;
    QTranslator m_translator;
};
