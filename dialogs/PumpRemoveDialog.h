// SPDX-FileCopyrightText: 2026 The Merivo Connections developers
// SPDX-License-Identifier: MIT
#pragma once

#include "dialogs/PumpDialog.h"
#include "ui_PumpRemoveDialog.h"

class RemovePumpControl;

/// Asks once more and has the reader forget the patient's pump. Once answered with Yes it can't be left until the
/// reader has ended; Accepted then tells that the pump is gone, any other end that the pairing may still stand.
class PumpRemoveDialog final : public PumpDialog, private Ui::PumpRemoveDialog
{
    Q_OBJECT
    Q_DISABLE_COPY_MOVE(PumpRemoveDialog)

public:
    PumpRemoveDialog(IServices* services, IDatabase* database, const QString& simulationPath, QWidget* parent);

    bool isCancelEnabled() const override { return hasEnabledCancel(*m_DialogButtonBox); }

private:
    void onCurrentRowChanged(const QModelIndex& index);
    void onButtonClicked(QAbstractButton* button);
    void askAndRemove();
    void onRemovingSucceeded();
    void onRemovingFailed();

    RemovePumpControl* m_control; ///< child of the dialog
};
