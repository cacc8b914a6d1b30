// SPDX-FileCopyrightText: 2026 The Merivo Connections developers
// SPDX-License-Identifier: MIT
#pragma once

#include "hostapi/HostEvents.h"

#include <QObject>
#include <QPointer>
#include <QStringList>

class IDatabase;
class IEventPublisher;

/// Updates PatientSession according to the host's events, also during a run. GUI thread only.
class EventsObserver final : public QObject
{
    Q_OBJECT
    Q_DISABLE_COPY_MOVE(EventsObserver)

public:
    explicit EventsObserver(QObject* parent = nullptr);

    /// Observes @p publisher, which may be null. A publisher or database of an earlier call is deleted if another one
    /// or null replaces it, the only case in which the plug-in deletes an extension point. Attaching a publisher again
    /// connects it again.
    void attach(IEventPublisher* publisher, IDatabase* database);

public Q_SLOTS:
    void onDiarySessionOpened(IDiarySessionOpenedEvtPtr evt);
    void onDiarySessionClosed(IDiarySessionClosedEvtPtr evt);
    /// Updates the ids if the event is about the open patient; nothing else changes.
    void onPatientChanged(IPatientChangedEvtPtr evt);

Q_SIGNALS:
    /// Part of the interface; never emitted.
    void commandsReceived(QStringList cmdList);

private:
    // QPointer: an extension point that the host has deleted must not be deleted again.
    QPointer<IEventPublisher> m_publisher;
    QPointer<IDatabase> m_database;
};
