// SPDX-FileCopyrightText: 2026 The Merivo Connections developers
// SPDX-License-Identifier: MIT
#pragma once

#include <QList>
#include <QListWidget>

// The signal selectionChanged() has the name of a virtual operation of the base, which stays as it is.
QT_WARNING_PUSH
QT_WARNING_DISABLE_CLANG("-Woverloaded-virtual")
QT_WARNING_DISABLE_GCC("-Woverloaded-virtual")

/// A plain list to select from, with the house look of LmListWidgetDelegate, whose selected items can be moved and
/// removed. It takes no focus and has no dragging; how many items can be selected is the application's to set. GUI
/// thread only.
class LmListWidget : public QListWidget
{
    Q_OBJECT
    Q_DISABLE_COPY_MOVE(LmListWidget)

public:
    explicit LmListWidget(QWidget* parent = nullptr);

    using QListWidget::addItems;

public Q_SLOTS:
    /// Moves each selected item one row towards the edge, and keeps them selected. A selection that touches the edge
    /// stays as a whole; gaps in a selection stay gaps.
    void moveUp();
    void moveDown();
    /// Deletes the selected items.
    void removeSelectedItems();
    /// Appends a copy of each item, made by QListWidgetItem's copy constructor. The items, none of them null, stay the
    /// caller's.
    void addItems(QList<QListWidgetItem*> items);

Q_SIGNALS:
    /// After each change of the selection, with whether anything is selected; then comes blockSelected().
    void selectionChanged(bool bItemsChanged);
    /// With whether the selected rows are one block, without a gap; false without a selection.
    void blockSelected(bool bBlock);
    /// After moveUp() or moveDown() has moved something. The signals of the selection come before it.
    void itemsMoved();

protected Q_SLOTS:
    void onSelection();

private:
    QModelIndexList sortedSelection() const;
    void moveItem(int row, int newRow);
};

QT_WARNING_POP
