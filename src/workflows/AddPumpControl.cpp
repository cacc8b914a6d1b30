// SPDX-FileCopyrightText: 2026 The Merivo Connections developers
// SPDX-License-Identifier: MIT
#include "workflows/AddPumpControl.h"

#include "base/Logger.h"
#include "base/PatientSession.h"
#include "hostapi/IDatabase.h"
#include "hostapi/IServices.h"
#include "readerlink/CommandFileWriter.h"
#include "readerlink/PollingResult.h"
#include "workflows/ErrorHandler.h"

#include <QSet>

namespace {

constexpr int SearchTimeoutSec = 120;
constexpr int PairingTimeoutSec = 120;
constexpr int ConfirmTimeoutSec = 60;
constexpr int ReassignTimeoutSec = 30;

// The reader stores the assignments; the session mirrors that of the open patient during a run.

void setSessionPump(const QString& serialNumber)
{
    PatientSession::instance()->setPump(serialNumber, {});
}

void forgetSessionPump()
{
    PatientSession::instance()->setPump({}, {});
}

} // namespace

AddPumpControl::AddPumpControl(IServices* services, IDatabase* database, QObject* parent)
    : QObject(parent)
    , m_services(services)
    , m_database(database)
{}

void AddPumpControl::startPairingSearch()
{
    StatusFileParser* parser = StatusFileParser::instance();
    connectFinished(this, &AddPumpControl::onPairingSearchFinished);
    connect(parser, &StatusFileParser::progress, this, &AddPumpControl::onPairingSearchProgress, Qt::QueuedConnection);
    onPairingSearchProgress(0);
    logTrace(QStringLiteral("<== [Add Controller] Start pairing search."));
    CommandFileWriter::instance()->search();
    parser->start(SearchTimeoutSec, 0, 0);
}

void AddPumpControl::onPairingSearchProgress(int percentage)
{
    Q_EMIT pairingSearchProgress(m_serialNumber, percentage);
}

void AddPumpControl::onPairingSearchFinished(bool success)
{
    disconnect(StatusFileParser::instance(), &StatusFileParser::progress, this,
               &AddPumpControl::onPairingSearchProgress);
    const StatusRecord record = takeResult(this, &AddPumpControl::onPairingSearchFinished);

    if (!success) {
        logFailure(QStringLiteral("=!= [Add Controller] Pairing search failed."));
        Q_EMIT pairingSearchStopped(CommandStatus::Unknown);
        return;
    }
    const int status = int(record.status);
    switch (record.status) {
    case CommandStatus::Done:
        onPairingSearchProgress(100);
        cleanDeviceList();
        logTrace(QStringLiteral("==> [Add Controller] Pairing search succeeded: status='%1'.").arg(status));
        Q_EMIT pairingSearchResults(m_devices);
        break;
    case CommandStatus::Failed:
        ErrorHandler::showError(record.error);
        logFailure(QStringLiteral("=!= [Add Controller] Pairing search failed: status='%1'.").arg(status));
        Q_EMIT pairingSearchStopped(record.status);
        break;
    case CommandStatus::Canceled:
        // The user cancelled, so this isn't logged as an error. The dialog waits for the end of its ABORT instead.
        logTrace(QStringLiteral("=!= [Add Controller] Pairing search stopped: status='%1'.").arg(status));
        break;
    case CommandStatus::Running:
    case CommandStatus::Unknown:
        break;
    }
}

/// Reads the reader's list and frees the pumps of patients who aren't in the open database.
void AddPumpControl::cleanDeviceList()
{
    CommandFileWriter* writer = CommandFileWriter::instance();
    m_devices = readDeviceList(writer->m_path, QStringLiteral("DEVLIST.XML"));
    if (m_devices.isEmpty()) {
        logFailure(QStringLiteral("=!= [Add Controller] Empty device list."));
        return;
    }

    const QString guid = m_database->databaseGuid(m_services->path(IServices::DatabasePath));
    // Only the reader's patients are collected: the host may have many more.
    QSet<QString> unknownPatients;
    for (const DeviceInfo& device : qAsConst(m_devices))
        unknownPatients.insert(device.patientId);
    const QMap<QString, PatientRecord> patients = m_database->patients(guid);
    for (const PatientRecord& patient : patients)
        unknownPatients.remove(patient.puid);

    logTrace(QStringLiteral("=== [Add Controller] Original devices list: count='%1'.").arg(m_devices.size()));
    for (int row = m_devices.size() - 1; row >= 0; --row) {
        if (m_devices.at(row).patientId.isEmpty() || !unknownPatients.contains(m_devices.at(row).patientId))
            continue;
        // The answer isn't awaited, and the next such command replaces this one. The next polled command comes only
        // after the user has chosen a pump.
        DeviceInfo& device = m_devices[row];
        writer->deleteAddress(device.serialNumber);
        logTrace(QStringLiteral("=== [Add Controller] Deprecated pairing info (puid='%1', snr='%2') removed.")
                     .arg(device.patientId, device.serialNumber));
        device.patientId.clear();
        device.paired = false;
    }
    logTrace(QStringLiteral("=== [Add Controller] Cleared devices list: count='%1'.").arg(m_devices.size()));
}

void AddPumpControl::startPairing(int row)
{
    if (row < 0 || row >= m_devices.size())
        return;
    const DeviceInfo& device = m_devices.at(row);
    m_serialNumber = device.serialNumber;
    connectFinished(this, &AddPumpControl::onPairingProcessFinished);
    logTrace(QStringLiteral("<== [Add Controller] Start pairing process: snr='%1'.").arg(m_serialNumber));
    CommandFileWriter::instance()->pair(device.btAddress, m_serialNumber, PatientSession::instance()->patientId());
    StatusFileParser::instance()->start(PairingTimeoutSec, 0, 0);
}

void AddPumpControl::onPairingProcessFinished(bool success)
{
    const StatusRecord record = takeResult(this, &AddPumpControl::onPairingProcessFinished);
    const int status = int(record.status);

    if (!success) {
        logFailure(QStringLiteral("=!= [Add Controller] Pairing process start failed."));
        Q_EMIT pairingProcessStopped(CommandStatus::Unknown);
    } else if (record.status == CommandStatus::Done) {
        logTrace(QStringLiteral("==> [Add Controller] Pairing process start succeeded: status='%1'.").arg(status));
        Q_EMIT pairingCodeReceived(record.result);
    } else {
        if (record.status == CommandStatus::Failed)
            ErrorHandler::showError(record.error);
        logFailure(QStringLiteral("=!= [Add Controller] Pairing process start failed: status='%1'.").arg(status));
        forgetSessionPump();
        Q_EMIT pairingProcessStopped(record.status);
    }
}

void AddPumpControl::startPairingConfirm(bool confirm)
{
    connectFinished(this,
                    confirm ? &AddPumpControl::onPairingConfirmFinished : &AddPumpControl::onPairingDeclineFinished);
    logTrace(QStringLiteral("<== [Add Controller] Start pairing confirm: snr='%1'.").arg(m_serialNumber));
    CommandFileWriter::instance()->confirmPairing(confirm);
    StatusFileParser::instance()->start(ConfirmTimeoutSec, 0, 0);
}

void AddPumpControl::onPairingConfirmFinished(bool success)
{
    const StatusRecord record = takeResult(this, &AddPumpControl::onPairingConfirmFinished);
    const int status = int(record.status);

    if (!success) {
        logFailure(QStringLiteral("=!= [Add Controller] Pairing confirm failed."));
        Q_EMIT pairingConfirmStopped(CommandStatus::Unknown);
    } else if (record.status == CommandStatus::Done) {
        logTrace(QStringLiteral("==> [Add Controller] Pairing confirm succeeded: status='%1'.").arg(status));
        setSessionPump(m_serialNumber);
        Q_EMIT pumpAssigned();
    } else {
        if (record.status == CommandStatus::Failed) {
            // Cleared before the message box, so that nothing sees the old pump while it is open, and again after it,
            // because the session may have changed meanwhile.
            forgetSessionPump();
            ErrorHandler::showError(record.error);
        }
        logFailure(QStringLiteral("=!= [Add Controller] Pairing confirm failed: status='%1'.").arg(status));
        forgetSessionPump();
        Q_EMIT pairingConfirmStopped(record.status);
    }
}

void AddPumpControl::onPairingDeclineFinished(bool success)
{
    const StatusRecord record = takeResult(this, &AddPumpControl::onPairingDeclineFinished);

    if (!success) {
        logFailure(QStringLiteral("=!= [Add Controller] Pairing decline failed."));
        Q_EMIT pairingDeclineFinished(CommandStatus::Unknown);
    } else {
        // A decline is never shown as a failure, whatever its status.
        logTrace(QStringLiteral("==> [Add Controller] Pairing decline finished: status='%1'.").arg(int(record.status)));
        Q_EMIT pairingDeclineFinished(record.status);
    }
}

void AddPumpControl::startReassign(int row)
{
    if (row < 0 || row >= m_devices.size())
        return;
    m_serialNumber = m_devices.at(row).serialNumber;
    connectFinished(this, &AddPumpControl::onReassignFinished);
    logTrace(QStringLiteral("<== [Add Controller] Start Reassign process: snr='%1'.").arg(m_serialNumber));
    CommandFileWriter::instance()->reassign(m_serialNumber, PatientSession::instance()->patientId());
    StatusFileParser::instance()->start(ReassignTimeoutSec, 0, 0);
}

void AddPumpControl::onReassignFinished(bool success)
{
    const StatusRecord record = takeResult(this, &AddPumpControl::onReassignFinished);
    const int status = int(record.status);

    if (!success) {
        logFailure(QStringLiteral("=!= [Add Controller] Reassign failed."));
        Q_EMIT reassignStopped(CommandStatus::Unknown);
    } else if (record.status == CommandStatus::Done) {
        setSessionPump(m_serialNumber);
        logTrace(QStringLiteral("==> [Add Controller] Reassign succeeded: status='%1'.").arg(status));
        Q_EMIT pumpAssigned();
    } else {
        if (record.status == CommandStatus::Failed)
            ErrorHandler::showError(record.error);
        logFailure(QStringLiteral("=!= [Add Controller] Reassign failed: status='%1'.").arg(status));
        // With any other status the patient's previous pump is still assigned, unlike after a confirmation.
        if (record.status == CommandStatus::Failed)
            forgetSessionPump();
        Q_EMIT reassignStopped(record.status);
    }
}
