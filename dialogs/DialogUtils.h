// SPDX-FileCopyrightText: 2026 The Merivo Connections developers
// SPDX-License-Identifier: MIT
#pragma once

#include <QString>

class QDialog;
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
