// SPDX-FileCopyrightText: 2026 The Merivo Connections developers
// SPDX-License-Identifier: MIT
#pragma once

#include "dialogs/PumpDialog.h"
#include "ui_PumpRemoveDialog.h"

class RemovePumpControl;

/// Removes the patient's pump from the reader after a question. After "Yes" the dialog can't be closed before the
/// reader has finished. It is Accepted if the pump was removed; otherwise the reader may still be paired with it.
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
