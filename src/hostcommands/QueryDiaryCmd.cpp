// SPDX-FileCopyrightText: 2026 The Merivo Connections developers
// SPDX-License-Identifier: MIT
#include "hostcommands/QueryDiaryCmd.h"

QueryDiaryCmd::QueryDiaryCmd(QObject* owner)
    : CommandExt(owner)
{}

ICommand* QueryDiaryCmd::clone() const
{
    return new QueryDiaryCmd(*this);
}

ICommand* QueryDiaryCmd::command()
{
    return this;
}

QString QueryDiaryCmd::commandName() const
{
    return QStringLiteral("query");
}
