// SPDX-FileCopyrightText: 2026 The Merivo Connections developers
// SPDX-License-Identifier: MIT
#include "readerlink/CommandFileWriter.h"

#include "base/Logger.h"

#include <QFile>
#include <QTextStream>

namespace {

CommandFileWriter* s_instance = nullptr;

} // namespace

CommandFileWriter* CommandFileWriter::create(const QString& drivePath)
{
    delete s_instance;
    s_instance = new CommandFileWriter(drivePath);
    return s_instance;
}

CommandFileWriter* CommandFileWriter::instance()
{
    return s_instance;
}

CommandFileWriter::CommandFileWriter(const QString& drivePath)
    : m_path(drivePath + QStringLiteral("/MISC"))
{
    logTrace(QStringLiteral("Command file writer initialized."), m_path);
}

CommandFileWriter::~CommandFileWriter()
{
    logTrace(QStringLiteral("Command file writer finished."), m_path);
    s_instance = nullptr;
}

// Blanks and quotes are as the reader's wire format requires: serial numbers are quoted, addresses and patient ids are
// not, and the argument of BTDELETEADDR begins with a blank.

bool CommandFileWriter::search()
{
    return submit(QStringLiteral("SEARCH"), QStringLiteral("00100"));
}

bool CommandFileWriter::pair(const QString& btAddress, const QString& serialNumber, const QString& patientId)
{
    return submit(QStringLiteral("BTPAIR"), QStringLiteral("%1 \"%2\" %3").arg(btAddress, serialNumber, patientId));
}

bool CommandFileWriter::confirmPairing(bool accepted)
{
    return submit(QStringLiteral("BTPAIRCONFIRM"), accepted ? QStringLiteral("1") : QStringLiteral("0"));
}

bool CommandFileWriter::read(const QString& serialNumber)
{
    return submit(QStringLiteral("BTREAD"), QStringLiteral("\"%1\"").arg(serialNumber));
}

bool CommandFileWriter::isPaired(const QString& patientId)
{
    return submit(QStringLiteral("BTISPAIRED"), patientId);
}

bool CommandFileWriter::deleteAddress(const QString& serialNumber)
{
    return submit(QStringLiteral("BTDELETEADDR"), QStringLiteral(" \"%1\"").arg(serialNumber));
}

bool CommandFileWriter::reassign(const QString& serialNumber, const QString& patientId)
{
    return submit(QStringLiteral("BTPUMPREASSIGN"), QStringLiteral("\"%1\" %2").arg(serialNumber, patientId));
}

bool CommandFileWriter::abort()
{
    return submit(QStringLiteral("ABORT"), {});
}

bool CommandFileWriter::submit(const QString& command, const QString& arguments)
{
    m_lastCommand = command;

    QFile file(m_path + QStringLiteral("/CommandFile.txt"));
    if (!file.open(QIODevice::WriteOnly | QIODevice::Truncate)) {
        logFailure(QStringLiteral("=!= <%1 %2> failed.").arg(command, arguments), file.fileName());
        m_lastCommand = QString();
        return false;
    }

    // The file has no line end after the arguments. The blank is written even if there are no arguments.
    QTextStream stream(&file);
    stream << "QD17-C RemoteControl File\n"
           << "Command=" << command << ' ' << arguments;
    logTrace(QStringLiteral("<== <%1 %2> submitted.").arg(command, arguments), file.fileName());
    return true;
}
