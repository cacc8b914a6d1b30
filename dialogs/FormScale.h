// SPDX-FileCopyrightText: 2026 The Merivo Connections developers
// SPDX-License-Identifier: MIT
#pragma once

#include <QString>

class QDialog;
class QLabel;
class QWidget;

// The forms have their sizes in pixels for a screen of 96 dpi, while fonts are in points. On a screen with more dpi a
// form grows as its fonts do.

/// Returns the factor from the pixels of a form to those of the screen of @p widget, which is at least 1.
qreal formScale(const QWidget* widget);

/// Scales all sizes of the form of @p dialog, and enlarges the dialog if its texts need more than that, as with a large
/// font. The size stays within the screen. The last step of a dialog's constructor; fonts aren't changed.
void scaleForm(QDialog* dialog);

/// Shows a text of any length, such as a name or a path, that can't widen the layout. A text that doesn't fit into the
/// label is shortened there and is complete in its tool tip. A label that isn't visible yet is treated by scaleForm().
void showForeignText(QLabel* label, const QString& text, int maxLines = 2);
