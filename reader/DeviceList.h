// SPDX-FileCopyrightText: 2026 The Merivo Connections developers
// SPDX-License-Identifier: MIT
#pragma once

#include <QList>
#include <QMetaType>
#include <QString>

/// One pump of the reader's device list.
struct DeviceInfo
{
    QString btAddress;    ///< Bluetooth address, for the pairing.
    QString serialNumber; ///< What identifies the pump in every other command.
    QString deviceName;   ///< The name as it is displayed.
    QString patientId;    ///< The patient that the pump is assigned to; empty if none.
    bool paired = false;  ///< Whether there is a patient id.
};
Q_DECLARE_METATYPE(DeviceInfo)

/// Reads the reader's list of pumps, all of them and in the file's order. A missing file or another root gives an empty
/// list; a broken file gives the records ahead of the fault, the last of them with what was read of it. Writes the
/// number of records to the log. GUI thread, after a SEARCH has ended.
QList<DeviceInfo> readDeviceList(const QString& directory, const QString& fileName);
