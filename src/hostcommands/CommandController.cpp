// SPDX-FileCopyrightText: 2026 The Merivo Connections developers
// SPDX-License-Identifier: MIT
#include "hostcommands/CommandController.h"

#include "base/PatientSession.h"
#include "hostapi/ICommandHandler.h"
#include "hostcommands/ImportDataCommand.h"

#include <memory>

CommandController::CommandController(QObject* parent)
    : QObject(parent)
{}

void CommandController::importData(const QString& dbGuid)
{
    auto command = std::make_unique<ImportDataCommand>(this);
    command->m_databaseGuid = dbGuid;

    const PatientSession* session = PatientSession::instance();
    command->m_pids = session->pids();
    command->m_puid = session->patientId();
    command->m_diaryName = session->diaryName();

    // The first argument is not an option, so the command's own command line stays empty: the host reads the object.
    QStringList arguments = importArguments(*command, session->exchangeFilePath());
    command->setArguments(arguments);
    m_commandHandler->execute(command.release()); // The host takes ownership.
}

QStringList CommandController::importArguments(const ImportDataCommand& command, const QString& path)
{
    const QString quoted = QStringLiteral("'%1'");
    QStringList arguments{QStringLiteral("import")};
    for (int i = 1; i <= command.m_pids.size(); ++i) {
        // An empty pid is omitted, but keeps its number.
        const QString pid = command.m_pids.at(i - 1);
        if (!pid.isEmpty())
            arguments << QStringLiteral("-pid%1").arg(i) << quoted.arg(pid);
    }
    arguments << QStringLiteral("-filepath") << quoted.arg(path);
    arguments << QStringLiteral("-filemac") << quoted.arg(command.fileMac());
    return arguments;
}
