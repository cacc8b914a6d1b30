// SPDX-FileCopyrightText: 2026 The Merivo Connections developers
// SPDX-License-Identifier: MIT
#include "tools/host/PluginHost.h"

#include "hostapi/IComponent.h"
#include "hostapi/IPlugin.h"

#include <QCoreApplication>
#include <QDir>
#include <QFileInfo>
#include <QJsonObject>
#include <QLibrary>
#include <QSettings>

PluginHost::PluginHost(QObject* parent)
    : QObject(parent)
{}

PluginHost::~PluginHost()
{
    unload();
}

QString PluginHost::defaultLibrary()
{
    const QDir program(QCoreApplication::applicationDirPath());
    for (const char* place : {".", MERIVO_HOST_PLUGIN_FOLDER, "../../src/plugin"}) {
        const QDir folder(program.filePath(place));
        const QFileInfoList files = folder.entryInfoList({QLatin1String("*" MERIVO_PLUGIN_NAME ".*")}, QDir::Files);
        for (const QFileInfo& file : files)
            if (QLibrary::isLibrary(file.fileName()))
                return file.canonicalFilePath();
    }
    return {};
}

bool PluginHost::load(const QString& library, IExtensionRegistry* registry, const QString& simulationPath,
                      QString* error)
{
    unload();
    const auto refuse = [&](const QString& what) {
        *error = QString("plug-in '%1': %2").arg(library, what);
        unload();
        return false;
    };
    const QFileInfo file(library);
    if (!file.isFile())
        return refuse("there is no such file");
    m_loader.setFileName(file.absoluteFilePath());
    const QString interfaceId = m_loader.metaData().value("IID").toString();
    if (m_loader.metaData().isEmpty())
        return refuse(QString("not a plug-in library of Qt %1").arg(QLatin1String(qVersion())));
    if (interfaceId != MERIVO_PLUGIN_IID)
        return refuse(
            QString("has the interface id \"%1\", but this host requires \"%2\"").arg(interfaceId, MERIVO_PLUGIN_IID));
    if (!m_loader.instance())
        return refuse(m_loader.errorString());
    m_plugin = qobject_cast<IPlugin*>(m_loader.instance());
    if (!m_plugin)
        return refuse("its object doesn't have the interface of its metadata");

    m_plugin->setExtensionRegistry(registry);
    // A separate file, so that earlier runs and the user's other settings have no effect.
    QSettings settings(m_settingsFolder.filePath("plugin.ini"), QSettings::IniFormat);
    if (!simulationPath.isEmpty()) {
        settings.setValue("EnableSimulation", "true");
        settings.setValue("SimulationPath", simulationPath);
    }
    m_plugin->initialize(settings, file.absoluteDir());
    m_plugin->installTranslator();
    return true;
}

void PluginHost::unload()
{
    m_plugin = nullptr;
    m_loader.unload(); // destroys the instance too
}

QList<IComponent*> PluginHost::components() const
{
    return m_plugin ? m_plugin->components() : QList<IComponent*>();
}

bool PluginHost::run(IComponent* component, QWidget* parent)
{
    if (m_isRunning)
        return false;
    m_isRunning = true;
    Q_EMIT runningChanged(true);
    const bool ran = component->execute(parent);
    m_isRunning = false;
    Q_EMIT runningChanged(false);
    return ran;
}
