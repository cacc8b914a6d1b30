// SPDX-FileCopyrightText: 2026 The Merivo Connections developers
// SPDX-License-Identifier: MIT
#include "toolkit/LmListWidgetDelegate.h"

#include <QIcon>
#include <QPainter>
#include <QWidget>

namespace {

constexpr int TextRowHeight = 25;

bool hasIcon(const QModelIndex& index)
{
    return index.data(Qt::DecorationRole).canConvert<QIcon>();
}

} // namespace

LmListWidgetDelegate::LmListWidgetDelegate(QWidget* parent)
    : QStyledItemDelegate(parent)
    , m_leftToRight(!parent || parent->layoutDirection() == Qt::LeftToRight)
{}

void LmListWidgetDelegate::paint(QPainter* painter, const QStyleOptionViewItem& option, const QModelIndex& index) const
{
    painter->save();
    painter->setPen(Qt::black);
    QRect textRect = option.rect;

    if (hasIcon(index)) {
        QRect cell(option.rect.topLeft(), QSize(option.rect.height(), option.rect.height()));
        if (m_leftToRight) {
            textRect.setLeft(textRect.left() + cell.width());
        } else {
            cell.moveRight(option.rect.right());
            // The gap is one pixel wider than the cell.
            textRect.setRight(option.rect.right() - cell.width() - 1);
        }
        const QSize size(m_iconSize, m_iconSize);
        const QIcon icon = index.data(Qt::DecorationRole).value<QIcon>();
        const QPoint corner = cell.topLeft() + QPoint(m_margin, m_margin);
        painter->drawPixmap(QRect(corner, size), icon.pixmap(size, QIcon::Normal, QIcon::Off));
    }

    textRect.adjust(m_margin, 0, -m_margin, 0);
    QString text = index.data(Qt::DisplayRole).toString();
    const QFontMetrics metrics = painter->fontMetrics();
    if (metrics.horizontalAdvance(text) > textRect.width())
        text = metrics.elidedText(text, Qt::ElideRight, textRect.width());
    // Without AlignAbsolute, the painter would align the text right in a right-to-left layout.
    painter->drawText(textRect, Qt::AlignLeft | Qt::AlignVCenter | Qt::AlignAbsolute, text);

    // A translucent colour over icon and text marks the selection, instead of another background.
    if (option.state & QStyle::State_Selected)
        painter->fillRect(option.rect, QColor(0x0d, 0xa6, 0x9e, 0x33));
    painter->restore();
}

QSize LmListWidgetDelegate::sizeHint(const QStyleOptionViewItem&, const QModelIndex& index) const
{
    return QSize(0, hasIcon(index) ? m_iconSize + 2 * m_margin : TextRowHeight);
}
