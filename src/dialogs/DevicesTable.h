// SPDX-FileCopyrightText: 2026 The Merivo Connections developers
// SPDX-License-Identifier: MIT
#pragma once

#include <QTableView>

class DevicesModel;

/// A read-only view of a DevicesModel, from which the user selects a row.
class DevicesTable final : public QTableView
{
    Q_OBJECT
    Q_DISABLE_COPY_MOVE(DevicesTable)

public:
    explicit DevicesTable(QWidget* parent);

    /// Not owned; make it a child of the table.
    void setDevicesModel(DevicesModel* model);
    DevicesModel* devicesModel() const { return m_devicesModel; }
    using QTableView::selectedIndexes;
    /// Makes the row current if the model has exactly one, otherwise none. Returns the current index.
    QModelIndex selectSingleRow();
    /// Returns DevicesModel::isAssignedToOther() for the current row, or false if there is none.
    bool currentIsAssignedToOther() const;
    /// Returns the minimum height: the table grows only into space that its dialog doesn't need otherwise.
    QSize sizeHint() const override;
    /// Returns the height of the header and one row.
    QSize minimumSizeHint() const override;

protected:
    /// Emits clicked() for a row that is selected by a key, so that the dialogs can be used without a mouse.
    void keyPressEvent(QKeyEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;

private:
    void fitColumns();
    int headerWidth(int column) const;

    DevicesModel* m_devicesModel = nullptr;
};
