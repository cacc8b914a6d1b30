// SPDX-FileCopyrightText: 2026 The Merivo Connections developers
// SPDX-License-Identifier: MIT
#include "support/RecordingHost.h"

void Journal::add(const QString& line)
{
    lines.append(line);
    threads.append(QThread::currentThread());
}

QStringList Journal::startingWith(const QString& prefix) const
{
    QStringList found;
    for (const QString& line : lines) {
        if (line.startsWith(prefix))
            found.append(line);
    }
    return found;
}

void Journal::clear()
{
    lines.clear();
    threads.clear();
}

void RecordingServices::logLine(IPlugin* source, const QString& channel, const QString& message, const QString& detail1,
                                const QString& detail2)
{
    lastSource = source;
    if (beforeLogLine)
        beforeLogLine(message);
    m_journal.add(QStringList{channel, message, detail1, detail2}.join(QLatin1Char('|')));
}

QString RecordingDevice::drivePath()
{
    m_journal.add(QStringLiteral("drivePath"));
    return m_path;
}

IDevice* RecordingDeviceAdmin::acquireDevice(int type, const QString& name)
{
    m_journal.add(QStringLiteral("acquireDevice(%1, '%2')").arg(type).arg(name));
    return hasDevice ? new RecordingDevice(m_journal, drivePath) : nullptr;
}

bool RecordingDeviceAdmin::setDeviceHold(bool hold)
{
    m_journal.add(QStringLiteral("setDeviceHold(%1)").arg(hold));
    return holdChanges;
}

bool RecordingCommandHandler::execute(ICommand* command)
{
    commandTypes.append(command->type());
    m_journal.add(QStringLiteral("execute(%1)").arg(command->type()));
    if (auto* import = dynamic_cast<IImportDataCmd*>(command))
        imports.emplace_back(import);
    return true;
}

QString RecordingDatabase::databaseGuid(const QString& path)
{
    m_journal.add(QStringLiteral("databaseGuid('%1')").arg(path));
    return guid;
}

QMap<QString, PatientRecord> RecordingDatabase::patients(const QString& databaseGuid)
{
    m_journal.add(QStringLiteral("patients('%1')").arg(databaseGuid));
    return records;
}

IExtensionPoint* RecordingHost::extensionPoint(const QString& name)
{
    journal.add(QStringLiteral("extensionPoint('%1')").arg(name));
    const QHash<QString, IExtensionPoint*> points{
        {QStringLiteral("ServicesExtensionPoint"), &services},
        {QStringLiteral("DeviceAdminExtensionPoint"), &deviceAdmin},
        {QStringLiteral("CommandHandlerExtensionPoint"), &commandHandler},
        {QStringLiteral("EventPublisherExtensionPoint"), foundPublisher},
        {QStringLiteral("DatabaseExtensionPoint"), foundDatabase},
    };
    return points.value(name);
}

void RecordingHost::openDiary(const QString& puid, const QStringList& pids)
{
    Q_EMIT publisher.diarySessionOpened(IDiarySessionOpenedEvtPtr(
        new PatientEvent<IDiarySessionOpenedEvt>(puid, pids, QStringLiteral("diary ") + puid)));
}
