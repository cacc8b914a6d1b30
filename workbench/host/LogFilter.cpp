// SPDX-FileCopyrightText: 2026 The Merivo Connections developers
// SPDX-License-Identifier: MIT
#include "workbench/host/LogFilter.h"

#include "workbench/host/HostLog.h"

void LogFilter::setLowestLevel(int level)
{
    m_lowestLevel = level;
    invalidateFilter();
}

void LogFilter::setText(const QString& text)
{
    m_text = text;
    invalidateFilter();
}

bool LogFilter::filterAcceptsRow(int row, const QModelIndex& parent) const
{
    if (sourceModel()->index(row, 0, parent).data(HostLog::LevelRole).toInt() < m_lowestLevel)
        return false;
    for (int column = 0; column < sourceModel()->columnCount(parent); ++column) {
        const QString cell = sourceModel()->index(row, column, parent).data().toString();
        if (cell.contains(m_text, Qt::CaseInsensitive))
            return true;
    }
    return false;
}
