// SPDX-FileCopyrightText: 2026 The Merivo Connections developers
// SPDX-License-Identifier: MIT
#pragma once

#include <QString>

class QAbstractButton;
class QWidget;

/// Finds widgets by the names and texts that a user would see.
namespace WidgetFinder {

/// Returns the window that takes input: the modal one, or the active one, or any visible one. Null if there is none.
QWidget* inputWindow();

/// Returns a visible window whose object name, class or title is @p name; the input window first. Null if there is
/// none.
QWidget* window(const QString& name);

/// Returns a window, or a widget by its object name or by a path "WINDOW/NAME". The last name of a path may be a
/// button's standard name ("Cancel") or text. Of several widgets one in the input window is preferred, then a visible
/// one. Null if there is none.
QWidget* widget(const QString& path);

/// Returns the button with that standard name or text in the button box of a window, or in @p parent if that is the
/// button box. Null if there is none.
QAbstractButton* button(QWidget* parent, const QString& name);

/// Returns what the widget shows, without mark-up: its text, value, current item or title.
QString textOf(const QWidget* widget);

/// Returns one line about the open windows.
QString describeWindows();

} // namespace WidgetFinder
