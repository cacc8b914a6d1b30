// SPDX-FileCopyrightText: 2026 The Merivo Connections developers
// SPDX-License-Identifier: MIT
#pragma once

#include "dialogs/PumpDialog.h"
#include "ui_PumpReadDialog.h"

class ReadoutPumpControl;

/// The read-out of the patient's pump. It begins by itself 2600 ms after the dialog was made, can't be left while it
/// runs, and closes the dialog 2000 ms after it has succeeded; after a failure the user tries again or cancels.
class PumpReadDialog final : public PumpDialog, private Ui::PumpReadDialog
{
    Q_OBJECT
    Q_DISABLE_COPY_MOVE(PumpReadDialog)

public:
    PumpReadDialog(IServices* services, IDatabase* database, const QString& simulationPath, QWidget* parent);

    bool isCancelEnabled() const override { return hasEnabledCancel(*m_DialogButtonBox); }

Q_SIGNALS:
    /// The pump's data are there; the dialog closes as Accepted right after. Never comes with a Rejected dialog.
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
