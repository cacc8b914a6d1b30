// SPDX-FileCopyrightText: 2026 The Merivo Connections developers
// SPDX-License-Identifier: MIT
#pragma once

#include <QMessageBox>

// The two kinds of modal message box. Both run a nested event loop. The caller passes translated texts, because each
// class has its own translation of the title. GUI thread only.

/// Shows a warning with an OK button.
void warn(const QString& title, const QString& text, QWidget* parent = nullptr);

/// Shows a question with the buttons Yes and No and returns the button that was clicked.
QMessageBox::StandardButton ask(const QString& title, const QString& text);
