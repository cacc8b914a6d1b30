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

/// Loads one plug-in library and drives it in the order that IPlugin tells. What the registry finds must outlive the
/// plug-in, that is this object. GUI thread only.
class PluginHost final : public QObject
{
    Q_OBJECT

public:
    explicit PluginHost(QObject* parent = nullptr);
    /// Destroys the plug-in object and unloads the library.
    ~PluginHost() override;

    /// The library beside the program, as it is installed, or where the build leaves it; empty if it is in neither
    /// place.
    static QString defaultLibrary();

    /// Loads the library after a look at its interface id alone, then makes the calls up to components().
    /// @p simulationPath goes to the plug-in's settings; empty: no simulation. On failure the error is one sentence,
    /// and no code of a library with another interface id has run.
    bool load(const QString& library, IExtensionRegistry* registry, const QString& simulationPath, QString* error);
    void unload();

    IPlugin* plugin() const { return m_plugin; }
    QList<IComponent*> components() const;

    /// Runs a menu entry; returns when the user is done with it. Does nothing while one runs.
    bool run(IComponent* component, QWidget* parent);
    bool isRunning() const { return m_isRunning; }

Q_SIGNALS:
    void runningChanged(bool running);

private:
    QPluginLoader m_loader;
    QTemporaryDir m_settingsFolder;
    IPlugin* m_plugin = nullptr; // the loader's
    bool m_isRunning = false;
};
