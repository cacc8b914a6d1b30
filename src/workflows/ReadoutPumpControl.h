// SPDX-FileCopyrightText: 2026 The Merivo Connections developers
// SPDX-License-Identifier: MIT
#pragma once

#include "readerlink/CommandStatus.h"

#include <QObject>
#include <QString>

/// Makes the reader copy a pump's history into an exchange file on its drive, finds that file and records its path in
/// PatientSession. The file is neither opened nor moved.
///
/// Only one operation runs at a time, and it can't be cancelled. Time-outs are reported by StatusFileParser::timeout();
/// discard this object after one. Errors of the reader are shown in a modal message box before the signal. GUI thread
/// only.
class ReadoutPumpControl final : public QObject
{
    Q_OBJECT
    Q_DISABLE_COPY_MOVE(ReadoutPumpControl)

public:
    explicit ReadoutPumpControl(QObject* parent = nullptr);

    /// Searches for pumps within 20 seconds and, if the reader then lists @p serialNumber, continues with
    /// startReadout(). Otherwise ends with searchingFinished().
    void startSearching(const QString& serialNumber);

    /// Starts the read-out and emits a progress of 0 at once. The reader must start within 20 seconds and finish
    /// within 440. Ends with readoutSucceeded() or readoutFinished().
    void startReadout(const QString& serialNumber);

Q_SIGNALS:
    /// Emitted when the search ended and no read-out was started. If the pump wasn't found, @p status is that of the
    /// search itself: Done isn't a success here.
    void searchingFinished(CommandStatus status);
    /// Emitted when there is exactly one exchange file and its path is in PatientSession.
    void readoutSucceeded();
    /// Emitted when the read-out ended without data.
    void readoutFinished(CommandStatus status);
    /// Emitted with 0 to 100 per cent; 100 comes before the search for the exchange file. The first signal of a
    /// read-out has the serial number of the previous read-out, if any.
    void readoutProgress(QString serialNumber, int progressInPercentage);

private:
    void onSearchingFinished(bool success);
    void onReadoutFinished(bool success);
    void onReadoutProgress(int percentage);
    void findExchangeFile(CommandStatus status);

    QString m_serialNumber;
};
