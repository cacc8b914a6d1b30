// SPDX-FileCopyrightText: 2026 The Merivo Connections developers
// SPDX-License-Identifier: MIT
#pragma once

#include <QObject>
#include <QStringList>

class ICommandHandler;
class ImportDataCommand;

/// The plug-in's command front towards the host. GUI thread only.
class CommandController final : public QObject
{
    Q_OBJECT
    Q_DISABLE_COPY_MOVE(CommandController)

public:
    explicit CommandController(QObject* parent = nullptr);

    /// Hands the exchange file that the session names to the host, for the session's patient. @p dbGuid is the GUID
    /// text of the open database. Runs the host's handler before it returns; the outcome isn't followed. Needs
    /// m_commandHandler.
    void importData(const QString& dbGuid);

    /// The import as a command line: the command's word, the pids that aren't empty by their numbers from 1, then
    /// @p path and the command's fileMac(), each value in single quotes.
    static QStringList importArguments(const ImportDataCommand& command, const QString& path);

    /// The host's command handler, not owned; null until the plug-in has its extension points.
    ICommandHandler* m_commandHandler = nullptr;
};
