// SPDX-FileCopyrightText: 2026 The Merivo Connections developers
// SPDX-License-Identifier: MIT
#pragma once

#include "hostapi/ICommand.h"

/// A query of a diary.
class IQueryDiaryCmd : public ICommand
{
public:
    IQueryDiaryCmd();
};
