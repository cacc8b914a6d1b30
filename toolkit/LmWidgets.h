// SPDX-FileCopyrightText: 2026 The Merivo Connections developers
// SPDX-License-Identifier: MIT
#pragma once

class QWidget;

/// @file
/// Helpers for any widget. GUI thread only.

/// Removes the context help button from the title bar of @p widget, which may be null. As any change of window flags,
/// this hides a visible widget.
void lmRemoveHelpButton(QWidget* widget);

/// Applies the style sheet again after a change of a property of @p widget, which may be null.
void lmRepolish(QWidget* widget);
