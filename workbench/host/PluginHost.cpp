// SPDX-FileCopyrightText: 2026 The Merivo Connections developers
// SPDX-License-Identifier: MIT
#include "workbench/host/PluginHost.h"

#include "host/IComponent.h"
#include "host/IPlugin.h"

#include <QCoreApplication>
#include <QDir>
#include <QFileInfo>
#include <QJsonObject>
#include <QLibrary>
#include <QSettings>

namespace {

QString interfaceIdOf(const QPluginLoader& loader)
{
    return loader.metaData().value("IID").toString();
}

} // namespace

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
    for (const char* place : {".", MERIVO_HOST_PLUGIN_FOLDER, "../../plugin"}) {
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
    const QFileInfo file(library);
    if (!file.isFile()) {
        *error = QString("plug-in '%1': there is no such file").arg(library);
        return false;
    }
    m_loader.setFileName(file.absoluteFilePath());
    if (m_loader.metaData().isEmpty()) {
        *error = QString("plug-in '%1': not a plug-in library of Qt %2").arg(library, QLatin1String(qVersion()));
        return false;
    }
    if (interfaceIdOf(m_loader) != MERIVO_PLUGIN_IID) {
        *error = QString("plug-in '%1': has the interface id \"%2\", this host takes \"%3\" alone")
                     .arg(library, interfaceIdOf(m_loader), MERIVO_PLUGIN_IID);
        return false;
    }
    QObject* instance = m_loader.instance();
    if (!instance) {
        *error = QString("plug-in '%1': %2").arg(library, m_loader.errorString());
        return false;
    }
    m_plugin = qobject_cast<IPlugin*>(instance);
    if (!m_plugin) {
        *error = QString("plug-in '%1': its object isn't of the interface that its metadata names").arg(library);
        unload();
        return false;
    }

    m_plugin->setExtensionRegistry(registry);
    // A file of its own, so that nothing of an earlier run or of the user's other settings comes in.
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
