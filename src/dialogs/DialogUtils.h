// SPDX-FileCopyrightText: 2026 The Merivo Connections developers
// SPDX-License-Identifier: MIT
#pragma once

#include <QString>

class QDialog;
class QLabel;

/// Returns @p text, such as a name, escaped for a message box with markup, so that "<" in it can't change the question.
/// A text longer than any real one is shortened, so that the message box fits on the screen.
QString escapedForPrompt(const QString& text);

/// Returns the text of @p html in one line, for screen readers.
QString htmlToPlainText(const QString& html);

/// Shows the image at @p path on @p label, with @p width in pixels at 96 dpi and the aspect ratio of the label's
/// present pixmap. Does nothing if @p label is null.
void showScaledToWidth(QLabel* label, const QString& path, int width);

/// Closes @p dialog as Rejected without calling its reject(), which does nothing in some states. Nothing else bypasses
/// reject().
void closeAsRejected(QDialog* dialog);
