// SPDX-FileCopyrightText: 2026 The Merivo Connections developers
// SPDX-License-Identifier: MIT
#pragma once

#include <QProgressDialog>

class LmProgressBar;

/// A QProgressDialog with a LmProgressBar and without a context help button. GUI thread only.
class LmProgressDialog : public QProgressDialog
{
    Q_OBJECT
    Q_DISABLE_COPY_MOVE(LmProgressDialog)

public:
    /// @p format is that of the LmProgressBar. An empty one leaves its initial format.
    explicit LmProgressDialog(const QString& format, QWidget* parent = nullptr);

private:
    LmProgressBar* m_bar = nullptr; ///< Child of this.
};
