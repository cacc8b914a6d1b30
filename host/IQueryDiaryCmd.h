// SPDX-FileCopyrightText: 2026 The Merivo Connections developers
// SPDX-License-Identifier: MIT
#pragma once

#include "host/ICommand.h"

/// A query of a diary.
class IQueryDiaryCmd : public ICommand
{
public:
    IQueryDiaryCmd();
};
