// SPDX-FileCopyrightText: 2026 The Merivo Connections developers
// SPDX-License-Identifier: MIT
#pragma once

#include <QPluginLoader>
#include <QTemporaryDir>

#include <QList>

class IComponent;
class IExtensionRegistry;
class IPlugin;
class QWidget;

/// Loads one plug-in library and makes the calls of its life cycle in the order that IPlugin documents. The objects in
/// the registry must outlive this object. GUI thread only.
class PluginHost final : public QObject
{
    Q_OBJECT

public:
    explicit PluginHost(QObject* parent = nullptr);
    /// Destroys the plug-in object and unloads the library.
    ~PluginHost() override;

    /// Returns the path of the installed library or of that in the build tree, or an empty path if neither exists.
    static QString defaultLibrary();

    /// Checks the interface id, loads the library and makes the calls up to components(). @p simulationPath is set in
    /// the plug-in's settings; empty: no simulation. If that fails, sets @p error to one sentence. Runs no code of a
    /// library with another interface id.
    bool load(const QString& library, IExtensionRegistry* registry, const QString& simulationPath, QString* error);
    void unload();

    IPlugin* plugin() const { return m_plugin; }
    QList<IComponent*> components() const;

    /// Executes a component and returns when it has ended. Does nothing while one runs.
    bool run(IComponent* component, QWidget* parent);
    bool isRunning() const { return m_isRunning; }

Q_SIGNALS:
    void runningChanged(bool running);

private:
    QPluginLoader m_loader;
    QTemporaryDir m_settingsFolder;
    IPlugin* m_plugin = nullptr; // owned by the loader
    bool m_isRunning = false;
};
