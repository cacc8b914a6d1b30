// SPDX-FileCopyrightText: 2026 The Merivo Connections developers
// SPDX-License-Identifier: MIT
#pragma once

#include "commands/CommandExt.h"
#include "host/IQueryDiaryCmd.h"

/// The query of a diary, which the family carries and nothing sends.
class QueryDiaryCmd final : public IQueryDiaryCmd, public CommandExt
{
public:
    explicit QueryDiaryCmd(QObject* owner);

    /// A real copy, unlike that of the import command; the caller owns it.
    ICommand* clone() const override;

    ICommand* command() override;
    QString commandName() const override;
};
