// SPDX-FileCopyrightText: 2026 The Merivo Connections developers
// SPDX-License-Identifier: MIT
#pragma once

#include <QString>

class QLabel;
class QWidget;

// What the headers of all dialogs share. The fonts themselves are the application's: its style sheet selects on the
// dynamic properties that are set here.

/// Marks @p widget for the style sheet's big font.
void markBigSizeFont(QWidget* widget);

/// Marks @p widget for the style sheet's highlighted font.
void markHighlightFont(QWidget* widget);

/// Shows the folder that stands for the reader's drive, or hides the label if the path is empty.
void showSimulationPath(QLabel* label, const QString& path);

/// Fills the two lines with name and further data of the open patient and hides a line that has none.
void showPatient(QLabel* line1, QLabel* line2);

/// Shows the image at @p path on @p label, @p width wide, in the shape of the pixmap that the label has. A null label
/// is ignored.
void showScaledToWidth(QLabel* label, const QString& path, int width);
