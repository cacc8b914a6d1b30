// SPDX-FileCopyrightText: 2026 The Merivo Connections developers
// SPDX-License-Identifier: MIT
#include "dialogs/DevicesModel.h"

#include "base/PatientSession.h"

#include <QFont>

namespace {

/// Returns the default font, enlarged by @p factor. The host may have set its size in pixels.
QFont scaledFont(qreal factor)
{
    QFont font;
    if (font.pointSizeF() > 0)
        font.setPointSizeF(font.pointSizeF() * factor);
    else
        font.setPixelSize(qRound(font.pixelSize() * factor));
    return font;
}

} // namespace

DevicesModel::DevicesModel(const QList<DeviceInfo>& devices, QObject* parent)
    : QAbstractTableModel(parent)
    , m_devices(devices)
{}

DevicesModel::DevicesModel(const DeviceInfo& device, QObject* parent)
    : DevicesModel(QList<DeviceInfo>{device}, parent)
{}

int DevicesModel::rowCount(const QModelIndex&) const
{
    return m_devices.size();
}

int DevicesModel::columnCount(const QModelIndex&) const
{
    return ColumnCount;
}

QVariant DevicesModel::data(const QModelIndex& index, int role) const
{
    const int row = index.row();
    if (row < 0 || row >= m_devices.size())
        return {};
    switch (role) {
    case Qt::DisplayRole:
        return index.column() < ColumnCount ? text(m_devices.at(row), index.column()) : QVariant();
    case Qt::ToolTipRole:
        if (index.column() != AssignedTo)
            return QString();
        return PatientSession::patientName(PatientSession::patientIdsOf(m_devices.at(row).patientId));
    case Qt::FontRole:
        return scaledFont(1.1);
    case Qt::TextAlignmentRole:
        return headerData(index.column(), Qt::Horizontal, role);
    default:
        return {};
    }
}

QVariant DevicesModel::headerData(int section, Qt::Orientation orientation, int role) const
{
    if (orientation == Qt::Horizontal) {
        const bool isColumn = section >= 0 && section < ColumnCount;
        if (role == Qt::DisplayRole && isColumn)
            return columnName(section);
        if (role == Qt::FontRole)
            return scaledFont(1.2);
        if (role == Qt::TextAlignmentRole && isColumn)
            return int(Qt::AlignLeft);
    }
    return QAbstractTableModel::headerData(section, orientation, role);
}

DeviceInfo DevicesModel::deviceAt(int row) const
{
    return m_devices.value(row);
}

bool DevicesModel::isAssignedToOther(int row) const
{
    const DeviceInfo device = deviceAt(row);
    return device.paired && device.patientId != PatientSession::instance()->patientId();
}

QString DevicesModel::columnName(int column)
{
    switch (column) {
    case SerialNumber:
        return tr("Serial Number", "Column name within pump selection table");
    case AssignedTo:
        return tr("Assigned to", "Column name within pump selection table");
    default:
        return tr("Device name", "Column name within pump selection table");
    }
}

QString DevicesModel::text(const DeviceInfo& device, int column)
{
    switch (column) {
    case SerialNumber:
        return device.serialNumber;
    case AssignedTo:
        return device.patientId;
    default:
        return device.deviceName;
    }
}
