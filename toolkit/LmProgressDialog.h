// SPDX-FileCopyrightText: 2026 The Merivo Connections developers
// SPDX-License-Identifier: MIT
#pragma once

#include <QProgressDialog>

class LmProgressBar;

/// A QProgressDialog with a LmProgressBar and without a help button. GUI thread only.
class LmProgressDialog : public QProgressDialog
{
    Q_OBJECT
    Q_DISABLE_COPY_MOVE(LmProgressDialog)

public:
    /// @p format as LmProgressBar takes it; empty leaves the bar's own.
    explicit LmProgressDialog(const QString& format, QWidget* parent = nullptr);

private:
    LmProgressBar* m_bar = nullptr; ///< The dialog's child.
};
