// SPDX-FileCopyrightText: 2026 The Merivo Connections developers
// SPDX-License-Identifier: MIT
#pragma once

#include <QObject>
#include <QString>

class IPlugin;
class IServices;

/// The one way by which the plug-in tells what it does. A record goes to Qt's log under the category
/// "plugin.merivoconnections" and to the host through IServices::logLine(), whatever that category has enabled.
///
/// Two channels are in use: "mcp" for the trace, "err" for failures. The first characters of a message tell its kind:
/// "<==" a command submitted or a step asked for, "==>" an observation or a success, "=?=" a status taken for
/// information, "===" a step, "---" a milestone or the end of a polling run, "=!=" a failure, "-->" and "<--" the begin
/// and the end of a run, "-!-" a run that failed.
class Logger final : public QObject
{
    Q_OBJECT
    Q_DISABLE_COPY_MOVE(Logger)

public:
    /// The one logger. The first call builds it with its arguments, neither of them owned; later arguments are ignored.
    /// With null services the host gets nothing for as long as the library is loaded, so the plug-in object makes the
    /// first call and every writer passes nulls.
    static Logger* instance(IPlugin* plugin, IServices* services);

    /// Writes one record; the details may be empty. Qt's log has it before the call returns. The host gets its parts on
    /// the logger's own thread, which is the GUI thread: before the call returns if that is the calling thread, by a
    /// queued event otherwise, and always in the order written.
    void write(const QString& message, const QString& channel, const QString& detail1, const QString& detail2);

    /// Forwards to IServices::logValue() with a level of 4; 0 without services. GUI thread only.
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
