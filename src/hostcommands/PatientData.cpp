// SPDX-FileCopyrightText: 2026 The Merivo Connections developers
// SPDX-License-Identifier: MIT
#include "hostcommands/PatientData.h"

bool PatientData::assign(const IPatientData* other)
{
    if (!other)
        return false;
    m_puid = other->puid();
    m_pids = other->pids();
    m_diaryName = other->diaryName();
    m_text1 = other->patientText1();
    m_text2 = other->patientText2();
    return true;
}

bool PatientData::parsePatientOption(QStringList& args)
{
    QStringList rest = args;
    const QString option = rest.takeFirst();
    if (rest.isEmpty())
        return false;

    if (option == QLatin1String("-puid"))
        m_puid = rest.takeFirst();
    else if (option == QLatin1String("-diaryname"))
        m_diaryName = rest.takeFirst();
    else
        return false;
    args = rest;
    return true;
}
