// SPDX-FileCopyrightText: 2026 The Merivo Connections developers
// SPDX-License-Identifier: MIT
#pragma once

#include <QSortFilterProxyModel>

/// The log's records from a level on that hold a text in any column.
class LogFilter final : public QSortFilterProxyModel
{
    Q_OBJECT

public:
    using QSortFilterProxyModel::QSortFilterProxyModel;

    void setLowestLevel(int level);
    void setText(const QString& text);

protected:
    bool filterAcceptsRow(int row, const QModelIndex& parent) const override;

private:
    int m_lowestLevel = 0;
    QString m_text;
};
