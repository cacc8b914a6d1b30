// SPDX-FileCopyrightText: 2026 The Merivo Connections developers
// SPDX-License-Identifier: MIT
#pragma once

#include <QObject>
#include <QStringList>

class ICommandHandler;
class ImportDataCommand;

/// Sends the plug-in's commands to the host. GUI thread only.
class CommandController final : public QObject
{
    Q_OBJECT
    Q_DISABLE_COPY_MOVE(CommandController)

public:
    explicit CommandController(QObject* parent = nullptr);

    /// Passes the session's exchange file to the host, for the session's patient. @p dbGuid is the GUID text of the
    /// open database. Runs the host's handler before it returns and ignores the result. Requires m_commandHandler.
    void importData(const QString& dbGuid);

    /// Returns the import as command-line arguments: the command name, the non-empty pids with their numbers from 1,
    /// @p path and the MAC. Each value is in single quotes.
    static QStringList importArguments(const ImportDataCommand& command, const QString& path);

    /// The host's command handler. Not owned; null until the plug-in has looked it up.
    ICommandHandler* m_commandHandler = nullptr;
};
