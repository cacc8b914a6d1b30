// SPDX-FileCopyrightText: 2026 The Merivo Connections developers
// SPDX-License-Identifier: MIT
#include "workflows/MessageBoxes.h"

#include "toolkit/LmMessageBox.h"

void warn(const QString& title, const QString& text, QWidget* parent)
{
    LmMessageBox(QMessageBox::Warning, title, text, QMessageBox::Ok, parent).exec();
}

QMessageBox::StandardButton ask(const QString& title, const QString& text)
{
    LmMessageBox box(QMessageBox::Question, title, text, QMessageBox::Yes | QMessageBox::No, nullptr);
    return QMessageBox::StandardButton(box.exec());
}
