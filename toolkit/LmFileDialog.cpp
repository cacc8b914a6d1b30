// SPDX-FileCopyrightText: 2026 The Merivo Connections developers
// SPDX-License-Identifier: MIT
#include "toolkit/LmFileDialog.h"

#include "toolkit/LmWidgets.h"

LmFileDialog::LmFileDialog(QWidget* parent, Qt::WindowFlags flags)
    : QFileDialog(parent, flags)
{
    setUp();
}

LmFileDialog::LmFileDialog(QWidget* parent, const QString& caption, const QString& directory, const QString& filter)
    : QFileDialog(parent, caption, directory, filter)
{
    setUp();
}

void LmFileDialog::setUp()
{
    setOption(QFileDialog::DontUseNativeDialog, false);
    lmRemoveHelpButton(this);
}

QString LmFileDialog::getExistingDirectory(QWidget* parent, const QString& caption, const QString& dir)
{
    // Never shown; only provides the options.
    LmFileDialog dialog(parent, caption, dir, QString());
    // With ShowDirsOnly, the replacement for the obsolete mode DirectoryOnly.
    dialog.setFileMode(QFileDialog::Directory);
    dialog.setOption(QFileDialog::ShowDirsOnly, true);
    dialog.setOption(QFileDialog::HideNameFilterDetails, true);
    return QFileDialog::getExistingDirectory(parent, caption, dir, dialog.options());
}
