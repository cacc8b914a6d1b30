// SPDX-FileCopyrightText: 2026 The Merivo Connections developers
// SPDX-License-Identifier: MIT
#include "host/IQueryDiaryCmd.h"

IQueryDiaryCmd::IQueryDiaryCmd()
    : ICommand(QueryDiary)
{}
