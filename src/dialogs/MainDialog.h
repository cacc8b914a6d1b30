// SPDX-FileCopyrightText: 2026 The Merivo Connections developers
// SPDX-License-Identifier: MIT
#pragma once

#include "base/SessionWatch.h"
#include "ui_MainDialog.h"

#include <QDialog>
#include <QPixmap>
#include <QVector>

class IDatabase;
class IServices;

/// Shows the pump that is assigned to the open patient, and adds, reads or removes it.
///
/// Only the reader stores the assignment. When it opens, the dialog aborts a command that is still running from an
/// earlier run, and then asks for the pump. Until the first answer all buttons are disabled and the dialog can't be
/// closed; a time-out or an error of the reader closes it. It is also closed, at the next step, if the diary was closed
/// or another patient's was opened, because PatientSession then belongs to another patient.
/// CommandFileWriter and StatusFileParser must outlive the dialog.
class MainDialog final : public QDialog, private Ui::MainDialog
{
    Q_OBJECT
    Q_DISABLE_COPY_MOVE(MainDialog)

public:
    /// @p services and @p database are not owned. @p simulationPath is empty unless the reader is simulated.
    MainDialog(IServices* services, IDatabase* database, const QString& simulationPath, QWidget* parent);

    /// Loads the large pictures of the dialogs in short turns of the event loop, and stops when @p context is deleted.
    /// Without this call decoding them takes 20 ms in the first main dialog and 30 ms in the first add dialog. Adds the
    /// pixmaps to @p kept, since Qt's cache drops unused pixmaps. GUI thread only.
    static void loadPictures(QObject* context, QVector<QPixmap>* kept);

    /// Closes the dialog. Does nothing before the reader's first answer.
    void reject() override;

    /// Returns the text that the user sees when a run ends because the diary was closed or changed.
    static QString diaryChangedText();

Q_SIGNALS:
    /// Emitted when a read-out has yielded data, with the GUID of the open database. The path of the data is in
    /// PatientSession. The dialog closes right after.
    void importDataReady(QString dbGuid);

private:
    void prepareReader();
    void onPrepareFinished(bool success);
    void queryPairedPump();
    void onPairedPumpQueryFinished(bool success);
    void onPairedPumpQueryNotExecuted();
    void onDeviceReaderTimeout();
    void openAddDialog();
    void openReadDialog();
    void openRemoveDialog();
    void onImportDataReady();
    bool rejectIfDiaryChanged();
    void refresh();

    IServices* m_services;
    IDatabase* m_database;
    QString m_simulationPath;
    int m_queryCount = 0;
    bool m_pairedPumpKnown = false; ///< a query was answered
    SessionWatch m_sessionWatch;
    bool m_importedOrAborted = false;
};
