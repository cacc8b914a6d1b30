// SPDX-FileCopyrightText: 2026 The Merivo Connections developers
// SPDX-License-Identifier: MIT
#include "tools/host/HostApplication.h"

#include "hostapi/IPlugin.h"
#include "tools/host/HostReport.h"

#include <QCoreApplication>
#include <QDir>
#include <QEvent>
#include <QFileInfo>
#include <QLocale>
#include <QStandardPaths>
#include <QSysInfo>
#include <QThread>

namespace {

const QString LogName = "host.log";
constexpr LogLimits KeptLog{1024LL * 1024, 5};

QString inDataFolder(const QString& name)
{
    return QDir(QStandardPaths::writableLocation(QStandardPaths::AppDataLocation)).filePath(name);
}

/// Returns the path of the default database.
QString databaseOf(const HostOptions& options)
{
    return options.database.isEmpty() ? inDataFolder("patients.sqlite") : options.database;
}

/// Returns the folder for diagnostics, or an empty path: the robot keeps none by default.
QString diagnosticsFolderOf(const HostOptions& options)
{
    if (!options.diagnostics.isEmpty())
        return QDir(options.diagnostics).absolutePath();
    return options.robot.isEmpty() ? inDataFolder("diagnostics") : QString();
}

} // namespace

HostApplication::HostApplication()
    : m_importHandler(m_database, m_events, m_log, m_deviceAdmin)
    , m_extensionPoints(m_log, m_database, m_deviceAdmin, m_importHandler, m_events)
    , m_window(m_database, m_events, m_log, m_pluginHost, m_importHandler, m_deviceAdmin)
{}

HostApplication::~HostApplication()
{
    if (m_reportThread)
        m_reportThread->wait();
    // The event loop has ended and can't deliver the thread's end, which must be logged.
    QCoreApplication::sendPostedEvents(&m_window, QEvent::MetaCall);
    m_events.closeDiary();
    Q_EMIT m_events.appShutdown(IShutdownEvtPtr::create());
    m_window.hide();
}

bool HostApplication::start(const HostOptions& options, QString* error)
{
    m_options = options;
    if (!startDiagnostics(error))
        return false;
    QDir().mkpath(QFileInfo(inDataFolder(LogName)).path());
    if (!m_database.open(databaseOf(options))) {
        *error = m_database.errorText();
        return false;
    }
    if (!options.drive.isEmpty())
        m_deviceAdmin.setDrivePath(QDir(options.drive).absolutePath());
    if (!options.simulation.isEmpty() && !QDir(options.simulation).exists()) {
        *error = QString("--simulation: there is no folder '%1'").arg(options.simulation);
        return false;
    }
    m_importHandler.setSimulation(!options.simulation.isEmpty());

    const QString library = options.plugin.isEmpty() ? PluginHost::defaultLibrary() : options.plugin;
    if (library.isEmpty()) {
        *error = "no plug-in library beside the program; name one with --plugin";
        return false;
    }
    if (!m_pluginHost.load(library, &m_extensionPoints, options.simulation, error))
        return false;
    m_log.write("host", "Info",
                QString("Plug-in %1, version %2, loaded.")
                    .arg(m_pluginHost.plugin()->pluginName(), m_pluginHost.plugin()->version()),
                {library});
    Q_EMIT m_events.appStartup(IStartupEvtPtr::create());

    if (!options.patient.isEmpty()) {
        const auto patient = m_database.findPatient(options.patient);
        if (!patient) {
            *error =
                m_database.errorText().isEmpty()
                    ? QString("--patient: there is no patient '%1' in '%2'").arg(options.patient, m_database.path())
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

bool HostApplication::startDiagnostics(QString* error)
{
    QObject::connect(&m_window, &HostWindow::reportRequested, &m_window,
                     [this](const QString& path, bool withPersonalData) { writeReport(path, withPersonalData); });
    if (!m_options.log.isEmpty() && !m_log.openFile(m_options.log, error))
        return false;
    const QString folder = diagnosticsFolderOf(m_options);
    if (folder.isEmpty())
        return true;
    m_folderLock = std::make_unique<QLockFile>(folder + "/.lock");
    m_folderLock->setStaleLockTime(0);
    // Two hosts in one folder would rotate each other's log files.
    QString problem = QString("diagnostics folder '%1': it can't be created or written to, or is in use").arg(folder);
    const bool isOurs = QDir().mkpath(folder) && m_folderLock->tryLock();
    if (isOurs && (!m_options.log.isEmpty() || m_log.openFile(QDir(folder).filePath(LogName), &problem, KeptLog))) {
        m_diagnosticsFolder = folder;
        keepTraffic();
        return true;
    }
    // Diagnostics that weren't requested are optional.
    if (m_options.diagnostics.isEmpty())
        m_log.write("host", "Warning", problem);
    *error = problem;
    return m_options.diagnostics.isEmpty();
}

/// Watches the drive only while the plug-in holds it.
void HostApplication::keepTraffic()
{
    m_trafficKeeper = std::make_unique<TrafficKeeper>(m_diagnosticsFolder, TrafficLimits());
    QObject::connect(m_trafficKeeper.get(), &TrafficKeeper::failed, &m_log,
                     [this](const QString& error) { m_log.write("host", "Warning", "traffic file " + error); });
    QObject::connect(&m_pluginHost, &PluginHost::runningChanged, m_trafficKeeper.get(), [this](bool isRunning) {
        const QString drive = m_options.simulation.isEmpty() ? m_deviceAdmin.drivePath() : m_options.simulation;
        if (isRunning && !drive.isEmpty())
            m_trafficKeeper->begin(drive);
        else
            m_trafficKeeper->end();
    });
}

/// Writes the report on a separate thread, as large logs would block the window.
void HostApplication::writeReport(const QString& path, bool withPersonalData)
{
    if (m_reportThread && m_reportThread->isRunning()) {
        m_window.showError("A report is being written already.");
        return;
    }
    m_window.showNotice(QString("The report '%1' is being written.").arg(QDir::toNativeSeparators(path)));
    m_reportThread.reset(
        QThread::create([this, report = HostReport(reportSources()), path, withPersonalData]() mutable {
            QString sentence;
            const bool isSaved = report.save(path, withPersonalData, &sentence);
            QMetaObject::invokeMethod(
                &m_window, [this, isSaved, sentence] { onReportEnded(isSaved, sentence); }, Qt::QueuedConnection);
        }));
    m_reportThread->start();
}

void HostApplication::onReportEnded(bool isSaved, const QString& sentence)
{
    if (isSaved)
        m_window.showNotice(sentence);
    else
        m_window.showError(sentence);
    m_log.write("host", isSaved ? "Info" : "Error", sentence);
}

bool HostApplication::saveReport(const HostOptions& options, QString* sentence)
{
    m_options = options;
    m_diagnosticsFolder = diagnosticsFolderOf(options);
    // HostDatabase::open() would create a missing file.
    if (QFileInfo::exists(databaseOf(options)))
        m_database.open(databaseOf(options));
    ReportSources sources = reportSources();
    sources.logs = LogFile::filesAt(QDir(m_diagnosticsFolder).filePath(LogName), KeptLog.files);
    if (!options.log.isEmpty())
        sources.logs.append(options.log);
    return HostReport(sources).save(options.report, options.personal, sentence);
}

ReportSources HostApplication::reportSources()
{
    ReportSources sources;
    sources.logs = m_log.files();
    sources.trafficFolder = m_diagnosticsFolder;
    sources.personal = personalData(m_database);
    sources.unknown = m_database.errorText();
    if (m_database.path().isEmpty() && sources.unknown.isEmpty())
        sources.unknown = QString("there is no patient database '%1'").arg(databaseOf(m_options));
    const IPlugin* plugin = m_pluginHost.plugin();
    sources.versions = {
        {"merivo-host", MERIVO_PLUGIN_VERSION},
        {"plug-in", plugin ? plugin->pluginName() + ' ' + plugin->version() : "not loaded"},
        {"Qt", QString("%1, built with %2").arg(QLatin1String(qVersion()), QLatin1String(QT_VERSION_STR))},
        {"system", QSysInfo::prettyProductName()},
        {"kernel", QSysInfo::kernelType() + ' ' + QSysInfo::kernelVersion()},
        {"processor", QSysInfo::currentCpuArchitecture()},
        {"locale", QLocale().name()},
    };
    sources.settings = {
        {"database", databaseOf(m_options)},
        {"database error", m_database.errorText()},
        {"plug-in", m_options.plugin.isEmpty() ? PluginHost::defaultLibrary() : m_options.plugin},
        {"drive", m_deviceAdmin.drivePath().isEmpty() ? m_options.drive : m_deviceAdmin.drivePath()},
        {"SimulationPath", m_options.simulation},
        {"log", m_options.log},
        {"diagnostics", m_diagnosticsFolder},
    };
    return sources;
}
