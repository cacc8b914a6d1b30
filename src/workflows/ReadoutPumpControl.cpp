// SPDX-FileCopyrightText: 2026 The Merivo Connections developers
// SPDX-License-Identifier: MIT
#include "workflows/ReadoutPumpControl.h"

#include "base/Logger.h"
#include "base/PatientSession.h"
#include "readerlink/CommandFileWriter.h"
#include "readerlink/DeviceList.h"
#include "readerlink/PollingResult.h"
#include "workflows/ErrorHandler.h"
#include "workflows/MessageBoxes.h"

#include <QDir>

#include <algorithm>

namespace {

constexpr int SearchTimeoutSec = 20;
constexpr int ReadoutTimeoutSec = 440;
constexpr int ReadoutStartTimeoutSec = 20;

} // namespace

ReadoutPumpControl::ReadoutPumpControl(QObject* parent)
    : QObject(parent)
{}

void ReadoutPumpControl::startSearching(const QString& serialNumber)
{
    connectFinished(this, &ReadoutPumpControl::onSearchingFinished);
    m_serialNumber = serialNumber;
    logTrace(QStringLiteral("<== [Read Controller] Start searching: snr='%1'.").arg(m_serialNumber));
    CommandFileWriter::instance()->search();
    StatusFileParser::instance()->start(SearchTimeoutSec, 0, 0);
}

void ReadoutPumpControl::onSearchingFinished(bool success)
{
    const StatusRecord record = takeResult(this, &ReadoutPumpControl::onSearchingFinished);

    // Reported as cancelled even if the command wasn't executed.
    if (record.status == CommandStatus::Canceled) {
        logFailure(QStringLiteral("=!= [Read Controller] Searching canceled: error='%1'.").arg(record.error));
        Q_EMIT searchingFinished(CommandStatus::Canceled);
        return;
    }
    if (!success) {
        logFailure(QStringLiteral("=!= [Read Controller] Searching failed."));
        Q_EMIT searchingFinished(CommandStatus::Unknown);
        return;
    }
    if (record.status == CommandStatus::Failed) {
        // Logged before the message box here, but after it in onReadoutFinished().
        logFailure(QStringLiteral("=!= [Read Controller] Searching failed: error='%1'.").arg(record.error));
        ErrorHandler::showError(record.error);
        Q_EMIT searchingFinished(CommandStatus::Failed);
        return;
    }

    const QList<DeviceInfo> devices =
        readDeviceList(CommandFileWriter::instance()->m_path, QStringLiteral("DEVLIST.XML"));
    const bool found = std::any_of(devices.cbegin(), devices.cend(),
                                   [this](const DeviceInfo& device) { return device.serialNumber == m_serialNumber; });
    if (found) {
        logTrace(QStringLiteral("==> [Read Controller] Searching succeeded: status='%1'.").arg(int(record.status)));
        startReadout(m_serialNumber);
        return;
    }

    warn(tr("Merivo Connections", "Message box title used when read pump failed."),
         tr("The paired device for the patient can't be found."));
    logFailure(QStringLiteral("=!= [Read Controller] Searching failed: no paired pump with snr='%1' for patient found.")
                   .arg(m_serialNumber));
    Q_EMIT searchingFinished(record.status);
}

void ReadoutPumpControl::startReadout(const QString& serialNumber)
{
    StatusFileParser* parser = StatusFileParser::instance();
    connectFinished(this, &ReadoutPumpControl::onReadoutFinished);
    connect(parser, &StatusFileParser::progress, this, &ReadoutPumpControl::onReadoutProgress, Qt::QueuedConnection);
    // Emitted before the serial number is stored: the first signal has the previous one.
    onReadoutProgress(0);
    m_serialNumber = serialNumber;
    logTrace(QStringLiteral("<== [Read Controller] Start readout: snr='%1'.").arg(m_serialNumber));
    CommandFileWriter::instance()->read(m_serialNumber);
    parser->start(ReadoutTimeoutSec, ReadoutStartTimeoutSec, 0);
}

void ReadoutPumpControl::onReadoutProgress(int percentage)
{
    Q_EMIT readoutProgress(m_serialNumber, percentage);
}

void ReadoutPumpControl::onReadoutFinished(bool success)
{
    disconnect(StatusFileParser::instance(), &StatusFileParser::progress, this, &ReadoutPumpControl::onReadoutProgress);
    const StatusRecord record = takeResult(this, &ReadoutPumpControl::onReadoutFinished);

    if (record.status == CommandStatus::Canceled) {
        logFailure(QStringLiteral("=!= [Read Controller] Readout canceled: error='%1'.").arg(record.error));
        Q_EMIT readoutFinished(CommandStatus::Canceled);
    } else if (!success) {
        logFailure(QStringLiteral("=!= [Read Controller] Readout failed."));
        Q_EMIT readoutFinished(CommandStatus::Unknown);
    } else if (record.status == CommandStatus::Failed) {
        ErrorHandler::showError(record.error);
        logFailure(QStringLiteral("=!= [Read Controller] Readout failed: error='%1'.").arg(record.error));
        Q_EMIT readoutFinished(CommandStatus::Failed);
    } else {
        findExchangeFile(record.status);
    }
}

void ReadoutPumpControl::findExchangeFile(CommandStatus status)
{
    onReadoutProgress(100);

    // Matches in any letter case, and folders too: any other number of matches than one is an error of the reader.
    const QDir directory(StatusFileParser::instance()->m_path);
    const QStringList entries = directory.entryList({QStringLiteral("I*.xml")});
    if (entries.size() == 1) {
        const QString path = directory.absoluteFilePath(entries.first());
        PatientSession::instance()->setExchangeFilePath(path);
        logTrace(QStringLiteral("==> [Read Controller] Readout succeeded: status='%1'.").arg(int(status)), path);
        Q_EMIT readoutSucceeded();
        return;
    }

    const QString reason = entries.isEmpty() ? QStringLiteral("missing exchange file")
                                             : QStringLiteral("To many (=%1) exchange files found").arg(entries.size());
    logFailure(QStringLiteral("=!= [Read Controller] Readout failed: %1.").arg(reason));
    Q_EMIT readoutFinished(CommandStatus::Unknown);
}
