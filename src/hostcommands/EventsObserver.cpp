// SPDX-FileCopyrightText: 2026 The Merivo Connections developers
// SPDX-License-Identifier: MIT
#include "hostcommands/EventsObserver.h"

#include "base/PatientSession.h"
#include "hostapi/IDatabase.h"
#include "hostapi/IEventPublisher.h"

namespace {

template <typename ExtensionPoint>
void replace(QPointer<ExtensionPoint>& held, ExtensionPoint* next)
{
    if (held == next)
        return;
    delete held;
    held = next;
}

} // namespace

EventsObserver::EventsObserver(QObject* parent)
    : QObject(parent)
{}

void EventsObserver::attach(IEventPublisher* publisher, IDatabase* database)
{
    replace(m_publisher, publisher);
    if (publisher) {
        connect(publisher, &IEventPublisher::diarySessionOpened, this, &EventsObserver::onDiarySessionOpened);
        connect(publisher, &IEventPublisher::diarySessionClosed, this, &EventsObserver::onDiarySessionClosed);
        connect(publisher, &IEventPublisher::patientChanged, this, &EventsObserver::onPatientChanged);
    }
    replace(m_database, database);
}

void EventsObserver::onDiarySessionOpened(IDiarySessionOpenedEvtPtr evt)
{
    PatientSession* session = PatientSession::open(evt->puid());
    session->setPids(evt->pids());
    session->setDiaryName(evt->diaryName());
}

void EventsObserver::onDiarySessionClosed(IDiarySessionClosedEvtPtr)
{
    PatientSession::create(nullptr);
}

void EventsObserver::onPatientChanged(IPatientChangedEvtPtr evt)
{
    PatientSession* session = PatientSession::instance();
    // Without an open patient there is nothing to change, even if the event's key is empty too.
    if (!session->patientId().isEmpty() && evt->puid() == session->patientId())
        session->setPids(evt->pids());
}
