// SPDX-FileCopyrightText: 2026 The Merivo Connections developers
// SPDX-License-Identifier: MIT
#pragma once

#include "readerlink/CommandStatus.h"

#include <QObject>

/// Removes the reader's pairing with the patient's pump. Callers remove the pump from PatientSession. Data that were
/// read from the pump are kept.
///
/// Time-outs are reported by StatusFileParser::timeout(); discard this object after one. Errors of the reader are shown
/// in a modal message box before the signal. GUI thread only.
class RemovePumpControl final : public QObject
{
    Q_OBJECT
    Q_DISABLE_COPY_MOVE(RemovePumpControl)

public:
    explicit RemovePumpControl(QObject* parent = nullptr);

    /// Removes the pump in PatientSession within 20 seconds. Ends with one of the signals and can't be cancelled.
    void startRemoving();

Q_SIGNALS:
    void removingSucceeded();
    /// Emitted when the removal failed; despite its name, not emitted after a success.
    void removingFinished(CommandStatus status);

private:
    void onRemovingFinished(bool success);
};
