// SPDX-FileCopyrightText: 2026 The Merivo Connections developers
// SPDX-License-Identifier: MIT
#include "tools/host/PatientEvents.h"

#include "tools/host/PatientEvent.h"

namespace {

template <class Event>
QSharedPointer<Event> patientEvent(const PatientRecord& patient)
{
    return QSharedPointer<PatientEvent<Event>>::create(patient);
}

} // namespace

PatientEvents::PatientEvents(QObject* parent)
    : IEventPublisher(parent)
{}

void PatientEvents::openDiary(const PatientRecord& patient)
{
    if (patient.puid != m_openPatient.puid)
        closeDiary();
    m_openPatient = patient;
    Q_EMIT diarySessionOpened(patientEvent<IDiarySessionOpenedEvt>(patient));
}

void PatientEvents::closeDiary()
{
    if (!isOpen())
        return;
    m_openPatient = {};
    Q_EMIT diarySessionClosed(IDiarySessionClosedEvtPtr::create());
}

void PatientEvents::publishChanged(const PatientRecord& patient)
{
    if (patient.puid == m_openPatient.puid)
        m_openPatient = patient;
    Q_EMIT patientChanged(patientEvent<IPatientChangedEvt>(patient));
}

void PatientEvents::publishCreated()
{
    Q_EMIT patientCreated(IPatientCreatedEvtPtr::create());
}

void PatientEvents::publishDeleted(const QString& puid)
{
    if (puid == m_openPatient.puid)
        closeDiary();
    Q_EMIT patientDeleted(IPatientDeletedEvtPtr::create());
}

void PatientEvents::publishImport(bool succeeded)
{
    if (!succeeded) {
        Q_EMIT commandFailed(ICmdFailedEvtPtr::create());
        return;
    }
    Q_EMIT commandSucceeded(ICmdSucceededEvtPtr::create());
    Q_EMIT diaryImported(IDiaryImportedEvtPtr::create());
}
