// SPDX-FileCopyrightText: 2026 The Merivo Connections developers
// SPDX-License-Identifier: MIT
#include "hostcommands/ModeData.h"

ModeData::ModeData(const QString& mode, bool optionA, bool optionB)
    : m_mode(mode)
    , m_optionA(optionA)
    , m_optionB(optionB)
{}

bool ModeData::assign(const IModeData* other)
{
    if (!other)
        return false;
    m_mode = other->mode();
    m_optionA = other->optionA();
    m_optionB = other->optionB();
    m_control = other->control();
    return true;
}

bool ModeData::parseModeOption(QStringList& args)
{
    QStringList rest = args;
    const QString option = rest.takeFirst();
    if (rest.isEmpty())
        return false;

    if (option == QLatin1String("-mode"))
        m_mode = rest.takeFirst();
    else if (option == QLatin1String("-control"))
        m_control = rest.takeFirst().replace(QLatin1String("&quot;"), QLatin1String("\""));
    else
        return false;
    args = rest;
    return true;
}
