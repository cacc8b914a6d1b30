// SPDX-FileCopyrightText: 2026 The Merivo Connections developers
// SPDX-License-Identifier: MIT
#include "hostcommands/ImportDataCommand.h"

#include "base/PatientSession.h"
#include "hostapi/SharedKey.h"

#include <QCryptographicHash>
#include <QFile>
#include <QMessageAuthenticationCode>

ImportDataCommand::ImportDataCommand(QObject* owner)
    : CommandExt(owner)
{}

QString ImportDataCommand::filePath() const
{
    return PatientSession::instance()->exchangeFilePath();
}

QString ImportDataCommand::importTag() const
{
    return {};
}

QString ImportDataCommand::fileMac() const
{
    const QByteArray shared(reinterpret_cast<const char*>(SharedMacKey.data()), static_cast<int>(SharedMacKey.size()));
    const QString key = QString::fromLatin1(shared.toHex()) + m_databaseGuid;
    QMessageAuthenticationCode mac(QCryptographicHash::Sha256, key.toUtf8());

    // Not checked: a file that can't be opened yields the MAC of no data, which the host rejects.
    QFile file(filePath());
    file.open(QIODevice::ReadOnly);
    mac.addData(&file);
    return QString::fromLatin1(mac.result().toHex());
}

bool ImportDataCommand::isImportFlagged() const
{
    return false;
}

QString ImportDataCommand::importNote() const
{
    return {};
}

ICommand* ImportDataCommand::command()
{
    return this;
}

QString ImportDataCommand::commandName() const
{
    return QStringLiteral("import");
}
