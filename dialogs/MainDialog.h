// SPDX-FileCopyrightText: 2026 The Merivo Connections developers
// SPDX-License-Identifier: MIT
#pragma once

#include "plugin/session/SessionWatch.h"
#include "ui_MainDialog.h"

#include <QDialog>
#include <QPixmap>
#include <QVector>

class IDatabase;
class IServices;

/// What the user sees of the plug-in for the open patient: which pump the reader holds for the patient, and the three
/// actions on it.
///
/// Only the reader knows that pump, so on opening the dialog aborts a command that an earlier run left behind and then
/// asks for it. Until the first answer all actions are off and the dialog can't be closed; a reader that stays silent
/// until then, or answers with an error, ends the dialog. So does, at the next step, a diary that is closed or
/// replaced by another patient's: what is put into PatientSession then isn't that patient's. CommandFileWriter and
/// StatusFileParser must outlive it.
class MainDialog final : public QDialog, private Ui::MainDialog
{
    Q_OBJECT
    Q_DISABLE_COPY_MOVE(MainDialog)

public:
    /// Services and database stay the host's. A simulation path that isn't empty is shown to the user.
    MainDialog(IServices* services, IDatabase* database, const QString& simulationPath, QWidget* parent);

    /// Loads the large pictures of the dialogs in short turns of the event loop, and stops when @p context is deleted.
    /// Without this call the constructor of the first main dialog takes 20 ms to decode its pictures, and that of the
    /// first add dialog 30 ms. Adds their pixmaps to @p kept, since Qt's cache drops pixmaps that nothing refers to.
    /// GUI thread only.
    static void loadPictures(QObject* context, QVector<QPixmap>* kept);

    /// Closes the dialog once the patient's pump is known; does nothing before.
    void reject() override;

    /// Returns the text for the user of a run that ended because its diary was closed or changed.
    static QString diaryChangedText();

Q_SIGNALS:
    /// A read-out has ended with data, whose path is in PatientSession; the dialog closes right after. Carries the GUID
    /// of the open database.
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
    int m_queryCount = 0;           ///< paired pump queries started
    bool m_pairedPumpKnown = false; ///< false until a query has had an answer, then true for good
    SessionWatch m_sessionWatch;
    bool m_importedOrAborted = false; ///< the data were handed over, or the end of the diary was reported
};
