// SPDX-FileCopyrightText: 2026 The Merivo Connections developers
// SPDX-License-Identifier: MIT
#pragma once

#include "reader/DeviceList.h"

#include <QAbstractTableModel>

/// Pumps as the reader's device list tells them, one a row and in that order: serial number, patient, device name.
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
    /// The cell of the patient shows the patient's key, and the name, for which the host is asked each time, as a tool
    /// tip.
    QVariant data(const QModelIndex& index, int role = Qt::DisplayRole) const override;
    QVariant headerData(int section, Qt::Orientation orientation, int role = Qt::DisplayRole) const override;

    /// A default record for a row that doesn't exist.
    DeviceInfo deviceAt(int row) const;
    /// Whether the reader has the pump paired to another patient than the one whose diary is open.
    bool isAssignedToOther(int row) const;

private:
    static QString columnName(int column);
    static QString text(const DeviceInfo& device, int column);

    const QList<DeviceInfo> m_devices;
};
