// SPDX-FileCopyrightText: 2026 The Merivo Connections developers
// SPDX-License-Identifier: MIT
#include "dialogs/MainDialog.h"

#include "base/Logger.h"
#include "base/PatientSession.h"
#include "dialogs/CallLater.h"
#include "dialogs/DialogUtils.h"
#include "dialogs/FormScale.h"
#include "dialogs/PumpAddDialog.h"
#include "dialogs/PumpReadDialog.h"
#include "dialogs/PumpRemoveDialog.h"
#include "hostapi/IDatabase.h"
#include "hostapi/IServices.h"
#include "readerlink/CommandFileWriter.h"
#include "readerlink/PollingResult.h"
#include "toolkit/LmIcons.h"
#include "toolkit/LmWidgets.h"
#include "workflows/ErrorHandler.h"
#include "workflows/MessageBoxes.h"

namespace {

constexpr int AbortTimeoutSec = 20;
constexpr int QueryTimeoutSec = 20;
constexpr int PauseAfterAbortMs = 2000;
constexpr int PictureWidth = 100;
constexpr int LoadIntervalMs = 20; ///< between two turns of loadPictures()
const QString PumpPicture = QStringLiteral(":/img/Images/Cygnara.svg");
const QString ReaderPicture = QStringLiteral(":/img/Images/DeviceReader.svg");
constexpr QSize StateIconSize{32, 32};
/// A shorter answer to the paired pump query, such as "0", means that there is no pump.
constexpr int MinSerialNumberLength = 3;

} // namespace

MainDialog::MainDialog(IServices* services, IDatabase* database, const QString& simulationPath, QWidget* parent)
    : QDialog(parent)
    , m_services(services)
    , m_database(database)
    , m_simulationPath(simulationPath)
{
    setupUi(this);
    lmRemoveHelpButton(this);

    m_Header->hideTitle();
    // Logged as a failure, though nothing failed: a log without a real reader must be noticed.
    if (!m_simulationPath.isEmpty())
        logFailure(QStringLiteral("Device reader simulation used."), m_simulationPath);
    m_Header->fill(m_simulationPath);

    showScaledToWidth(m_GraphicLabel1, PumpPicture, PictureWidth);
    showScaledToWidth(m_GraphicLabel3, ReaderPicture, PictureWidth);
    m_GraphicLabel2->setPixmap(
        lmIcon(QStringLiteral(":/img/Images/icon_help_grey_dark.svg")).pixmap(StateIconSize * formScale(this)));

    // The form would create new icons for each run, and Qt's pixmap cache, which the host uses too, would fill with
    // pixmaps of deleted icons.
    m_addPumpButton->setIcon(lmIcon(QStringLiteral(":/img/Images/icon_plus_grey_dark.svg")));
    m_readPumpButton->setIcon(lmIcon(QStringLiteral(":/img/Images/icon_data_download_grey_dark.svg")));
    m_removePumpButton->setIcon(lmIcon(QStringLiteral(":/img/Images/icon_minus_grey_dark.svg")));

    // The pictures must not move when the label is shown.
    QSizePolicy policy = m_pumpAssignLabel->sizePolicy();
    policy.setRetainSizeWhenHidden(true);
    m_pumpAssignLabel->setSizePolicy(policy);

    connect(m_addPumpButton, &QPushButton::clicked, this, &MainDialog::openAddDialog);
    connect(m_readPumpButton, &QPushButton::clicked, this, &MainDialog::openReadDialog);
    connect(m_removePumpButton, &QPushButton::clicked, this, &MainDialog::openRemoveDialog);
    connect(m_DialogButtonBox, &QDialogButtonBox::clicked, this, &MainDialog::reject);
    connect(StatusFileParser::instance(), &StatusFileParser::timeout, this, &MainDialog::onDeviceReaderTimeout,
            Qt::QueuedConnection);

    refresh();
    prepareReader();

    // Reserves space for the longest usual text, which replaces this one when the reader answers.
    m_pumpAssignLabel->setText(tr("Pump assigned: S/N '%1'.").arg(QString(16, '0')));
    scaleForm(this);
    m_pumpAssignLabel->clear();
}

void MainDialog::loadPictures(QObject* context, QVector<QPixmap>* kept)
{
    const QPair<QString, int> pictures[] = {
        {PumpPicture, PictureWidth},
        {ReaderPicture, PictureWidth},
        {QStringLiteral(":/img/Images/ConfirmCode.svg"), PumpAddDialog::PictureWidth},
        {QStringLiteral(":/img/Images/PumpFinger.svg"), PumpAddDialog::PictureWidth},
        {QStringLiteral(":/img/Images/CancelOnPump.svg"), PumpAddDialog::PictureWidth},
    };
    int delay = 0;
    for (const auto& [path, width] : pictures) {
        // Two turns for each picture, as both take time: loading the icon decodes the picture three times, and the two
        // pixmaps decode it once each.
        callLater(delay += LoadIntervalMs, context, [path = path] { lmIcon(path); });
        callLater(delay += LoadIntervalMs, context, [path = path, width = width, kept] {
            QLabel label;
            kept->append(QPixmap(path)); // the form loads it too
            label.setPixmap(kept->last());
            showScaledToWidth(&label, path, width);
            kept->append(label.pixmap(Qt::ReturnByValue));
        });
    }
}

void MainDialog::prepareReader()
{
    StatusFileParser* parser = StatusFileParser::instance();
    const StatusRecord record = parser->readStatus();
    logTrace(QStringLiteral("=?= <%1> status at open.").arg(record.toLogText()));
    if (record.status != CommandStatus::Running) {
        queryPairedPump();
        return;
    }

    CommandFileWriter::instance()->abort();
    connectFinished(this, &MainDialog::onPrepareFinished);
    parser->start(AbortTimeoutSec, 0, 0);
}

void MainDialog::onPrepareFinished(bool success)
{
    const CommandStatus status = takeResult(this, &MainDialog::onPrepareFinished).status;

    if (!success)
        logFailure(QStringLiteral("=!= [Main dialog] Prepare (abort old running) failed: not executed."));
    else if (status == CommandStatus::Done)
        logTrace(QStringLiteral("==> [Main dialog] Prepare (abort old running) succeeded."));
    else
        logFailure(
            QStringLiteral("=!= [Main dialog] Prepare (abort old running) failed: status='%1'.").arg(int(status)));

    // The query follows a failed abort too.
    callLater(PauseAfterAbortMs, this, &MainDialog::queryPairedPump);
}

void MainDialog::queryPairedPump()
{
    if (rejectIfDiaryChanged())
        return;
    connectFinished(this, &MainDialog::onPairedPumpQueryFinished);
    PatientSession::instance()->setPump({}, {});
    CommandFileWriter::instance()->isPaired(PatientSession::instance()->patientId());
    ++m_queryCount;
    StatusFileParser::instance()->start(QueryTimeoutSec, 0, 0);
    refresh();
}

void MainDialog::onPairedPumpQueryFinished(bool success)
{
    // After the first answer only the pump dialogs handle time-outs.
    disconnect(StatusFileParser::instance(), &StatusFileParser::timeout, this, &MainDialog::onDeviceReaderTimeout);
    const StatusRecord record = takeResult(this, &MainDialog::onPairedPumpQueryFinished);
    if (rejectIfDiaryChanged())
        return;

    if (!success) {
        onPairedPumpQueryNotExecuted();
        return;
    }

    const QString patientId = PatientSession::instance()->patientId();
    if (record.status == CommandStatus::Failed) {
        logFailure(QStringLiteral("=!= Paired pump query for patient '%1' failed: <%2 : %3>.")
                       .arg(patientId, QString::number(record.error), record.result));
        ErrorHandler::showError(record.error);
        if (rejectIfDiaryChanged())
            return;
        closeAsRejected(this); // no return: the rest is executed too
    }

    m_pairedPumpKnown = true;
    const QString serialNumber = record.result.size() >= MinSerialNumberLength ? record.result : QString();
    PatientSession::instance()->setPumpSerialNumber(serialNumber);
    logTrace(QStringLiteral("=== Paired pump query for patient '%2' finished: snr='%1'.").arg(serialNumber, patientId));
    refresh();
}

void MainDialog::onPairedPumpQueryNotExecuted()
{
    logFailure(QStringLiteral("=!= %0. Paired pump query for patient '%1' not executed by device reader.")
                   .arg(QString::number(m_queryCount), PatientSession::instance()->patientId()));
    if (m_queryCount > 1) {
        const QString text = tr("<b>Request of patient assigned paired pump failed.</b>") + QStringLiteral("<br/>") +
                             tr("Do you want to retry the request?");
        if (ask(tr("Merivo Connections", "Message box title used in communication error/warning messages"), text) !=
            QMessageBox::Yes)
            closeAsRejected(this);
    }
    // The command is sent after "No" too, while the dialog closes.
    queryPairedPump();
}

void MainDialog::onDeviceReaderTimeout()
{
    warn(tr("Merivo Connections", "Default message box title used within plugin warnings."),
         tr("Something is wrong with the devicereader. Please reconnect it to the PC."));
    closeAsRejected(this);
}

void MainDialog::openAddDialog()
{
    if (rejectIfDiaryChanged())
        return;
    int result = QDialog::Rejected;
    {
        // Destroyed before the read dialog opens; otherwise both would report a time-out.
        PumpAddDialog dialog(m_services, m_database, m_simulationPath, nullptr);
        result = dialog.exec();
    }
    if (rejectIfDiaryChanged())
        return;
    refresh();
    if (result == QDialog::Accepted)
        openReadDialog();
}

void MainDialog::openReadDialog()
{
    if (rejectIfDiaryChanged())
        return;
    PumpReadDialog dialog(m_services, m_database, m_simulationPath, nullptr);
    connect(&dialog, &PumpReadDialog::importDataReady, this, &MainDialog::onImportDataReady);
    connect(&dialog, &PumpReadDialog::deviceReaderCritical, this, &MainDialog::reject, Qt::QueuedConnection);
    dialog.exec();
    if (!rejectIfDiaryChanged())
        refresh();
}

void MainDialog::openRemoveDialog()
{
    if (rejectIfDiaryChanged())
        return;
    PumpRemoveDialog dialog(m_services, m_database, m_simulationPath, nullptr);
    const int result = dialog.exec();
    if (rejectIfDiaryChanged())
        return;
    refresh();
    if (result == QDialog::Accepted) {
        PatientSession::instance()->setPump({}, {});
        refresh();
    }
}

void MainDialog::onImportDataReady()
{
    if (rejectIfDiaryChanged())
        return;
    // Set before the host gets the data: it may then close or change the diary.
    m_importedOrAborted = true;
    const QString guid = m_database->databaseGuid(m_services->path(IServices::DatabasePath));
    Q_EMIT importDataReady(guid);
    reject();
}

/// If the diary was closed or changed, closes the dialog, reports that once, and returns true.
bool MainDialog::rejectIfDiaryChanged()
{
    if (!m_sessionWatch.hasDiaryChanged())
        return false;
    if (!m_importedOrAborted) {
        m_importedOrAborted = true; // before the message box: the reader may answer while it is open
        // The session no longer belongs to this run's patient, but may have its results.
        PatientSession::instance()->setPump({}, {});
        PatientSession::instance()->setExchangeFilePath({});
        logFailure(QStringLiteral("=!= [Main dialog] Diary closed or changed, run ended."));
        warn(tr("Merivo Connections", "Default message box title used within plugin warnings."), diaryChangedText());
        closeAsRejected(this);
    }
    return true;
}

QString MainDialog::diaryChangedText()
{
    // Not in the catalogue, so not translated.
    return QStringLiteral("The patient's diary was closed or changed. Nothing was imported. Please open the diary and "
                          "start the plugin again.");
}

void MainDialog::refresh()
{
    const QString serialNumber = PatientSession::instance()->pumpSerialNumber();
    const bool hasPump = m_pairedPumpKnown && !serialNumber.isEmpty();

    setUpdatesEnabled(false);
    m_addPumpButton->setEnabled(m_pairedPumpKnown && !hasPump);
    m_readPumpButton->setEnabled(hasPump);
    m_removePumpButton->setEnabled(hasPump);
    m_DialogButtonBox->setEnabled(m_pairedPumpKnown);
    m_pumpAssignLabel->setVisible(m_pairedPumpKnown);
    if (m_pairedPumpKnown) {
        const QString text = hasPump ? tr("Pump assigned: S/N '%1'.").arg(serialNumber) : tr("No pump assigned");
        showForeignText(m_pumpAssignLabel, text);
        m_GraphicLabel2->setAccessibleName(text);
    }
    const QString image = hasPump ? QStringLiteral(":/img/Images/icon_connected.svg")
                                  : QStringLiteral(":/img/Images/icon_plus_grey_dark.svg");
    m_GraphicLabel2->setPixmap(lmIcon(image).pixmap(StateIconSize * formScale(this)));
    setUpdatesEnabled(true);
}

void MainDialog::reject()
{
    if (m_pairedPumpKnown)
        QDialog::reject();
}
