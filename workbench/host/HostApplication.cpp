// SPDX-FileCopyrightText: 2026 The Merivo Connections developers
// SPDX-License-Identifier: MIT
#include "workbench/host/HostApplication.h"

#include "host/IPlugin.h"
#include "workbench/host/HostOptions.h"

#include <QDir>
#include <QStandardPaths>

namespace {

/// The database of a user who names none. Its folder is made.
QString defaultDatabase()
{
    const QDir folder(QStandardPaths::writableLocation(QStandardPaths::AppDataLocation));
    folder.mkpath(QStringLiteral("."));
    return folder.filePath(QStringLiteral("patients.sqlite"));
}

} // namespace

HostApplication::HostApplication()
    : m_importHandler(m_database, m_events, m_log, m_deviceAdmin)
    , m_extensionPoints(m_log, m_database, m_deviceAdmin, m_importHandler, m_events)
    , m_window(m_database, m_events, m_log, m_pluginHost, m_importHandler, m_deviceAdmin)
{}

HostApplication::~HostApplication()
{
    m_events.closeDiary();
    Q_EMIT m_events.appShutdown(IShutdownEvtPtr::create());
    m_window.hide();
}

bool HostApplication::start(const HostOptions& options, QString* error)
{
    if (!options.log.isEmpty() && !m_log.openFile(options.log, error))
        return false;
    if (!m_database.open(options.database.isEmpty() ? defaultDatabase() : options.database)) {
        *error = m_database.errorText();
        return false;
    }
    if (!options.drive.isEmpty())
        m_deviceAdmin.setDrivePath(QDir(options.drive).absolutePath());
    if (!options.simulation.isEmpty() && !QDir(options.simulation).exists()) {
        *error = QStringLiteral("--simulation: there is no folder '%1'").arg(options.simulation);
        return false;
    }
    m_importHandler.setSimulation(!options.simulation.isEmpty());

    const QString library = options.plugin.isEmpty() ? PluginHost::defaultLibrary() : options.plugin;
    if (library.isEmpty()) {
        *error = QStringLiteral("no plug-in library beside the program; name one with --plugin");
        return false;
    }
    if (!m_pluginHost.load(library, &m_extensionPoints, options.simulation, error))
        return false;
    m_log.write(QStringLiteral("host"), QStringLiteral("Info"),
                QStringLiteral("Plug-in %1, version %2, loaded.")
                    .arg(m_pluginHost.plugin()->pluginName(), m_pluginHost.plugin()->version()),
                {library});
    Q_EMIT m_events.appStartup(IStartupEvtPtr::create());

    if (!options.patient.isEmpty()) {
        const auto patient = m_database.findPatient(options.patient);
        if (!patient) {
            *error = m_database.errorText().isEmpty() ? QStringLiteral("--patient: there is no patient '%1' in '%2'")
                                                            .arg(options.patient, m_database.path())
                                                      : m_database.errorText();
            return false;
        }
        m_events.openDiary(*patient);
    }
    m_window.showComponents();
    m_window.refresh();
    m_window.show();
    return true;
}
