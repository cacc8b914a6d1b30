// SPDX-FileCopyrightText: 2026 The Merivo Connections developers
// SPDX-License-Identifier: MIT
#pragma once

#include "base/SessionWatch.h"

#include <QDialog>
#include <QMovie>

class IDatabase;
class IServices;
class QDialogButtonBox;
class QLabel;

/// The base class of the dialogs that send commands to the reader: host interfaces, busy animation, and the handling of
/// time-outs. The user can't close a dialog while its Cancel button is disabled. A dialog whose diary was closed or
/// changed takes no further step for the patient and ends as Rejected.
class PumpDialog : public QDialog
{
    Q_OBJECT
    Q_DISABLE_COPY_MOVE(PumpDialog)

public:
    /// @p services and @p database are not owned. StatusFileParser must outlive the dialog.
    PumpDialog(IServices* services, IDatabase* database, QWidget* parent);

    /// Closes the dialog if isCancelEnabled(), otherwise does nothing.
    void reject() override;
    /// Closes the dialog as Accepted, or as Rejected if the diary was closed or changed.
    void accept() override;
    /// Returns true if the dialog has a Cancel button and that button is enabled.
    virtual bool isCancelEnabled() const = 0;

Q_SIGNALS:
    /// Emitted after the user was notified of a time-out; the dialog closes as Rejected right after.
    void deviceReaderCritical();

protected:
    static bool hasEnabledCancel(const QDialogButtonBox& buttonBox);

    /// If the diary was closed or changed since the dialog opened, closes it as Rejected, even if Cancel is disabled,
    /// and returns true. Call before each step that acts for the patient, and again after a question. The main dialog
    /// notifies the user.
    bool rejectIfDiaryChanged();
    bool hasDiaryChanged() const { return m_sessionWatch.hasDiaryChanged(); }

    /// Calls showScaledToWidth().
    void setWidthScaledPixmap(QLabel* label, const QString& path, int width);

    IServices* m_services;
    IDatabase* m_database;
    QMovie m_busyMovie; ///< used by all labels of a dialog

private:
    void onDeviceReaderTimeout();

    SessionWatch m_sessionWatch;
};
