// SPDX-FileCopyrightText: 2026 The Merivo Connections developers
// SPDX-License-Identifier: MIT
#pragma once

#include "reader/CommandStatus.h"
#include "reader/DeviceList.h"

#include <QList>
#include <QObject>
#include <QString>

class IDatabase;
class IServices;

/// Ties a pump to the open patient: a search, then either a pairing and the user's verdict on its code, or a
/// reassignment of a pump that the reader has paired to another patient. Clears the reader's pairings with patients who
/// are no longer in the open database on the way. Tells PatientSession of the pump.
///
/// One step at a time; each ends in one signal of its own, but for a search that was cancelled or ended undecided,
/// which ends in none. A reader that falls silent isn't told of here: that is StatusFileParser::timeout(), after which
/// this object is of no further use. GUI thread only; the reader's boxes are shown modally ahead of the signal that
/// ends a step.
class AddPumpControl final : public QObject
{
    Q_OBJECT
    Q_DISABLE_COPY_MOVE(AddPumpControl)

public:
    /// @p services and @p database stay the host's, and are asked for the patients behind each search that found pumps.
    AddPumpControl(IServices* services, IDatabase* database, QObject* parent = nullptr);

    /// Begins the search, for which the reader has 120 seconds, and reports a progress of 0 before it returns. Ends in
    /// pairingSearchResults() or pairingSearchStopped(). Of a cancelled search the log alone tells, and the list of an
    /// earlier search stays.
    void startPairingSearch();

    /// Has the reader connect to the pump of that row of the latest pairingSearchResults(), within 120 seconds. Ends in
    /// pairingCodeReceived() or pairingProcessStopped(). A row outside of the list does nothing at all.
    void startPairing(int row);
    /// Sends the user's verdict on the code, whenever it comes: the reader then has 60 seconds. A confirmation ends in
    /// pumpAssigned() or pairingConfirmStopped(), a decline in pairingDeclineFinished().
    void startPairingConfirm(bool confirm);
    /// Gives the pump of that row to the open patient, within 30 seconds. Ends in pumpAssigned() or reassignStopped().
    /// A row outside of the list does nothing at all.
    void startReassign(int row);

Q_SIGNALS:
    /// The search ended without a list.
    void pairingSearchStopped(CommandStatus status);
    /// The search ended with a list, possibly an empty one. A pump whose patient is gone stands in it as a free one.
    void pairingSearchResults(QList<DeviceInfo> deviceInfos);
    /// From 0 to 100. The serial number is that of the latest pairing or reassignment: none during a first search.
    void pairingSearchProgress(QString serialNumber, int progressInPercentage);
    /// The reader didn't get to a code. PatientSession has no pump then, unless the status is Unknown.
    void pairingProcessStopped(CommandStatus status);
    /// The code for the user to compare, as the reader wrote it: unchecked, and possibly empty.
    void pairingCodeReceived(QString confirmCode);
    /// The confirmation failed. PatientSession has no pump then, unless the status is Unknown.
    void pairingConfirmStopped(CommandStatus status);
    /// The decline ended, in whatever way: there is no failure of it.
    void pairingDeclineFinished(CommandStatus status);
    /// The reassignment failed. PatientSession has no pump then if the status is Failed, and what it had otherwise.
    void reassignStopped(CommandStatus status);
    /// The pump is the open patient's, and PatientSession has it already.
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
    QString m_serialNumber;      ///< Of the pump that is being paired or reassigned, or was the last to be.
    QList<DeviceInfo> m_devices; ///< As last read and cleaned.
};
