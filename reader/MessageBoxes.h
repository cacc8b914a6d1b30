// SPDX-FileCopyrightText: 2026 The Merivo Connections developers
// SPDX-License-Identifier: MIT
#pragma once

#include <QMessageBox>

// The two kinds of modal message box that the plug-in shows. Both block with a running event loop. The caller passes
// translated texts, since each class has its own translation of the title. GUI thread only.

/// Shows a warning with an OK button.
void warn(const QString& title, const QString& text, QWidget* parent = nullptr);

/// Shows a question with the buttons Yes and No and returns the one that was pressed.
QMessageBox::StandardButton ask(const QString& title, const QString& text);
