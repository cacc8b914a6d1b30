// SPDX-FileCopyrightText: 2026 The Merivo Connections developers
// SPDX-License-Identifier: MIT
#include "tools/host/ImportHandler.h"

#include "hostapi/IImportDataCmd.h"
#include "hostapi/SharedKey.h"
#include "tools/host/HostDatabase.h"
#include "tools/host/HostDeviceAdmin.h"
#include "tools/host/HostLog.h"
#include "tools/host/PatientEvents.h"

#include <QFile>
#include <QFileInfo>
#include <QMessageAuthenticationCode>

#include <memory>

namespace {

/// Far above the size of a pump's history, and well below the limit of a database field.
constexpr qint64 MaxFileSize = qint64(256) * 1024 * 1024;

ImportOutcome refused(const QString& sentence)
{
    return {ImportOutcome::Refused, sentence};
}

QString channelOf(ImportOutcome::Kind kind)
{
    switch (kind) {
    case ImportOutcome::Stored:
        return "Info";
    case ImportOutcome::Repeated:
        return "Warning";
    case ImportOutcome::Refused:
        break;
    }
    return "Error";
}

/// Returns the MAC that an import of these bytes must have, as lower-case hexadecimal text.
QString macOf(const QByteArray& bytes, const QString& databaseGuid)
{
    const auto* shared = reinterpret_cast<const char*>(SharedMacKey.data());
    const QByteArray key = QByteArray(shared, static_cast<int>(SharedMacKey.size())).toHex() + databaseGuid.toUtf8();
    return QString::fromLatin1(QMessageAuthenticationCode::hash(bytes, key, QCryptographicHash::Sha256).toHex());
}

} // namespace

ImportHandler::ImportHandler(HostDatabase& database, PatientEvents& events, HostLog& log,
                             const HostDeviceAdmin& deviceAdmin, QObject* parent)
    : QObject(parent)
    , m_database(database)
    , m_events(events)
    , m_log(log)
    , m_deviceAdmin(deviceAdmin)
{}

bool ImportHandler::execute(ICommand* command)
{
    ImportOutcome outcome;
    if (!command) {
        outcome = refused(tr("A plug-in handed over no command."));
    } else if (command->type() == ICommand::Import) {
        const std::unique_ptr<IImportDataCmd> import(static_cast<IImportDataCmd*>(command));
        outcome = carryOut(*import);
    } else {
        // Only an import can be deleted through its interface; the classes of other commands are unknown here.
        outcome = refused(tr("A command of type %1 isn't carried out by this host.").arg(command->type()));
    }
    m_log.write("host", channelOf(outcome.kind), outcome.sentence);
    Q_EMIT finished(outcome);
    m_events.publishImport(outcome.kind != ImportOutcome::Refused);
    return outcome.kind != ImportOutcome::Refused;
}

ImportOutcome ImportHandler::carryOut(const IImportDataCmd& command)
{
    const QString path = command.filePath();
    const QString name = QFileInfo(path).fileName();
    const auto patient = m_database.findPatient(command.puid());
    if (!m_database.errorText().isEmpty())
        return refused(tr("Import of '%1' failed: %2.").arg(name, m_database.errorText()));
    if (!patient)
        return refused(tr("Import of '%1' refused: there is no patient '%2'.").arg(name, command.puid()));

    // Reads the file once, so that the checked bytes are stored even if the reader changes the file meanwhile.
    QFile file(path);
    if (!QFileInfo(path).isFile() || !file.open(QIODevice::ReadOnly))
        return refused(tr("Import refused: the file '%1' can't be read.").arg(path));
    const QByteArray bytes = file.read(MaxFileSize + 1);
    if (file.error() != QFileDevice::NoError)
        return refused(tr("Import refused: reading '%1' failed: %2.").arg(path, file.errorString()));
    if (bytes.isEmpty())
        return refused(tr("Import refused: the file '%1' is empty.").arg(path));
    if (bytes.size() > MaxFileSize)
        return refused(tr("Import refused: the file '%1' is larger than 256 MiB.").arg(path));

    const QString mac = macOf(bytes, m_database.guid());
    if (mac != command.fileMac())
        return refused(tr("Import of '%1' refused: its MAC doesn't match the file.").arg(name));

    const auto earlier = m_database.findImport(patient->puid, mac);
    if (earlier) {
        return {ImportOutcome::Repeated,
                tr("'%1' holds what was imported on %2 as '%3' already for the patient '%4'; nothing was stored again.")
                    .arg(name, earlier->importedAt.toLocalTime().toString("yyyy-MM-dd hh:mm:ss"), earlier->fileName,
                         patient->puid)};
    }
    ImportFacts facts;
    facts.puid = patient->puid;
    facts.importedAt = QDateTime::currentDateTimeUtc();
    facts.fileName = name;
    facts.fileSize = bytes.size();
    facts.mac = mac;
    facts.deviceState = deviceState();
    // Also reports an error of the search for an earlier import, as writing to the same database fails too.
    if (!m_database.addImport(facts, bytes))
        return refused(tr("Import of '%1' failed: %2.").arg(name, m_database.errorText()));
    return {ImportOutcome::Stored, tr("'%1' imported: %2 bytes, MAC verified, for the patient '%3'.")
                                       .arg(name, QString::number(facts.fileSize), patient->puid)};
}

QString ImportHandler::deviceState() const
{
    if (m_isSimulation)
        return "simulation";
    if (!m_deviceAdmin.isReaderThere())
        return "no reader";
    return m_deviceAdmin.isHeld() ? "reader held" : "reader";
}
