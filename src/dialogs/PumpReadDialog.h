// SPDX-FileCopyrightText: 2026 The Merivo Connections developers
// SPDX-License-Identifier: MIT
#pragma once

#include "dialogs/PumpDialog.h"
#include "ui_PumpReadDialog.h"

class ReadoutPumpControl;

/// Reads the data of the patient's pump. The read-out starts 2600 ms after the construction and can't be cancelled. The
/// dialog closes 2000 ms after a success; after a failure the user retries or cancels.
class PumpReadDialog final : public PumpDialog, private Ui::PumpReadDialog
{
    Q_OBJECT
    Q_DISABLE_COPY_MOVE(PumpReadDialog)

public:
    PumpReadDialog(IServices* services, IDatabase* database, const QString& simulationPath, QWidget* parent);

    bool isCancelEnabled() const override { return hasEnabledCancel(*m_DialogButtonBox); }

Q_SIGNALS:
    /// Emitted when the pump's data were read; the dialog closes as Accepted right after.
    void importDataReady();

private:
    void startRead();
    void onProgress(const QString& serialNumber, int percentage);
    void onReadoutSucceeded();
    void onReadoutFailed();
    void onButtonClicked(QAbstractButton* button);
    void acceptData();
    void discardData();
    void setMessage(const QString& text);

    ReadoutPumpControl* m_control; ///< child of the dialog
};
