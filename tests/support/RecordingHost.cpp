// SPDX-FileCopyrightText: 2026 The Merivo Connections developers
// SPDX-License-Identifier: MIT
#include "support/RecordingHost.h"

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
