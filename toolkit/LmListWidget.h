// SPDX-FileCopyrightText: 2026 The Merivo Connections developers
// SPDX-License-Identifier: MIT
#pragma once

#include <QList>
#include <QListWidget>

// The signal selectionChanged() has the name of a virtual function of the base class, which isn't overridden.
QT_WARNING_PUSH
QT_WARNING_DISABLE_CLANG("-Woverloaded-virtual")
QT_WARNING_DISABLE_GCC("-Woverloaded-virtual")

/// A list with the rows of LmListWidgetDelegate, whose selected items can be moved and removed. It has no focus and no
/// drag and drop; the selection mode is up to the application. GUI thread only.
class LmListWidget : public QListWidget
{
    Q_OBJECT
    Q_DISABLE_COPY_MOVE(LmListWidget)

public:
    explicit LmListWidget(QWidget* parent = nullptr);

    using QListWidget::addItems;

public Q_SLOTS:
    /// Moves each selected item one row up and keeps it selected. Does nothing if the first row is selected. Gaps in
    /// the selection are kept.
    void moveUp();
    /// Moves each selected item one row down and keeps it selected. Does nothing if the last row is selected. Gaps in
    /// the selection are kept.
    void moveDown();
    /// Deletes the selected items.
    void removeSelectedItems();
    /// Appends a copy of each item, made by the copy constructor of QListWidgetItem. The caller keeps the ownership of
    /// the items, none of which may be null.
    void addItems(QList<QListWidgetItem*> items);

Q_SIGNALS:
    /// Emitted after each change of the selection, before blockSelected(); true if an item is selected.
    void selectionChanged(bool bItemsChanged);
    /// Emitted after each change of the selection; true if there is one and its rows have no gap.
    void blockSelected(bool bBlock);
    /// Emitted after moveUp() or moveDown() has moved something and the signals of the selection were emitted.
    void itemsMoved();

protected Q_SLOTS:
    /// Emits selectionChanged() and blockSelected().
    void onSelection();

private:
    QModelIndexList sortedSelection() const;
    void moveItem(int row, int newRow);
};

QT_WARNING_POP
