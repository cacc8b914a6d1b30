// SPDX-FileCopyrightText: 2026 The Merivo Connections developers
// SPDX-License-Identifier: MIT
#pragma once

#include <QLoggingCategory>

// The categories that the toolkit offers to applications. Its own diagnostics go to Qt's default category.
Q_DECLARE_LOGGING_CATEGORY(lmProfileLog) ///< "profile": measurements.
Q_DECLARE_LOGGING_CATEGORY(lmUsageLog)   ///< "usage": what the user does.
Q_DECLARE_LOGGING_CATEGORY(lmPluginLog)  ///< "plugin": loading of plug-ins and their work.
