// SPDX-FileCopyrightText: 2026 The Merivo Connections developers
// SPDX-License-Identifier: MIT
#include "toolkit/LmLogging.h"

Q_LOGGING_CATEGORY(lmProfileLog, "profile")
Q_LOGGING_CATEGORY(lmUsageLog, "usage")
Q_LOGGING_CATEGORY(lmPluginLog, "plugin")
