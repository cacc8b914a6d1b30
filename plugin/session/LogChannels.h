// SPDX-FileCopyrightText: 2026 The Merivo Connections developers
// SPDX-License-Identifier: MIT
#pragma once

#include "plugin/session/Logger.h"

#include <QString>

/// Writes a record of the ordinary course of things, on the channel "mcp". See Logger::write().
inline void logTrace(const QString& message, const QString& detail2 = {})
{
    Logger::instance(nullptr, nullptr)->write(message, QStringLiteral("mcp"), {}, detail2);
}

/// Writes a record of a failure, on the channel "err". See Logger::write().
inline void logFailure(const QString& message, const QString& detail2 = {})
{
    Logger::instance(nullptr, nullptr)->write(message, QStringLiteral("err"), {}, detail2);
}
