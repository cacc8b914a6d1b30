// SPDX-FileCopyrightText: 2026 The Merivo Connections developers
// SPDX-License-Identifier: MIT
#pragma once

#include "hostapi/HostEvents.h"
#include "hostapi/IDatabase.h"

/// An event with a patient. Has a copy of the values, as events are shared.
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
