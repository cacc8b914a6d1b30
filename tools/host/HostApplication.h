// SPDX-FileCopyrightText: 2026 The Merivo Connections developers
// SPDX-License-Identifier: MIT
#pragma once

#include "tools/host/ExtensionPoints.h"
#include "tools/host/HostDatabase.h"
#include "tools/host/HostDeviceAdmin.h"
#include "tools/host/HostLog.h"
#include "tools/host/HostOptions.h"
#include "tools/host/HostWindow.h"
#include "tools/host/ImportHandler.h"
#include "tools/host/PatientEvents.h"
#include "tools/host/PluginHost.h"
#include "tools/host/TrafficKeeper.h"

#include <QLockFile>

#include <memory>

struct ReportSources;
class QThread;

/// The host: owns and starts all its parts. Destroys the plug-in before the objects passed to it.
class HostApplication final
{
public:
    HostApplication();
    ~HostApplication();
    Q_DISABLE_COPY_MOVE(HostApplication)

    /// Opens log and database, loads the plug-in, opens the requested diary and shows the window. If that fails, sets
    /// @p error to one sentence and shows nothing.
    bool start(const HostOptions& options, QString* error);

    /// Writes a report on earlier runs without starting anything. The sentence describes what was written, or the
    /// error.
    bool saveReport(const HostOptions& options, QString* sentence);

    HostLog& log() { return m_log; }
    HostDatabase& database() { return m_database; }
    PatientEvents& events() { return m_events; }
    PluginHost& pluginHost() { return m_pluginHost; }
    HostWindow& window() { return m_window; }

private:
    bool startDiagnostics(QString* error);
    void keepTraffic();
    void writeReport(const QString& path, bool withPersonalData);
    void onReportEnded(bool isSaved, const QString& sentence);
    ReportSources reportSources();

    HostOptions m_options;
    QString m_diagnosticsFolder; // empty: no diagnostics
    std::unique_ptr<QLockFile> m_folderLock;
    HostLog m_log;
    HostDatabase m_database;
    HostDeviceAdmin m_deviceAdmin;
    PatientEvents m_events;
    ImportHandler m_importHandler;
    ExtensionPoints m_extensionPoints;
    PluginHost m_pluginHost;
    HostWindow m_window;
    std::unique_ptr<TrafficKeeper> m_trafficKeeper;
    std::unique_ptr<QThread> m_reportThread; // of the latest report
};
