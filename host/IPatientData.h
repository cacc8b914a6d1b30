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

    /// The patient's key in the host.
    virtual QString puid() const = 0;
    /// Two name parts, birthday as yyyy-MM-dd, extension text; any may be empty or missing.
    virtual QStringList pids() const = 0;
    /// One entry of pids(), or the empty text outside the list.
    virtual QString pid(int index) const = 0;
    virtual QString patientText0() const = 0;
    /// The name of the open diary.
    virtual QString diaryName() const = 0;
    virtual QString patientText1() const = 0;
    virtual QString patientText2() const = 0;
};
