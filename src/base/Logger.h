// SPDX-FileCopyrightText: 2026 The Merivo Connections developers
// SPDX-License-Identifier: MIT
#pragma once

#include <QObject>
#include <QString>

class IPlugin;
class IServices;

/// The plug-in's log. Writes each record to Qt's log, under the category "plugin.merivoconnections", and to the host
/// through IServices::logLine(), even if the category is disabled.
///
/// Two channels are in use: "mcp" for the trace, "err" for failures. The first characters of a message show its kind:
/// "<==" a submitted command or a requested step, "==>" an observation or a success, "=?=" a status for information,
/// "===" a step, "---" a milestone or the end of a polling, "=!=" a failure, "-->" and "<--" the start and the end of a
/// run, "-!-" a run that failed.
class Logger final : public QObject
{
    Q_OBJECT
    Q_DISABLE_COPY_MOVE(Logger)

public:
    /// Returns the only logger. The first call creates it with its arguments, which are not owned; later arguments are
    /// ignored. The plug-in object makes the first call, and all others pass null: a logger that is created without
    /// services never writes to the host.
    static Logger* instance(IPlugin* plugin, IServices* services);

    /// Writes one record; the details may be empty. Qt's log has the record when the call returns. The host gets it on
    /// the logger's thread, which is the GUI thread: during the call, or by a queued event if the caller is on another
    /// thread, but always in the order written. Thread-safe.
    void write(const QString& message, const QString& channel, const QString& detail1, const QString& detail2);

    /// Forwards to IServices::logValue() with level 4; returns 0 without services. GUI thread only.
    quintptr logValue(const QString& value1, const QString& value2, const QString& value3, const QString& value4,
                      const QString& value5);

private:
    Logger(IPlugin* plugin, IServices* services);
    ~Logger() override;

    IPlugin* m_plugin;
    IServices* m_services;
};

/// Writes a record of normal operation on the channel "mcp". See Logger::write().
inline void logTrace(const QString& message, const QString& detail2 = {})
{
    Logger::instance(nullptr, nullptr)->write(message, QStringLiteral("mcp"), {}, detail2);
}

/// Writes a record of a failure on the channel "err". See Logger::write().
inline void logFailure(const QString& message, const QString& detail2 = {})
{
    Logger::instance(nullptr, nullptr)->write(message, QStringLiteral("err"), {}, detail2);
}
