// SPDX-FileCopyrightText: 2026 The Merivo Connections developers
// SPDX-License-Identifier: MIT
#include "support/RecordingHost.h"

#include "tools/host/PatientEvent.h"

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
    using Event = PatientEvent<IDiarySessionOpenedEvt>;
    Q_EMIT publisher.diarySessionOpened(IDiarySessionOpenedEvtPtr(new Event({puid, pids})));
}

void RecordingHost::changePatient(const QString& puid, const QStringList& pids)
{
    using Event = PatientEvent<IPatientChangedEvt>;
    Q_EMIT publisher.patientChanged(IPatientChangedEvtPtr(new Event({puid, pids})));
}
