// SPDX-FileCopyrightText: 2026 The Merivo Connections developers
// SPDX-License-Identifier: MIT
#pragma once

#include "plugin/session/Logger.h"

#include <QString>

/// The two channels in use.
enum class LogChannel { Trace, Failure };

/// Writes one record through the Logger; what the message is about, often a path, is its second detail.
inline void writeLog(LogChannel channel, const QString& message, const QString& subject = {})
{
    Logger::instance(nullptr, nullptr)
        ->write(message, channel == LogChannel::Trace ? QStringLiteral("mcp") : QStringLiteral("err"), {}, subject);
}

/// A record on the channel "mcp", of the ordinary course of things.
inline void logTrace(const QString& message, const QString& subject = {})
{
    writeLog(LogChannel::Trace, message, subject);
}

/// A record on the channel "err".
inline void logFailure(const QString& message, const QString& subject = {})
{
    writeLog(LogChannel::Failure, message, subject);
}
