// SPDX-FileCopyrightText: 2026 The Merivo Connections developers
// SPDX-License-Identifier: MIT
#include "dialogs/PumpReadDialog.h"

#include "base/PatientSession.h"
#include "dialogs/CallLater.h"
#include "dialogs/FormScale.h"
#include "readerlink/StatusFileParser.h"
#include "workflows/MessageBoxes.h"
#include "workflows/ReadoutPumpControl.h"

namespace {

constexpr int StartDelayMs = 2600;
constexpr int ResultShownMs = 2000;
constexpr int ResultWidth = 50;

} // namespace

PumpReadDialog::PumpReadDialog(IServices* services, IDatabase* database, const QString& simulationPath, QWidget* parent)
    : PumpDialog(services, database, parent)
    , m_control(new ReadoutPumpControl(this))
{
    setupUi(this);
    m_Header->fill(simulationPath);

    setWidthScaledPixmap(m_ResultLabel, QStringLiteral(":/img/Images/result_succeeded.svg"), ResultWidth);
    m_ResultLabel->hide();
    m_BusyLabel->setMovie(&m_busyMovie);
    m_ReadButton->hide();

    callLater(StartDelayMs, this, &PumpReadDialog::startRead);
    setMessage(tr("Looking for pump %1").arg(PatientSession::instance()->pumpSerialNumber()));
    // Keeps the text of an Ok button, which the form hasn't at present, in the catalogue.
    tr("Import", "Button description of the 'OK' button");

    connect(m_ReadButton, &QPushButton::clicked, this, &PumpReadDialog::startRead);
    connect(m_DialogButtonBox, &QDialogButtonBox::clicked, this, &PumpReadDialog::onButtonClicked);
    connect(m_control, &ReadoutPumpControl::readoutProgress, this, &PumpReadDialog::onProgress, Qt::QueuedConnection);
    connect(m_control, &ReadoutPumpControl::readoutSucceeded, this, &PumpReadDialog::onReadoutSucceeded,
            Qt::QueuedConnection);
    connect(m_control, &ReadoutPumpControl::readoutFinished, this, &PumpReadDialog::onReadoutFailed,
            Qt::QueuedConnection);
    scaleForm(this);
}

void PumpReadDialog::startRead()
{
    if (rejectIfDiaryChanged())
        return;
    setUpdatesEnabled(false);
    m_busyMovie.start();
    m_ReadButton->setEnabled(false);
    m_DialogButtonBox->button(QDialogButtonBox::Cancel)->setEnabled(false);
    setUpdatesEnabled(true);

    m_control->startReadout(PatientSession::instance()->pumpSerialNumber());
}

void PumpReadDialog::onProgress(const QString& serialNumber, int percentage)
{
    setMessage(tr("Read out device pump %1").arg(serialNumber));
    m_ProgressBar->setValue(percentage);
    m_ProgressLabel->setText(tr("Read out running ..."));
}

void PumpReadDialog::onReadoutSucceeded()
{
    setUpdatesEnabled(false);
    m_busyMovie.stop();
    m_BusyLabel->hide();
    m_ResultLabel->show();
    m_ProgressLabel->setText(tr("Read out completed!"));
    m_ResultLabel->setAccessibleName(m_ProgressLabel->text());
    setUpdatesEnabled(true);

    callLater(ResultShownMs, this, &PumpReadDialog::acceptData);
}

void PumpReadDialog::onReadoutFailed()
{
    setUpdatesEnabled(false);
    m_busyMovie.stop();
    m_ReadButton->show();
    m_ReadButton->setEnabled(true);
    m_ProgressLabel->setText(tr("Read out failed!"));
    m_DialogButtonBox->button(QDialogButtonBox::Cancel)->setEnabled(true);
    setUpdatesEnabled(true);
}

void PumpReadDialog::onButtonClicked(QAbstractButton* button)
{
    switch (m_DialogButtonBox->standardButton(button)) {
    case QDialogButtonBox::Ok:
        acceptData();
        break;
    case QDialogButtonBox::Abort:
        discardData();
        break;
    default:
        reject();
    }
}

void PumpReadDialog::acceptData()
{
    if (rejectIfDiaryChanged())
        return;
    Q_EMIT importDataReady();
    done(Accepted); // not accept(): the host may have closed or changed the diary on receiving the data
}

void PumpReadDialog::discardData()
{
    if (StatusFileParser::instance()->m_state != StatusFileParser::Ended) {
        const QString question = tr("<b>NOTE:</b><br/><i>The data recently read from the <b>Sanvio Merivo</b> pump "
                                    "<b>%1</b> will be discarded!</i><br/>Do you want to proceed anyway?")
                                     .arg(PatientSession::instance()->pumpSerialNumber());
        if (ask(tr("Merivo Connections", "Default message box title used within plugin questions."), question) !=
            QMessageBox::Yes)
            return;
    }
    reject();
}

void PumpReadDialog::setMessage(const QString& text)
{
    showForeignText(m_MessageLabel, text);
    m_ProgressBar->setAccessibleName(text);
}
