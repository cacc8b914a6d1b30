// SPDX-FileCopyrightText: 2026 The Merivo Connections developers
// SPDX-License-Identifier: MIT
#include "dialogs/PumpRemoveDialog.h"

#include "base/PatientSession.h"
#include "dialogs/DevicesModel.h"
#include "dialogs/DialogUtils.h"
#include "dialogs/FormScale.h"
#include "workflows/MessageBoxes.h"
#include "workflows/RemovePumpControl.h"

#include <QDebug>
#include <QPushButton>

PumpRemoveDialog::PumpRemoveDialog(IServices* services, IDatabase* database, const QString& simulationPath,
                                   QWidget* parent)
    : PumpDialog(services, database, parent)
    , m_control(new RemovePumpControl(this))
{
    setupUi(this);
    m_Header->fill(simulationPath);
    m_PumpsOverview->setAccessibleName(htmlToPlainText(m_PumpsListLabel->text()));

    m_DialogButtonBox->button(QDialogButtonBox::Ok)->setText(tr("Remove", "Description on the dialog accept button"));

    DeviceInfo device;
    device.serialNumber = PatientSession::instance()->pumpSerialNumber();
    device.deviceName = PatientSession::instance()->deviceName();
    m_PumpsOverview->setDevicesModel(new DevicesModel(device, m_PumpsOverview));
    m_PumpsOverview->setColumnHidden(DevicesModel::AssignedTo, true);
    onCurrentRowChanged(m_PumpsOverview->selectSingleRow());

    connect(m_PumpsOverview, &DevicesTable::clicked, this, &PumpRemoveDialog::onCurrentRowChanged);
    connect(m_DialogButtonBox, &QDialogButtonBox::clicked, this, &PumpRemoveDialog::onButtonClicked);
    connect(m_control, &RemovePumpControl::removingSucceeded, this, &PumpRemoveDialog::onRemovingSucceeded);
    connect(m_control, &RemovePumpControl::removingFinished, this, &PumpRemoveDialog::onRemovingFailed);
    scaleForm(this);
}

void PumpRemoveDialog::onCurrentRowChanged(const QModelIndex& index)
{
    qDebug().noquote() << QStringLiteral("Current row = '%1'").arg(index.row());
    m_DialogButtonBox->button(QDialogButtonBox::Ok)->setEnabled(index.row() >= 0);
}

void PumpRemoveDialog::onButtonClicked(QAbstractButton* button)
{
    if (m_DialogButtonBox->standardButton(button) == QDialogButtonBox::Ok)
        askAndRemove();
    else
        reject();
}

void PumpRemoveDialog::askAndRemove()
{
    if (rejectIfDiaryChanged())
        return;
    const PatientSession* session = PatientSession::instance();
    const QString question =
        tr("Are you sure to remove the pump <b>%1</b> from patient <b>%2</b>?")
            .arg(escapedForPrompt(session->pumpSerialNumber()), escapedForPrompt(session->patientName()));
    const QMessageBox::StandardButton answer =
        ask(tr("Merivo Connections", "Default message box title used within plugin questions."),
            question + QStringLiteral("<br/>") + m_NoteLabel->text());
    if (answer != QMessageBox::Yes || rejectIfDiaryChanged())
        return;

    m_DialogButtonBox->setEnabled(false);
    m_control->startRemoving();
}

void PumpRemoveDialog::onRemovingSucceeded()
{
    m_DialogButtonBox->setEnabled(true);
    accept();
}

void PumpRemoveDialog::onRemovingFailed()
{
    m_DialogButtonBox->setEnabled(true);
    reject();
}
