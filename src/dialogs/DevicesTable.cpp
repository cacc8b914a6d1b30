// SPDX-FileCopyrightText: 2026 The Merivo Connections developers
// SPDX-License-Identifier: MIT
#include "dialogs/DevicesTable.h"

#include "dialogs/DevicesModel.h"

#include <QHeaderView>
#include <QKeyEvent>

namespace {

constexpr int MaxMeasuredRows = 20; // for the width of a column; the list may have thousands
constexpr int MinColumnWidth = 80;  // in pixels

} // namespace

DevicesTable::DevicesTable(QWidget* parent)
    : QTableView(parent)
{
    verticalHeader()->setVisible(false);
    horizontalHeader()->setVisible(true);
    horizontalHeader()->setStretchLastSection(true);
    setShowGrid(true);
    setAlternatingRowColors(true);
    setSortingEnabled(false);
    setSelectionBehavior(SelectRows);
    setEditTriggers(NoEditTriggers);
    setCornerButtonEnabled(false);
    setWordWrap(false);
    setTabKeyNavigation(false);
    setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    setVerticalScrollBarPolicy(Qt::ScrollBarAsNeeded);
}

void DevicesTable::setDevicesModel(DevicesModel* model)
{
    m_devicesModel = model;
    setModel(model);
    fitColumns();
}

QModelIndex DevicesTable::selectSingleRow()
{
    if (m_devicesModel)
        setCurrentIndex(m_devicesModel->rowCount() == 1 ? m_devicesModel->index(0, 0) : QModelIndex());
    return currentIndex();
}

bool DevicesTable::currentIsAssignedToOther() const
{
    return m_devicesModel && m_devicesModel->isAssignedToOther(currentIndex().row());
}

QSize DevicesTable::sizeHint() const
{
    return {QTableView::sizeHint().width(), minimumSizeHint().height()};
}

QSize DevicesTable::minimumSizeHint() const
{
    const int oneRow = horizontalHeader()->sizeHint().height() + verticalHeader()->defaultSectionSize();
    return {QTableView::minimumSizeHint().width(), oneRow + 2 * frameWidth()};
}

void DevicesTable::keyPressEvent(QKeyEvent* event)
{
    QTableView::keyPressEvent(event);
    const QModelIndex current = currentIndex();
    if (current.isValid() && selectionModel()->isSelected(current))
        Q_EMIT clicked(current);
}

void DevicesTable::resizeEvent(QResizeEvent* event)
{
    QTableView::resizeEvent(event);
    fitColumns();
}

/// From left to right each column gets the width that its texts need, and the last one the rest, since there is no
/// horizontal scroll bar and a serial number must be shown whole. With very large fonts the last columns are cut.
void DevicesTable::fitColumns()
{
    if (!m_devicesModel)
        return;
    horizontalHeader()->setResizeContentsPrecision(MaxMeasuredRows);
    int available = viewport()->width();
    for (int column = 0; column < DevicesModel::ColumnCount - 1; ++column) {
        if (isColumnHidden(column))
            continue;
        const int forOthers = MinColumnWidth * (DevicesModel::ColumnCount - 1 - column);
        const int wanted = qMax(headerWidth(column), sizeHintForColumn(column));
        const int width = qBound(MinColumnWidth, wanted, qMax(MinColumnWidth, available - forOthers));
        horizontalHeader()->resizeSection(column, width);
        available -= width;
    }
}

/// Returns the width for the bold text that the header has above a selected row.
int DevicesTable::headerWidth(int column) const
{
    const QString text = m_devicesModel->headerData(column, Qt::Horizontal).toString();
    QFont font = m_devicesModel->headerData(column, Qt::Horizontal, Qt::FontRole).value<QFont>();
    const int regular = QFontMetrics(font).horizontalAdvance(text);
    font.setBold(true);
    return horizontalHeader()->sectionSizeHint(column) + QFontMetrics(font).horizontalAdvance(text) - regular;
}
