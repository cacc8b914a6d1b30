// SPDX-FileCopyrightText: 2026 The Merivo Connections developers
// SPDX-License-Identifier: MIT
#pragma once

#include <QString>

class QDialog;
class QLabel;

/// A number or name as it goes into a question with markup: shown as it stands, so that one with "<" in it doesn't
/// change what is asked, and cut where it is longer than any real one, so that the box fits on the screen.
QString escapedForPrompt(const QString& text);

/// What a screen reader says for a label's text with markup, in one line.
QString htmlToPlainText(const QString& text);

/// Shows the image at @p path on @p label, @p width wide at 96 dpi, in the shape of the pixmap that the label has. A
/// null label is ignored.
void showScaledToWidth(QLabel* label, const QString& path, int width);

/// Closes @p dialog as Rejected without calling its reject(), which does nothing in some states. Nothing else bypasses
/// reject().
void closeAsRejected(QDialog* dialog);
