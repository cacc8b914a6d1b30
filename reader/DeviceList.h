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
    QString patientId;    ///< The patient that the pump is assigned to; empty without one or if the id is damaged.
    bool paired = false;  ///< Whether the pump is assigned to a patient, known or not.
};
Q_DECLARE_METATYPE(DeviceInfo)

/// Reads the reader's list of pumps, all of them and in the file's order. Returns an empty list for a missing file or
/// another root, and for a broken file the records before the fault, the last of them with what was read of it. A fault
/// within a patient's id, other than the end of the file, leaves the pump paired with an unknown patient. Writes the
/// number of records to the log. GUI thread only, after a SEARCH has ended.
QList<DeviceInfo> readDeviceList(const QString& directory, const QString& fileName);
