// SPDX-FileCopyrightText: 2026 The Merivo Connections developers
// SPDX-License-Identifier: MIT
#include "toolkit/LmListWidget.h"

#include "toolkit/LmListWidgetDelegate.h"

#include <algorithm>

LmListWidget::LmListWidget(QWidget* parent)
    : QListWidget(parent)
{
    setFocusPolicy(Qt::NoFocus);
    setDragEnabled(false);
    viewport()->setAcceptDrops(false);
    setDragDropMode(QAbstractItemView::NoDragDrop);
    setDropIndicatorShown(false);
    setItemDelegate(new LmListWidgetDelegate(this));
    connect(this, &QListWidget::itemSelectionChanged, this, &LmListWidget::onSelection);
}

void LmListWidget::onSelection()
{
    const QModelIndexList selection = sortedSelection();
    const bool hasGap =
        std::adjacent_find(selection.cbegin(), selection.cend(), [](const QModelIndex& left, const QModelIndex& right) {
            return right.row() - left.row() > 1;
        }) != selection.cend();
    Q_EMIT selectionChanged(!selection.isEmpty());
    Q_EMIT blockSelected(!selection.isEmpty() && !hasGap);
}

void LmListWidget::moveUp()
{
    const QModelIndexList selection = sortedSelection();
    if (selection.isEmpty() || selection.constFirst().row() == 0)
        return;
    for (const QModelIndex& index : selection)
        moveItem(index.row(), index.row() - 1);
    Q_EMIT itemsMoved();
}

void LmListWidget::moveDown()
{
    const QModelIndexList selection = sortedSelection();
    if (selection.isEmpty() || selection.constLast().row() >= model()->rowCount() - 1)
        return;
    for (auto index = selection.crbegin(); index != selection.crend(); ++index)
        moveItem(index->row(), index->row() + 1);
    Q_EMIT itemsMoved();
}

void LmListWidget::removeSelectedItems()
{
    qDeleteAll(selectedItems()); // An item removes itself from the list.
}

void LmListWidget::addItems(QList<QListWidgetItem*> items)
{
    for (const QListWidgetItem* item : qAsConst(items))
        insertItem(count(), new QListWidgetItem(*item));
}

QModelIndexList LmListWidget::sortedSelection() const
{
    QModelIndexList selection = selectionModel()->selectedIndexes();
    std::sort(selection.begin(), selection.end());
    return selection;
}

void LmListWidget::moveItem(int row, int newRow)
{
    QListWidgetItem* const item = takeItem(row);
    insertItem(newRow, item);
    if (item->listWidget())
        item->setSelected(true);
}
