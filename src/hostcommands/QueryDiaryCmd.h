// SPDX-FileCopyrightText: 2026 The Merivo Connections developers
// SPDX-License-Identifier: MIT
#pragma once

#include "hostapi/IQueryDiaryCmd.h"
#include "hostcommands/CommandExt.h"

/// A query of a diary. The plug-in never sends it.
class QueryDiaryCmd final : public IQueryDiaryCmd, public CommandExt
{
public:
    explicit QueryDiaryCmd(QObject* owner);

    /// Returns a complete copy, unlike the import command. The caller owns it.
    ICommand* clone() const override;

    ICommand* command() override;
    QString commandName() const override;
};
