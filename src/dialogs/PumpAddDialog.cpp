// SPDX-FileCopyrightText: 2026 The Merivo Connections developers
// SPDX-License-Identifier: MIT
#include "dialogs/PumpAddDialog.h"

#include "base/PatientSession.h"
#include "dialogs/CallLater.h"
#include "dialogs/DevicesModel.h"
#include "dialogs/DialogUtils.h"
#include "dialogs/FormScale.h"
#include "readerlink/CommandFileWriter.h"
#include "readerlink/PollingResult.h"
#include "workflows/AddPumpControl.h"
#include "workflows/MessageBoxes.h"

#include <QPushButton>

namespace {

constexpr int PauseAfterAbortMs = 3000;
constexpr int AbortTimeoutSec = 20;
constexpr int AbortStartTimeoutSec = 10;
constexpr int AbortDelayMs = 5; ///< before the first tick of the polling

} // namespace

PumpAddDialog::PumpAddDialog(IServices* services, IDatabase* database, const QString& simulationPath, QWidget* parent)
    : PumpDialog(services, database, parent)
    , m_control(new AddPumpControl(services, database, this))
{
    setupUi(this);
    m_Header->fill(simulationPath);
    setAccessibleNames();

    for (QLabel* label : {m_StartBusyLabel, m_AssignBusyLabel, m_ConfirmBusyLabel})
        label->setMovie(&m_busyMovie);
    // Set before the first layout, which depends on all pages.
    setWidthScaledPixmap(m_AssignGraphicLabel, QStringLiteral(":/img/Images/ConfirmCode.svg"), PictureWidth);
    setWidthScaledPixmap(m_ConfirmGraphicLabel, QStringLiteral(":/img/Images/PumpFinger.svg"), PictureWidth);
    setWidthScaledPixmap(m_ReassignGraphicLabel, QStringLiteral(":/img/Images/CancelOnPump.svg"), PictureWidth);
    m_OverviewButton->setEnabled(true);
    for (QPushButton* button : {m_AssignButton, m_ConfirmButton, m_DeclineButton})
        button->hide();
    connectAll();
    setPage(StartPage);
    scaleForm(this);
}

/// Names pictures, movies and the table for screen readers by the texts beside them.
void PumpAddDialog::setAccessibleNames()
{
    m_StartBusyLabel->setAccessibleName(htmlToPlainText(m_StartMessage2->text()));
    m_PumpsOverview->setAccessibleName(htmlToPlainText(m_OverviewMessage2->text()));
    m_AssignGraphicLabel->setAccessibleName(m_AssignMessage2->text());
    m_AssignBusyLabel->setAccessibleName(htmlToPlainText(m_AssignBusyMessage->text()));
    m_ConfirmGraphicLabel->setAccessibleName(m_ConfirmMessage->text());
    m_ConfirmBusyLabel->setAccessibleName(htmlToPlainText(m_ConfirmBusyMessage->text()));
    m_ReassignGraphicLabel->setAccessibleName(m_ReassignMessage->text());
}

void PumpAddDialog::connectAll()
{
    connect(m_PumpsOverview, &DevicesTable::clicked, this, &PumpAddDialog::updateAssignButton);
    connect(m_OverviewButton, &QPushButton::clicked, this, &PumpAddDialog::onOverviewButton);
    connect(m_AssignButton, &QPushButton::clicked, this, &PumpAddDialog::onAssignButton);
    connect(m_ConfirmButton, &QPushButton::clicked, this, &PumpAddDialog::onConfirmButton);
    connect(m_DeclineButton, &QPushButton::clicked, this, &PumpAddDialog::onDeclineButton);
    connect(m_DialogButtonBox, &QDialogButtonBox::clicked, this, &PumpAddDialog::onButtonClicked);
    connect(m_Pages, &QStackedWidget::currentChanged, this, &PumpAddDialog::onPageEntered);

    connect(m_control, &AddPumpControl::pairingSearchResults, this, &PumpAddDialog::onSearchResults);
    connect(m_control, &AddPumpControl::pairingSearchProgress, this, &PumpAddDialog::onSearchProgress);
    connect(m_control, &AddPumpControl::pairingCodeReceived, this, &PumpAddDialog::onCodeReceived);
    connect(m_control, &AddPumpControl::pumpAssigned, this, &PumpAddDialog::onPumpAssigned);
    connect(m_control, &AddPumpControl::pairingDeclineFinished, this, &PumpAddDialog::onDeclineFinished);
    for (const auto stopped : {&AddPumpControl::pairingSearchStopped, &AddPumpControl::pairingProcessStopped,
                               &AddPumpControl::pairingConfirmStopped, &AddPumpControl::reassignStopped})
        connect(m_control, stopped, this, &PumpAddDialog::onWorkflowStopped);
}

/// Only this function changes the page.
void PumpAddDialog::setPage(int index)
{
    setUpdatesEnabled(false);
    m_OverviewButton->setVisible(index == StartPage || index == ReassignPage);
    m_OverviewButton->setEnabled(true);
    m_AssignButton->setVisible(index == OverviewPage);
    m_AssignButton->setEnabled(false);
    for (QPushButton* button : {m_ConfirmButton, m_DeclineButton}) {
        button->setVisible(index == AssignPage);
        button->setEnabled(false);
    }

    QDialogButtonBox::StandardButtons buttons = QDialogButtonBox::Cancel;
    switch (index) {
    case StartPage:
        m_OverviewButton->setText(
            tr("Search", "Button description within 'Start' page to search and open the 'Overview' page"));
        break;
    case AssignPage:
        m_busyMovie.stop();
        m_AssignBusyLabel->show();
        m_AssignBusyMessage->show();
        m_AssignPairingCode->hide();
        m_AssignMessage2->hide();
        break;
    case ConfirmPage:
        m_busyMovie.stop();
        buttons |= QDialogButtonBox::Ok;
        break;
    case ReassignPage:
        m_OverviewButton->setText(tr("Prev", "Button description within 'Reassign' page to open the 'Overview' page"));
        buttons |= QDialogButtonBox::Ok;
        break;
    default:
        break;
    }
    // Enabled first: buttons that are created in a disabled button box have no name for screen readers.
    m_DialogButtonBox->setEnabled(true);
    m_DialogButtonBox->setStandardButtons(buttons);
    m_DialogButtonBox->show();

    m_Pages->setCurrentIndex(index);
    setUpdatesEnabled(true);
}

/// Resets the state of the current page.
void PumpAddDialog::reloadPage()
{
    setPage(m_Pages->currentIndex());
    onPageEntered(m_Pages->currentIndex());
}

void PumpAddDialog::onPageEntered(int index)
{
    switch (index) {
    case OverviewPage: {
        const QModelIndex single = m_PumpsOverview->selectSingleRow();
        if (single.isValid())
            updateAssignButton(single);
        break;
    }
    case AssignPage:
        m_busyMovie.start();
        m_DialogButtonBox->setEnabled(false);
        startPairing();
        break;
    case ConfirmPage:
        m_busyMovie.start();
        m_DialogButtonBox->setEnabled(false);
        m_control->startPairingConfirm(true);
        break;
    default:
        break;
    }
}

void PumpAddDialog::startPairing()
{
    const int row = selectedRow();
    if (row < 0)
        rejectAlways();
    else if (!rejectIfDiaryChanged())
        m_control->startPairing(row);
}

void PumpAddDialog::onOverviewButton()
{
    const int page = m_Pages->currentIndex();
    if (page == ReassignPage) {
        setPage(OverviewPage);
        return;
    }
    if (page != StartPage)
        return;

    // The action depends on the polling and not on the button's text: during a polling, even one that was started
    // before this dialog, a search would be a second command.
    if (StatusFileParser::instance()->m_state != StatusFileParser::Ended) {
        m_OverviewButton->setEnabled(false);
        stopSearch();
        return;
    }
    m_busyMovie.start();
    m_OverviewButton->setEnabled(false);
    m_DialogButtonBox->setEnabled(false);
    m_control->startPairingSearch();
}

void PumpAddDialog::onSearchProgress(const QString&, int percentage)
{
    if (percentage == 100) {
        m_OverviewButton->setEnabled(false);
    } else if (percentage > 0 && !m_OverviewButton->isEnabled()) {
        m_OverviewButton->setText(tr("Stop", "Button description within 'Start' page to stop the search"));
        m_OverviewButton->setEnabled(true);
    }
}

void PumpAddDialog::stopSearch()
{
    m_DialogButtonBox->setEnabled(false);
    // Progress that is already queued must not enable "Stop" again.
    disconnect(m_control, &AddPumpControl::pairingSearchProgress, this, &PumpAddDialog::onSearchProgress);
    StatusFileParser::instance()->cancel();
    CommandFileWriter::instance()->abort();
    callLater(PauseAfterAbortMs, this, [this] {
        connectFinished(this, &PumpAddDialog::onAbortFinished);
        StatusFileParser::instance()->start(AbortTimeoutSec, AbortStartTimeoutSec, AbortDelayMs);
    });
}

void PumpAddDialog::onAbortFinished(bool success)
{
    m_busyMovie.stop();
    takeResult(this, &PumpAddDialog::onAbortFinished);
    connect(m_control, &AddPumpControl::pairingSearchProgress, this, &PumpAddDialog::onSearchProgress);
    if (!success)
        warnUser(tr("Something is wrong with the devicereader. Please reconnect it to the PC."));
    if (m_Pages->currentIndex() == StartPage)
        reloadPage();
    else
        rejectAlways();
}

void PumpAddDialog::onSearchResults(const QList<DeviceInfo>& devices)
{
    m_busyMovie.stop();
    if (devices.isEmpty()) {
        warnUser(tr("No device was found."));
        reloadPage();
        return;
    }
    m_PumpsOverview->setDevicesModel(new DevicesModel(devices, m_PumpsOverview));
    setPage(OverviewPage);
}

/// Returns the row that the user selected. If there is none, shows a warning and returns -1.
int PumpAddDialog::selectedRow()
{
    const QModelIndexList indexes = m_PumpsOverview->selectedIndexes();
    // Compared with the number of selected cells, not of rows, so that with one selected row of three columns only the
    // first three rows are accepted. Kept deliberately.
    if (!indexes.isEmpty() && indexes.first().row() < indexes.size())
        return indexes.first().row();
    warnUser(tr("No device selected."));
    return -1;
}

void PumpAddDialog::updateAssignButton(const QModelIndex& index)
{
    const bool isAssignedToOther = m_PumpsOverview->devicesModel()->isAssignedToOther(index.row());
    m_AssignButton->setText(isAssignedToOther ? tr("Reassign") : tr("Assign"));
    m_AssignButton->setEnabled(true);
}

void PumpAddDialog::onAssignButton()
{
    setPage(m_PumpsOverview->currentIsAssignedToOther() ? ReassignPage : AssignPage);
}

/// The button box remains disabled: only "Confirm" and "Decline" are available.
void PumpAddDialog::onCodeReceived(const QString& confirmCode)
{
    setUpdatesEnabled(false);
    m_AssignPairingCode->show();
    showForeignText(m_AssignPairingCode, confirmCode);
    m_AssignMessage2->show();
    m_AssignBusyLabel->hide();
    m_AssignBusyMessage->hide();
    m_ConfirmButton->setEnabled(true);
    m_DeclineButton->setEnabled(true);
    setUpdatesEnabled(true);
}

/// Declines a pairing for a patient whose diary is no longer open, so that reader and pump don't remain in
/// the pairing.
void PumpAddDialog::onConfirmButton()
{
    if (hasDiaryChanged())
        onDeclineButton();
    else
        setPage(ConfirmPage);
}

/// Sends the decline even if the diary has changed, since it doesn't refer to a patient.
void PumpAddDialog::onDeclineButton()
{
    m_busyMovie.start();
    m_ConfirmButton->setEnabled(false);
    m_DeclineButton->setEnabled(false);
    m_control->startPairingConfirm(false);
}

void PumpAddDialog::onDeclineFinished()
{
    if (m_Pages->currentIndex() == AssignPage)
        closeAsRejected(this);
}

void PumpAddDialog::onPumpAssigned()
{
    switch (m_Pages->currentIndex()) {
    case ReassignPage:
        accept();
        break;
    case ConfirmPage:
        // The pump is assigned now. The user finishes on the pump and clicks OK, or cancels.
        setUpdatesEnabled(false);
        m_busyMovie.stop();
        m_ConfirmBusyLabel->hide();
        m_ConfirmBusyMessage->hide();
        m_DialogButtonBox->setEnabled(true);
        setUpdatesEnabled(true);
        break;
    default:
        break;
    }
}

void PumpAddDialog::onWorkflowStopped()
{
    rejectAlways();
}

void PumpAddDialog::onButtonClicked(QAbstractButton* button)
{
    m_DialogButtonBox->setEnabled(false);
    switch (m_DialogButtonBox->standardButton(button)) {
    case QDialogButtonBox::Cancel:
        rejectAlways();
        break;
    case QDialogButtonBox::Abort: // on no page at present; "Stop" is a button of its own
        stopSearch();
        break;
    case QDialogButtonBox::Ok:
        if (m_Pages->currentIndex() == ReassignPage)
            onReassignConfirmed();
        else if (m_Pages->currentIndex() == ConfirmPage)
            accept();
        break;
    default:
        reject();
    }
}

void PumpAddDialog::onReassignConfirmed()
{
    const int row = selectedRow();
    if (row < 0) {
        rejectAlways();
        return;
    }
    if (rejectIfDiaryChanged())
        return;

    const DeviceInfo device = m_PumpsOverview->devicesModel()->deviceAt(row);
    const QMessageBox::StandardButton answer = ask(
        tr("Merivo Connections", "Default message box title used within plugin questions."), reassignQuestion(device));
    // After "No" the button box remains disabled; only "Prev" is available.
    if (answer == QMessageBox::No || rejectIfDiaryChanged())
        return;

    m_OverviewButton->setEnabled(false);
    m_DialogButtonBox->setEnabled(false);
    m_control->startReassign(row);
}

QString PumpAddDialog::reassignQuestion(const DeviceInfo& device) const
{
    // One call of arg() for all: "%3" in a name must not be replaced.
    const QString oldPatient = PatientSession::patientName(PatientSession::patientIdsOf(device.patientId));
    const QString question =
        tr("Are you sure to reassign the pump <b>%1</b> from patient <b>'%2'</b> to patient <b>'%3'</b>?")
            .arg(escapedForPrompt(device.serialNumber), escapedForPrompt(oldPatient),
                 escapedForPrompt(PatientSession::instance()->patientName()));
    return question + QStringLiteral("<br/>") +
           tr("<b>Note:</b><br/><i>The data that was downloaded from the pump remains in the patient record.</b>");
}

/// Closes the dialog as Rejected, even if its button box is disabled.
void PumpAddDialog::rejectAlways()
{
    m_DialogButtonBox->setEnabled(true);
    reject();
}

void PumpAddDialog::warnUser(const QString& text)
{
    warn(tr("Merivo Connections", "Default message box title used within plugin warnings."), text);
}
