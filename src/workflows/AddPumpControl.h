// SPDX-FileCopyrightText: 2026 The Merivo Connections developers
// SPDX-License-Identifier: MIT
#pragma once

#include "readerlink/CommandStatus.h"
#include "readerlink/DeviceList.h"

#include <QList>
#include <QObject>
#include <QString>

class IDatabase;
class IServices;

/// Assigns a pump to the open patient: searches for pumps, and then either pairs one, with a code that the user
/// confirms or declines, or reassigns one that is paired to another patient. After a search, removes the reader's
/// pairings with patients who are no longer in the open database. Records the assigned pump in PatientSession.
///
/// Only one step runs at a time. Each ends with one signal, except a search that was cancelled or ended undecided.
/// Time-outs are reported by StatusFileParser::timeout(); discard this object after one. Errors of the reader are shown
/// in a modal message box before the signal. GUI thread only.
class AddPumpControl final : public QObject
{
    Q_OBJECT
    Q_DISABLE_COPY_MOVE(AddPumpControl)

public:
    /// After each search that found pumps, @p services and @p database are asked for the patients. Not owned.
    AddPumpControl(IServices* services, IDatabase* database, QObject* parent = nullptr);

    /// Starts the search, which may take 120 seconds, and emits a progress of 0 at once. Ends with
    /// pairingSearchResults() or pairingSearchStopped(). A cancelled search keeps the previous list.
    void startPairingSearch();

    /// Connects the reader to the pump in @p row of the last pairingSearchResults() within 120 seconds. Ends with
    /// pairingCodeReceived() or pairingProcessStopped(). Does nothing if there is no such row.
    void startPairing(int row);
    /// Confirms or declines the code; the reader has 60 seconds from this call. A confirmation ends with pumpAssigned()
    /// or pairingConfirmStopped(), a decline with pairingDeclineFinished().
    void startPairingConfirm(bool confirm);
    /// Assigns the pump in @p row to the open patient within 30 seconds. Ends with pumpAssigned() or reassignStopped().
    /// Does nothing if there is no such row.
    void startReassign(int row);

Q_SIGNALS:
    /// Emitted when the search ended without a list.
    void pairingSearchStopped(CommandStatus status);
    /// Emitted when the search ended with a list, which may be empty. The pump of a patient who isn't
    /// in the open database is listed as free.
    void pairingSearchResults(QList<DeviceInfo> deviceInfos);
    /// Emitted with 0 to 100 per cent, and the serial number of the last pairing or reassignment, if any.
    void pairingSearchProgress(QString serialNumber, int progressInPercentage);
    /// Emitted when the pairing ended without a code. PatientSession has no pump then, unless the status is Unknown.
    void pairingProcessStopped(CommandStatus status);
    /// Emitted with the code for the user to compare, as the reader wrote it; it may be empty.
    void pairingCodeReceived(QString confirmCode);
    /// Emitted when the confirmation failed. PatientSession has no pump then, unless the status is Unknown.
    void pairingConfirmStopped(CommandStatus status);
    /// Emitted when the decline ended, with any status: a decline can't fail.
    void pairingDeclineFinished(CommandStatus status);
    /// Emitted when the reassignment failed. PatientSession has no pump then, but only if the status is Failed.
    void reassignStopped(CommandStatus status);
    /// Emitted when the pump is assigned to the open patient and recorded in PatientSession.
    void pumpAssigned();

private:
    void onPairingSearchProgress(int percentage);
    void onPairingSearchFinished(bool success);
    void onPairingProcessFinished(bool success);
    void onPairingConfirmFinished(bool success);
    void onPairingDeclineFinished(bool success);
    void onReassignFinished(bool success);
    void cleanDeviceList();

    IServices* m_services;
    IDatabase* m_database;
    QString m_serialNumber;      ///< of the last pump to be paired or reassigned
    QList<DeviceInfo> m_devices; ///< as last read and cleaned
};
