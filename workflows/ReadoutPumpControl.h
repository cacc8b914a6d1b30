// SPDX-FileCopyrightText: 2026 The Merivo Connections developers
// SPDX-License-Identifier: MIT
#pragma once

#include "reader/CommandStatus.h"

#include <QObject>
#include <QString>

/// Has the reader copy a pump's history into an exchange file on its drive, finds that file and records its path in
/// PatientSession. The file is neither opened nor moved; it stays where the reader put it.
///
/// One operation at a time, any number of them in turn. There is no cancel. A reader that falls silent isn't told of
/// here: that is StatusFileParser::timeout(), after which this object is of no further use. GUI thread only; the
/// reader's boxes are shown modally ahead of the signal that ends an operation.
class ReadoutPumpControl final : public QObject
{
    Q_OBJECT
    Q_DISABLE_COPY_MOVE(ReadoutPumpControl)

public:
    explicit ReadoutPumpControl(QObject* parent = nullptr);

    /// Lets the reader search for pumps and, if it then knows that serial number, goes on as startReadout(). Otherwise
    /// ends in searchingFinished(). At most 20 seconds for the search.
    void startSearching(const QString& serialNumber);

    /// Begins the read-out, and reports a progress of 0 before it returns. The reader has 20 seconds to show that it
    /// has begun and 440 seconds for all of it. Ends in readoutSucceeded() or readoutFinished().
    void startReadout(const QString& serialNumber);

Q_SIGNALS:
    /// The search ended without a read-out being started. A pump that wasn't found comes with the status of the search
    /// itself, Done: don't take it for a success.
    void searchingFinished(CommandStatus status);
    /// Exactly one exchange file is there, and its path is in PatientSession.
    void readoutSucceeded();
    /// The read-out ended without data.
    void readoutFinished(CommandStatus status);
    /// From 0 to 100; 100 comes before the exchange file is looked for. The report that opens a read-out carries the
    /// serial number of the one before, so the first of all carries none.
    void readoutProgress(QString serialNumber, int progressInPercentage);

private:
    void onSearchingFinished(bool success);
    void onReadoutFinished(bool success);
    void onReadoutProgress(int percentage);
    void findExchangeFile(CommandStatus status);

    QString m_serialNumber;
};
