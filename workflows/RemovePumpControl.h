// SPDX-FileCopyrightText: 2026 The Merivo Connections developers
// SPDX-License-Identifier: MIT
#pragma once

#include "reader/CommandStatus.h"

#include <QObject>

/// Has the reader forget its pairing with the patient's pump. PatientSession keeps the pump: to forget it there is the
/// caller's business. Data that were read from the pump stay.
///
/// A reader that falls silent isn't told of here: that is StatusFileParser::timeout(), after which this object is of no
/// further use. GUI thread only; the reader's box is shown modally ahead of the signal.
class RemovePumpControl final : public QObject
{
    Q_OBJECT
    Q_DISABLE_COPY_MOVE(RemovePumpControl)

public:
    explicit RemovePumpControl(QObject* parent = nullptr);

    /// Removes the pump that PatientSession names, within 20 seconds. There is no cancel. Ends in one of the signals.
    void startRemoving();

Q_SIGNALS:
    void removingSucceeded();
    /// The removal ended without success; despite its name it doesn't follow a success.
    void removingFinished(CommandStatus status);

private:
    void onRemovingFinished(bool success);
};
