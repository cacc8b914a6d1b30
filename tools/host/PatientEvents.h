// SPDX-FileCopyrightText: 2026 The Merivo Connections developers
// SPDX-License-Identifier: MIT
#pragma once

#include "hostapi/IDatabase.h"
#include "hostapi/IEventPublisher.h"

/// "EventPublisherExtensionPoint": the open diary, and the events about it. GUI thread only.
class PatientEvents final : public IEventPublisher
{
    Q_OBJECT

public:
    explicit PatientEvents(QObject* parent = nullptr);

    /// Returns the patient of the open diary; the puid is empty if no diary is open.
    PatientRecord openPatient() const { return m_openPatient; }
    bool isOpen() const { return !m_openPatient.puid.isEmpty(); }

    /// Publishes diarySessionOpened. Closes another patient's open diary first.
    void openDiary(const PatientRecord& patient);
    /// Publishes diarySessionClosed if a diary is open.
    void closeDiary();
    /// Publishes patientChanged, regardless of the open diary.
    void publishChanged(const PatientRecord& patient);
    void publishCreated();
    /// Publishes patientDeleted. Closes the patient's diary first if it is open.
    void publishDeleted(const QString& puid);
    void publishImport(bool succeeded);

private:
    PatientRecord m_openPatient;
};
