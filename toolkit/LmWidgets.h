// SPDX-FileCopyrightText: 2026 The Merivo Connections developers
// SPDX-License-Identifier: MIT
#pragma once

class QWidget;

/// Takes the context help button out of the title bar of @p widget. A visible widget is hidden by that, as by any
/// change of window flags. Null is ignored.
void lmRemoveHelpButton(QWidget* widget);

/// Makes a change of a property that the style sheet selects on take effect. Null is ignored.
void lmRepolish(QWidget* widget);
