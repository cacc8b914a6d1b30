// SPDX-FileCopyrightText: 2026 The Merivo Connections developers
// SPDX-License-Identifier: MIT
#pragma once

#include <QStyledItemDelegate>

/// Paints a row of a list: the icon in a square, one line of black text that is elided at its end if it is too wide,
/// and a transparent colour over all of a selected row. GUI thread only.
///
/// Only a decoration that is a QIcon is painted, and no other role than the text. In a right-to-left layout the icon is
/// at the right, and the text remains left-aligned in the rest of the row.
class LmListWidgetDelegate : public QStyledItemDelegate
{
    Q_OBJECT
    Q_DISABLE_COPY_MOVE(LmListWidgetDelegate)

public:
    /// The layout direction is that of @p parent at construction, or left to right without a parent.
    explicit LmListWidgetDelegate(QWidget* parent = nullptr);

    void paint(QPainter* painter, const QStyleOptionViewItem& option, const QModelIndex& index) const override;
    /// Returns a height of 40 pixels with an icon and of 25 without, and the width 0, which leaves it to the view.
    QSize sizeHint(const QStyleOptionViewItem& option, const QModelIndex& index) const override;

private:
    int m_iconSize = 30;
    int m_margin = 5;
    bool m_leftToRight = true;
};
