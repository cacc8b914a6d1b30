// SPDX-FileCopyrightText: 2026 The Merivo Connections developers
// SPDX-License-Identifier: MIT
#pragma once

#include "host/HostEvents.h"

#include <QObject>
#include <QPointer>
#include <QStringList>

class IDatabase;
class IEventPublisher;

/// Listens to the host's events and keeps PatientSession at the patient that is open. GUI thread only; the events also
/// come in the middle of a run.
class EventsObserver final : public QObject
{
    Q_OBJECT
    Q_DISABLE_COPY_MOVE(EventsObserver)

public:
    explicit EventsObserver(QObject* parent = nullptr);

    /// Follows @p publisher from now on; null leaves the observer without events. Replacing a publisher or a database
    /// that an earlier call brought deletes it, the one case in which the plug-in disposes of an extension point; those
    /// in place at the end stay the host's. The same publisher once more is connected once more.
    void attach(IEventPublisher* publisher, IDatabase* database);

public Q_SLOTS:
    void onDiarySessionOpened(IDiarySessionOpenedEvtPtr evt);
    void onDiarySessionClosed(IDiarySessionClosedEvtPtr evt);
    /// Takes over the changed ids if the event speaks of the open patient; nothing else changes.
    void onPatientChanged(IPatientChangedEvtPtr evt);

Q_SIGNALS:
    /// Part of the observer's face towards the host's command events; nothing emits it.
    void commandsReceived(QStringList cmdList);

private:
    // Guarded: a host that has deleted its own extension point must not have it deleted again.
    QPointer<IEventPublisher> m_publisher;
    QPointer<IDatabase> m_database;
};
