// SPDX-FileCopyrightText: 2026 The Merivo Connections developers
// SPDX-License-Identifier: MIT
#pragma once

#include "dialogs/PumpDialog.h"
#include "readerlink/DeviceList.h"
#include "ui_PumpAddDialog.h"

class AddPumpControl;

/// A wizard that assigns a pump to the open patient: search for pumps, select one, compare its code, confirm on the
/// pump; or reassign a pump that is paired to another patient.
///
/// Only "Prev" on the reassign page leads back to an earlier page. The dialog can be closed while no command runs. It
/// is Accepted if the pump is assigned and may be read. If the user cancels after the pairing, it is Rejected and the
/// pump is assigned nevertheless; PatientSession has the pump then.
class PumpAddDialog final : public PumpDialog, private Ui::PumpAddDialog
{
    Q_OBJECT
    Q_DISABLE_COPY_MOVE(PumpAddDialog)

public:
    static constexpr int PictureWidth = 200; ///< in pixels at 96 dpi

    PumpAddDialog(IServices* services, IDatabase* database, const QString& simulationPath, QWidget* parent);

    bool isCancelEnabled() const override { return hasEnabledCancel(*m_DialogButtonBox); }

private:
    enum Page { StartPage, OverviewPage, AssignPage, ConfirmPage, ReassignPage };

    void setAccessibleNames();
    void connectAll();

    void setPage(int index);
    void reloadPage();
    void onPageEntered(int index);
    void startPairing();

    void onOverviewButton();
    void onSearchProgress(const QString& serialNumber, int percentage);
    void stopSearch();
    void onAbortFinished(bool success);
    void onSearchResults(const QList<DeviceInfo>& devices);

    int selectedRow();
    void updateAssignButton(const QModelIndex& index);
    void onAssignButton();
    void onCodeReceived(const QString& confirmCode);
    void onConfirmButton();
    void onDeclineButton();
    void onDeclineFinished();
    void onPumpAssigned();
    void onWorkflowStopped();
    void onButtonClicked(QAbstractButton* button);
    void onReassignConfirmed();
    QString reassignQuestion(const DeviceInfo& device) const;

    void rejectAlways();
    void warnUser(const QString& text);

    AddPumpControl* m_control; ///< child of the dialog
};
