// SPDX-FileCopyrightText: 2026 The Merivo Connections developers
// SPDX-License-Identifier: MIT
#pragma once

#include <QList>
#include <QMetaType>
#include <QString>

/// One pump of the reader's device list.
struct DeviceInfo
{
    QString btAddress;    ///< Bluetooth address, used for pairing.
    QString serialNumber; ///< Identifies the pump in all other commands.
    QString deviceName;   ///< Display name.
    QString patientId;    ///< The patient that the pump is assigned to; empty if there is none or the id is damaged.
    bool paired = false;  ///< True if the pump is assigned to a patient, even if the id is damaged.
};
Q_DECLARE_METATYPE(DeviceInfo)

/// Returns the pumps of the reader's list, in the order of the file, and logs their number. Returns an empty list if
/// the file is missing or has another root element. A damaged file yields the records before the damage, the last of
/// them incomplete. If a patient id is damaged, other than by the end of the file, the pump is paired and its patient
/// id is empty. GUI thread only, after a SEARCH has ended.
QList<DeviceInfo> readDeviceList(const QString& directory, const QString& fileName);
