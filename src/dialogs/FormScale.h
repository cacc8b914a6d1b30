// SPDX-FileCopyrightText: 2026 The Merivo Connections developers
// SPDX-License-Identifier: MIT
#pragma once

#include <QString>

class QDialog;
class QLabel;
class QWidget;

// The sizes in the forms are in pixels for a screen of 96 dpi, and the fonts in points. On a screen of more dpi the
// fonts are larger, and the sizes are scaled by the same factor.

/// Returns the factor from the sizes in a form to those on the screen of @p widget. It is at least 1.
qreal formScale(const QWidget* widget);

/// Scales all sizes of the form of @p dialog, and enlarges the dialog if its texts need more space, for example with a
/// large font. The dialog remains within the screen, and fonts aren't changed. Called at the end of the dialog's
/// constructor.
void scaleForm(QDialog* dialog);

/// Returns the first @p length UTF-16 units of @p text and an ellipsis. Doesn't split a surrogate pair. @p length must
/// be positive and not greater than that of @p text.
QString elided(const QString& text, int length);

/// Shows a text of any length, such as a name or a path, without widening the layout. A text that doesn't fit is
/// shortened in the label and complete in its tool tip. If the label isn't visible yet, scaleForm() shortens the text.
void showForeignText(QLabel* label, const QString& text, int maxLines = 2);
