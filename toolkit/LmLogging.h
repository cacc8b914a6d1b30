// SPDX-FileCopyrightText: 2026 The Merivo Connections developers
// SPDX-License-Identifier: MIT
#pragma once

#include <QLoggingCategory>

/// @file
/// Logging categories for applications. The toolkit's own diagnostics go to Qt's default category.

/// The category "profile" for measurements.
Q_DECLARE_LOGGING_CATEGORY(lmProfileLog)
/// The category "usage" for what the user does.
Q_DECLARE_LOGGING_CATEGORY(lmUsageLog)
/// The category "plugin" for the loading and the work of plug-ins.
Q_DECLARE_LOGGING_CATEGORY(lmPluginLog)
