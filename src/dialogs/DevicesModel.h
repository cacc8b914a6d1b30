// SPDX-FileCopyrightText: 2026 The Merivo Connections developers
// SPDX-License-Identifier: MIT
#pragma once

#include "readerlink/DeviceList.h"

#include <QAbstractTableModel>

/// The pumps in the reader's device list, in its order: serial number, patient and device name of one pump per row.
class DevicesModel final : public QAbstractTableModel
{
    Q_OBJECT
    Q_DISABLE_COPY_MOVE(DevicesModel)

public:
    enum Column { SerialNumber, AssignedTo, DeviceName, ColumnCount };

    DevicesModel(const QList<DeviceInfo>& devices, QObject* parent);
    DevicesModel(const DeviceInfo& device, QObject* parent);

    int rowCount(const QModelIndex& parent = {}) const override;
    int columnCount(const QModelIndex& parent = {}) const override;
    /// Returns the patient's key in the column AssignedTo, and the patient's name as its tool tip. Queries the host
    /// each time a tool tip is requested.
    QVariant data(const QModelIndex& index, int role = Qt::DisplayRole) const override;
    QVariant headerData(int section, Qt::Orientation orientation, int role = Qt::DisplayRole) const override;

    /// Returns the pump in @p row, or a default record if there is no such row.
    DeviceInfo deviceAt(int row) const;
    /// Returns true if the pump is assigned to a patient other than the one whose diary is open.
    bool isAssignedToOther(int row) const;

private:
    static QString columnName(int column);
    static QString text(const DeviceInfo& device, int column);

    const QList<DeviceInfo> m_devices;
};
