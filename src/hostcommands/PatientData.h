// SPDX-FileCopyrightText: 2026 The Merivo Connections developers
// SPDX-License-Identifier: MIT
#pragma once

#include "hostapi/IPatientData.h"

/// The patient record of a command.
class PatientData : public virtual IPatientData
{
public:
    QString puid() const override { return m_puid; }
    QStringList pids() const override { return m_pids; }
    QString pid(int index) const override { return m_pids.value(index); }
    QString patientText0() const override { return {}; }
    QString diaryName() const override { return m_diaryName; }
    QString patientText1() const override { return m_text1; }
    QString patientText2() const override { return m_text2; }

    /// Copies @p other except for patientText0(). Returns false and copies nothing if it is null.
    bool assign(const IPatientData* other);

    /// Removes "-puid" or "-diaryname" and its value from the front of @p args, which must not be empty. Returns false
    /// and leaves @p args unchanged for any other argument, or without a value.
    bool parsePatientOption(QStringList& args);

    QString m_puid = QStringLiteral("-");
    QStringList m_pids{QString(), QString(), QString(), QString()};
    QString m_diaryName;
    QString m_text1;
    QString m_text2;
};
