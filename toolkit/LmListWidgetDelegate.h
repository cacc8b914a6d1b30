// SPDX-FileCopyrightText: 2026 The Merivo Connections developers
// SPDX-License-Identifier: MIT
#pragma once

#include <QStyledItemDelegate>

/// Paints a row of a list in the house look: the icon in a square of its own, one line of black text, cut off with an
/// ellipsis where it doesn't fit, and a transparent veil over all of a selected row. GUI thread only.
///
/// Only a decoration that is a QIcon counts; of the other roles, the text alone. In a right-to-left layout the icon
/// goes to the right, and the text stays at the left of what room is left to it.
class LmListWidgetDelegate : public QStyledItemDelegate
{
    Q_OBJECT
    Q_DISABLE_COPY_MOVE(LmListWidgetDelegate)

public:
    /// Takes the layout direction of @p parent as it is now, left to right without one.
    explicit LmListWidgetDelegate(QWidget* parent = nullptr);

    void paint(QPainter* painter, const QStyleOptionViewItem& option, const QModelIndex& index) const override;
    /// The height alone, 40 pixels with an icon and 25 without; the width is 0 and left to the view.
    QSize sizeHint(const QStyleOptionViewItem& option, const QModelIndex& index) const override;

private:
    int m_iconSize = 30;
    int m_margin = 5;
    bool m_leftToRight = true;
};
