// SPDX-FileCopyrightText: 2026 The Merivo Connections developers
// SPDX-License-Identifier: MIT
#pragma once

#include <QString>
#include <QStringList>

/// The patient record of commands and events.
class IPatientData
{
public:
    virtual ~IPatientData();

    /// Returns the patient's key in the host.
    virtual QString puid() const = 0;
    /// Returns two name parts, birthday as yyyy-MM-dd and extension text; any may be empty or missing.
    virtual QStringList pids() const = 0;
    /// Returns one entry of pids(), or an empty text if @p index is out of range.
    virtual QString pid(int index) const = 0;
    virtual QString patientText0() const = 0;
    /// Returns the name of the open diary.
    virtual QString diaryName() const = 0;
    virtual QString patientText1() const = 0;
    virtual QString patientText2() const = 0;
};
