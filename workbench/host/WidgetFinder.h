// SPDX-FileCopyrightText: 2026 The Merivo Connections developers
// SPDX-License-Identifier: MIT
#pragma once

#include <QString>

class QAbstractButton;
class QWidget;

/// How the robot finds what a user would see, by names and texts.
namespace WidgetFinder {

/// The window that takes input now: the modal one, else the active one, else one that is visible. Null if
/// there is none.
QWidget* inputWindow();

/// A visible window whose object name, class or title is @p name; the input window first. Null if there is none.
QWidget* window(const QString& name);

/// A widget by its object name, or by a path "WINDOW/NAME" that starts at a window. In a box of buttons the last name
/// is a button's standard name ("Cancel") or text. Of several the one in the input window comes first, then a visible
/// one.
QWidget* widget(const QString& path);

/// The button of a message box or a button box by standard name or text, or null.
QAbstractButton* button(QWidget* box, const QString& name);

/// What the widget shows: its text, value, chosen item or title.
QString textOf(const QWidget* widget);

/// True if @p text, as it stands or with its mark-up taken out, is or holds @p part.
bool textEquals(const QString& text, const QString& part);
bool textContains(const QString& text, const QString& part);

/// One line on the windows that are open, for a step that didn't find what it waited for.
QString describeWindows();

} // namespace WidgetFinder
