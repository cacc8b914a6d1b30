// SPDX-FileCopyrightText: 2026 The Merivo Connections developers
// SPDX-License-Identifier: MIT
#pragma once

#include <QString>

/// The mode record of commands and events.
class IModeData
{
public:
    virtual ~IModeData();

    virtual bool optionA() const = 0;
    virtual bool optionB() const = 0;
    virtual QString control() const = 0;
    virtual QString mode() const = 0;
};
