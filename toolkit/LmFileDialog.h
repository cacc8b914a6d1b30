// SPDX-FileCopyrightText: 2026 The Merivo Connections developers
// SPDX-License-Identifier: MIT
#pragma once

#include <QFileDialog>

/// The native file dialog of the platform, without a context help button. GUI thread only.
class LmFileDialog : public QFileDialog
{
    Q_OBJECT
    Q_DISABLE_COPY_MOVE(LmFileDialog)

public:
    LmFileDialog(QWidget* parent, Qt::WindowFlags flags);
    explicit LmFileDialog(QWidget* parent = nullptr, const QString& caption = QString(),
                          const QString& directory = QString(), const QString& filter = QString());

    /// Asks the user for a directory, starting in @p dir, and shows only directories. Blocks with a running event loop.
    /// Returns an empty text if the user cancels.
    static QString getExistingDirectory(QWidget* parent, const QString& caption, const QString& dir);

private:
    void setUp();
};
