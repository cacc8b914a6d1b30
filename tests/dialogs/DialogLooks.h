// SPDX-FileCopyrightText: 2026 The Merivo Connections developers
// SPDX-License-Identifier: MIT
#pragma once

#include <QStringList>

class QWidget;

/// What a user can't read of a visible window: one line for each text or picture that has less room than it needs, and
/// for each widget that reaches beyond the window.
QStringList cutTexts(const QWidget& window);

/// The visible pictures, buttons and bars that have no name for a screen reader.
QStringList namelessWidgets(const QWidget& window);

/// What the Tab key reaches in the active window, one round, and what it should reach: everything that takes the focus,
/// in the order in which the eye reads.
QStringList tabOrder(QWidget& window);
QStringList readingOrder(const QWidget& window);
