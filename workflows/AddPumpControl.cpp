// SPDX-FileCopyrightText: 2026 The Merivo Connections developers
// SPDX-License-Identifier: MIT
#include "workflows/AddPumpControl.h"

#include "host/IDatabase.h"
#include "host/IServices.h"
#include "plugin/session/Logger.h"
#include "plugin/session/PatientSession.h"
#include "reader/CommandFileWriter.h"
#include "reader/ErrorHandler.h"
#include "reader/PollingResult.h"

#include <QSet>

namespace {

// The reader keeps which pump is whose; the session mirrors it for a run. It is asked for anew each time, since a diary
// event replaces it.

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
    parser->start(120, 0, 0);
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
        // The user's own doing, and so a trace despite its mark. The dialog waits for the end of its ABORT instead.
        logTrace(QStringLiteral("=!= [Add Controller] Pairing search stopped: status='%1'.").arg(status));
        break;
    case CommandStatus::Running:
    case CommandStatus::Unknown:
        break;
    }
}

/// The reader's list of pairings outlives the patients of the host: a pump whose patient is gone becomes a free one.
void AddPumpControl::cleanDeviceList()
{
    CommandFileWriter* writer = CommandFileWriter::instance();
    m_devices = readDeviceList(writer->m_path, QStringLiteral("DEVLIST.XML"));
    if (m_devices.isEmpty()) {
        logFailure(QStringLiteral("=!= [Add Controller] Empty device list."));
        return;
    }

    const QString guid = m_database->databaseGuid(m_services->path(IServices::DatabasePath));
    // The reader's list is short, the host's may be long: what is kept is the short one.
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
        // Written and forgotten: no answer is awaited, and the next such command replaces this one. The reader's next
        // proper command comes only when the user has chosen a pump.
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
    StatusFileParser::instance()->start(120, 0, 0);
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
    StatusFileParser::instance()->start(60, 0, 0);
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
            // Twice: nothing sees the old pump while the box stands, and nothing that came meanwhile is left behind it.
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
        // Whatever the reader makes of a decline, the user has what they asked for: no box, and no failure.
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
    StatusFileParser::instance()->start(30, 0, 0);
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
        // Unlike in a confirmation: undecided or cancelled, the patient's pump is still what it was.
        if (record.status == CommandStatus::Failed)
            forgetSessionPump();
        Q_EMIT reassignStopped(record.status);
    }
}
