// SPDX-FileCopyrightText: 2026 The Merivo Connections developers
// SPDX-License-Identifier: MIT
#pragma once

#include "host/IExtensionPoint.h"

class IDevice;
class QString;

/// The host's administration of devices: "DeviceAdminExtensionPoint". GUI thread only.
class IDeviceAdmin : public IExtensionPoint
{
public:
    IDeviceAdmin() = default;
    ~IDeviceAdmin() override;

    /// The device of that type, or null if there is none. The caller owns it and deletes it. The reader is asked for
    /// with type 1 and an empty name.
    virtual IDevice* acquireDevice(int type, const QString& name) = 0;
    /// Switches a mode of the administration in which the device is left to the caller on or off, and tells whether
    /// the call changed it. Changes nothing here.
    virtual bool setDeviceHold(bool hold);
};
