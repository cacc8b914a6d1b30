// SPDX-FileCopyrightText: 2026 The Merivo Connections developers
// SPDX-License-Identifier: MIT
#pragma once

#include "commands/CommandController.h"
#include "commands/EventsObserver.h"
#include "host/IPlugin.h"

#include <QIcon>
#include <QTranslator>

#include <memory>

class IDatabase;
class IDeviceAdmin;
class IServices;
class MerivoConnectionsComponent;

/// The object that the host loads, once per process; IPlugin tells the order of its calls. It finds the host's
/// extension points, makes the log, decides whether the runs go against a reader or a simulation folder, and owns what
/// lives longer than a run. GUI thread only.
class MerivoConnectionsPlugin final : public QObject, public IPlugin
{
    Q_OBJECT
    Q_PLUGIN_METADATA(IID MERIVO_PLUGIN_IID FILE "MerivoConnectionsPlugin.json")
    Q_INTERFACES(IPlugin)
    Q_DISABLE_COPY_MOVE(MerivoConnectionsPlugin)

public:
    /// Runs before any host interface is known and writes no log line: the first one fixes the logger's host for good.
    MerivoConnectionsPlugin();
    ~MerivoConnectionsPlugin() override;

    QString title() const override;
    QString description() const override;
    QString copyright() const override;
    QString version() const override;
    QIcon icon() const override;

    QString pluginName() const override;
    /// Looks up the five extension points and hands them on. A null registry, or one that doesn't know a name, leaves
    /// null pointers and a working object.
    void setExtensionRegistry(IExtensionRegistry* registry) override;
    /// Reads "EnableSimulation", which is on for "true" in any letter case, and "SimulationPath". A simulation folder
    /// that doesn't exist is logged and leaves the plug-in with the reader.
    void initialize(QSettings& settings, const QDir& directory) override;
    /// Takes the user's language before British English, and the host's folder before the compiled-in files. Without
    /// services, or without any such file, the user reads the source texts.
    void installTranslator() override;
    /// The one component, the same at each call.
    QList<IComponent*> components() const override;

    /// What the component's imports go through.
    const CommandController& commandController() const { return m_commandController; }

private:
    // In this order: the members go away in the reverse one, behind the component.
    CommandController m_commandController;
    EventsObserver m_eventsObserver;
    std::unique_ptr<MerivoConnectionsComponent> m_component;

public:
    /// The host's extension points, not owned, as the component reads them; null until the host has given them.
    IServices* m_services = nullptr;
    IDeviceAdmin* m_deviceAdmin = nullptr;
    IDatabase* m_database = nullptr;

private:
    QIcon m_icon;
    QTranslator m_translator;
};
