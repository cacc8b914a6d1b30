// SPDX-FileCopyrightText: 2026 The Merivo Connections developers
// SPDX-License-Identifier: MIT
#pragma once

#include "plugin/session/SessionWatch.h"

#include <QDialog>
#include <QMovie>

class IDatabase;
class IServices;
class QDialogButtonBox;
class QLabel;

/// Base of the dialogs that drive the reader: the host's interfaces, the busy animation, the end of a dialog whose
/// reader has stopped answering, and the rule that a dialog with its Cancel button off can't be closed by the user. A
/// dialog whose diary was closed or changed does nothing more for a patient and ends as Rejected.
class PumpDialog : public QDialog
{
    Q_OBJECT
    Q_DISABLE_COPY_MOVE(PumpDialog)

public:
    /// Services and database stay the host's. StatusFileParser must outlive the dialog.
    PumpDialog(IServices* services, IDatabase* database, QWidget* parent);

    /// Closes the dialog if isCancelEnabled(), otherwise does nothing.
    void reject() override;
    /// Closes the dialog as Accepted, or as Rejected if the diary was closed or changed.
    void accept() override;
    /// True if the dialog has a Cancel button and that button is enabled.
    virtual bool isCancelEnabled() const = 0;

Q_SIGNALS:
    /// The reader has stopped answering and the user has been told; the dialog closes as Rejected right after.
    void deviceReaderCritical();

protected:
    static bool hasEnabledCancel(const QDialogButtonBox& buttonBox);

    /// Closes the dialog as Rejected, also with Cancel disabled, if the diary was closed or changed since it opened.
    /// Returns true then. Called before each step for a patient and again after a question, during which the diary may
    /// have changed; the main dialog reports the end to the user.
    bool rejectIfDiaryChanged();
    bool hasDiaryChanged() const { return m_sessionWatch.hasDiaryChanged(); }

    /// Shows the image at @p path on @p label, @p width wide at 96 dpi, in the shape of the pixmap that the label has.
    /// A null label is ignored.
    void setWidthScaledPixmap(QLabel* label, const QString& path, int width);

    IServices* m_services;
    IDatabase* m_database;
    QMovie m_busyMovie; ///< on its first frame until started; one movie serves all labels of a dialog

private:
    void onDeviceReaderTimeout();

    SessionWatch m_sessionWatch;
};
