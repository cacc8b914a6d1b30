// SPDX-FileCopyrightText: 2026 The Merivo Connections developers
// SPDX-License-Identifier: MIT
#pragma once

#include "host/IDatabase.h"
#include "host/IEventPublisher.h"

/// Which diary is open, and the events that tell it: "EventPublisherExtensionPoint". GUI thread only.
class PatientEvents final : public IEventPublisher
{
    Q_OBJECT

public:
    explicit PatientEvents(QObject* parent = nullptr);

    /// The open patient; an empty puid if no diary is open.
    PatientRecord openPatient() const { return m_openPatient; }
    bool isOpen() const { return !m_openPatient.puid.isEmpty(); }

    /// Publishes diarySessionOpened; another patient's diary that is open is closed first.
    void openDiary(const PatientRecord& patient);
    /// Publishes diarySessionClosed if a diary is open.
    void closeDiary();
    /// Publishes patientChanged, whoever's diary is open.
    void publishChanged(const PatientRecord& patient);
    void publishCreated();
    /// Publishes patientDeleted, after the closing of the patient's diary if that is the open one.
    void publishDeleted(const QString& puid);
    void publishImport(bool succeeded);

private:
    PatientRecord m_openPatient;
};
