// SPDX-FileCopyrightText: 2026 The Merivo Connections developers
// SPDX-License-Identifier: MIT
#include "hostapi/ICommand.h"

ICommand::ICommand(int type)
    : m_type(type)
{}

bool ICommand::isValid() const
{
    return static_cast<unsigned>(m_type) <= 12U;
}

ICommand* ICommand::clone() const
{
    return new ICommand(m_type);
}
