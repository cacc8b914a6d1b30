// SPDX-FileCopyrightText: 2026 The Merivo Connections developers
// SPDX-License-Identifier: MIT
#include "workbench/host/PatientEvents.h"

namespace {

/// An event that brings a patient. Events are shared, so it holds the values of the moment.
template <class Event>
class PatientEvent final : public Event
{
public:
    explicit PatientEvent(const PatientRecord& patient)
        : m_patient(patient)
    {}

    QString puid() const override { return m_patient.puid; }
    QStringList pids() const override { return m_patient.ids; }
    QString pid(int index) const override { return m_patient.ids.value(index); }
    QString patientText0() const override { return {}; }
    QString diaryName() const override { return QString("%1.dia").arg(m_patient.puid); }
    QString patientText1() const override { return {}; }
    QString patientText2() const override { return {}; }

private:
    const PatientRecord m_patient;
};

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
