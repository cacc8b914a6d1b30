// SPDX-FileCopyrightText: 2026 The Merivo Connections developers
// SPDX-License-Identifier: MIT
#include "plugin/MerivoConnectionsComponent.h"

#include "base/Logger.h"
#include "base/PatientSession.h"
#include "base/SessionWatch.h"
#include "dialogs/MainDialog.h"
#include "hostcommands/CommandController.h"
#include "plugin/MerivoConnectionsPlugin.h"
#include "readerlink/CommandFileWriter.h"
#include "readerlink/StatusFileParser.h"
#include "readerlink/UsbDeviceAdapter.h"
#include "workflows/MessageBoxes.h"

#include <QApplication>
#include <QDir>
#include <QFile>
#include <QScopedValueRollback>
#include <QTextStream>

#include <array>
#include <memory>

namespace {

using Version = std::array<int, 3>; // major, minor, patch

constexpr Version MinFirmware{3, 2, 23};
/// Far above the length of any real line; limits the memory for a damaged file without line ends.
constexpr int MaxLineLength = 65536;

/// Parses the version at the end of a firmware log's fifth line. A missing line counts as empty.
Version parseFirmwareVersion(QFile& log)
{
    QTextStream stream(&log);
    QString line;
    for (int i = 0; i < 5; ++i)
        line = stream.readLine(MaxLineLength);

    const QStringList parts = line.split(QLatin1Char(' ')).last().split(QLatin1Char('.'));
    Version version{};
    for (int i = 0; i < 3; ++i)
        version.at(static_cast<std::size_t>(i)) = parts.value(i).toInt();
    return version;
}

} // namespace

MerivoConnectionsComponent::MerivoConnectionsComponent(CommandController* commandController,
                                                       MerivoConnectionsPlugin* plugin)
    : m_commandController(commandController)
    , m_plugin(plugin)
{
    m_icon.addFile(QStringLiteral(":/img/Images/PumpDownloadGreyDark.svg"), {}, QIcon::Normal, QIcon::Off);
    m_icon.addFile(QStringLiteral(":/img/Images/PumpDownloadGreyLight.svg"), {}, QIcon::Disabled, QIcon::Off);
}

QString MerivoConnectionsComponent::title() const
{
    return tr("Merivo Connection", "Used as transaltable menu entry");
}

QIcon MerivoConnectionsComponent::icon() const
{
    return m_icon;
}

IPlugin* MerivoConnectionsComponent::plugin() const
{
    return m_plugin;
}

void MerivoConnectionsComponent::loadPictures()
{
    if (m_hasLoadedPictures || !qobject_cast<QApplication*>(QCoreApplication::instance()))
        return;
    m_hasLoadedPictures = true;
    MainDialog::loadPictures(this, &m_pictures);
}

bool MerivoConnectionsComponent::execute(QWidget* parent)
{
    logTrace(QStringLiteral("--> Plugin component execution started"));
    if (!m_plugin)
        return false;
    // Events are processed while the adapter waits, so the host's menu can start a run within this one. It would
    // replace the writer and the parser, and release the reader too early.
    if (m_isRunning) {
        logTrace(QStringLiteral("--- Plugin component execution ignored: another one is under way"));
        return false;
    }
    const QScopedValueRollback<bool> running(m_isRunning, true);

    if (PatientSession::instance()->patientId().isEmpty()) {
        return fail(parent,
                    tr("No patient is selected. Please select first an patient and then start the plugin again."),
                    QStringLiteral("-!- Plugin component execution failed: missing patient"));
    }
    const SessionWatch sessionWatch;

    std::shared_ptr<UsbDeviceAdapter> adapter; // Holds the reader during the run; null in a simulation.
    QString drivePath = m_simulationPath;
    if (m_simulationPath.isEmpty()) {
        adapter = std::make_shared<UsbDeviceAdapter>(m_plugin->m_deviceAdmin);
        drivePath = adapter->m_drivePath;
        if (drivePath.isEmpty()) {
            return fail(parent, tr("No lumo2 device reader is currently connected."),
                        QStringLiteral("-!- Plugin component execution failed: missing device reader"));
        }
        if (!checkFirmware(drivePath)) {
            return fail(parent,
                        tr("The Lumodevice has an old firmware. Please update the DeviceReader and start the plugin "
                           "again"),
                        QStringLiteral("-!- Plugin component execution failed: unsupported firmware version"));
        }
    }
    // The diary may have changed while the adapter waited.
    if (sessionWatch.hasDiaryChanged()) {
        return fail(parent, MainDialog::diaryChangedText(),
                    QStringLiteral("-!- Plugin component execution failed: diary closed or changed"));
    }

    CommandFileWriter::create(drivePath);
    StatusFileParser::create(drivePath);
    {
        MainDialog dialog(m_plugin->m_services, m_plugin->m_database, m_simulationPath, nullptr);
        connect(&dialog, &MainDialog::importDataReady, m_commandController, &CommandController::importData);
        dialog.exec();

        logTrace(QStringLiteral("--- Plugin component execution finishing"));
        // The parser first, because its thread reads the writer. Both before the dialog, which then receives no more
        // signals.
        delete StatusFileParser::instance();
        delete CommandFileWriter::instance();
    }
    adapter.reset(); // Waits for host and reader.
    logTrace(QStringLiteral("<-- Plugin component execution finished"));
    return true;
}

bool MerivoConnectionsComponent::checkFirmware(const QString& drivePath)
{
    const QString folder = drivePath + QStringLiteral("/MISC");
    const QStringList entries = QDir(folder).entryList(QDir::AllEntries | QDir::Hidden | QDir::System, QDir::Unsorted);
    for (const QString& entry : entries) {
        if (!entry.startsWith(QLatin1Char('V')) || !entry.contains(QLatin1String(".log"), Qt::CaseInsensitive))
            continue;
        QFile log(folder + QLatin1Char('/') + entry);
        if (log.open(QIODevice::ReadOnly) && parseFirmwareVersion(log) < MinFirmware)
            return false;
    }
    return true;
}

/// Ends a run before the main dialog: shows the message box first, then writes the log.
bool MerivoConnectionsComponent::fail(QWidget* parent, const QString& text, const QString& logLine) const
{
    warn(title(), text, parent);
    logFailure(logLine);
    return false;
}
