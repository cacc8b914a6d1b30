// SPDX-FileCopyrightText: 2026 The Merivo Connections developers
// SPDX-License-Identifier: MIT
#include "workflows/RemovePumpControl.h"

#include "base/Logger.h"
#include "base/PatientSession.h"
#include "readerlink/CommandFileWriter.h"
#include "readerlink/PollingResult.h"
#include "workflows/ErrorHandler.h"

namespace {

constexpr int RemoveTimeoutSec = 20;

} // namespace

RemovePumpControl::RemovePumpControl(QObject* parent)
    : QObject(parent)
{}

void RemovePumpControl::startRemoving()
{
    connectFinished(this, &RemovePumpControl::onRemovingFinished);
    const QString serialNumber = PatientSession::instance()->pumpSerialNumber();
    logTrace(QStringLiteral("<== [Remove Controller] Start removing: snr='%1'.").arg(serialNumber));
    CommandFileWriter::instance()->deleteAddress(serialNumber);
    StatusFileParser::instance()->start(RemoveTimeoutSec, 0, 0);
}

void RemovePumpControl::onRemovingFinished(bool success)
{
    const StatusRecord record = takeResult(this, &RemovePumpControl::onRemovingFinished);

    if (!success) {
        logFailure(QStringLiteral("=!= [Remove Controller] Removing failed."));
        Q_EMIT removingFinished(CommandStatus::Unknown);
    } else if (record.status == CommandStatus::Done) {
        logTrace(QStringLiteral("==> [Remove Controller] Removing succeeded: status='%1'.").arg(int(record.status)));
        Q_EMIT removingSucceeded();
    } else {
        if (record.status == CommandStatus::Failed)
            ErrorHandler::showError(record.error);
        logFailure(QStringLiteral("=!= [Remove Controller] Removing failed: error='%1'.").arg(record.error));
        Q_EMIT removingFinished(record.status);
    }
}
