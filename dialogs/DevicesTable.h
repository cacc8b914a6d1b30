// SPDX-FileCopyrightText: 2026 The Merivo Connections developers
// SPDX-License-Identifier: MIT
#pragma once

#include <QTableView>

class DevicesModel;

/// Shows a DevicesModel, to be looked at and to choose a row from.
class DevicesTable final : public QTableView
{
    Q_OBJECT
    Q_DISABLE_COPY_MOVE(DevicesTable)

public:
    explicit DevicesTable(QWidget* parent);

    /// The model stays its parent's, which is this table as a rule.
    void setDevicesModel(DevicesModel* model);
    DevicesModel* devicesModel() const { return m_devicesModel; }
    using QTableView::selectedIndexes;
    /// Makes the row of a list of one current, and no row of any other list. Returns the current index.
    QModelIndex selectSingleRow();
    /// DevicesModel::isAssignedToOther() for the current row; false if there is none.
    bool currentIsAssignedToOther() const;
    /// Returns the minimum height, so that the table only grows by the space that a dialog has left.
    QSize sizeHint() const override;
    /// Returns the height of the header and one row.
    QSize minimumSizeHint() const override;

protected:
    /// A row that is chosen by a key counts as clicked: who can't use a mouse gets on, too.
    void keyPressEvent(QKeyEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;

private:
    void fitColumns();
    int headerWidth(int column) const;

    DevicesModel* m_devicesModel = nullptr;
};
