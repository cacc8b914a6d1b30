// SPDX-FileCopyrightText: 2026 The Merivo Connections developers
// SPDX-License-Identifier: MIT
#pragma once

#include "hostapi/IExtensionPoint.h"

class IDevice;
class QString;

/// The host's device administration, "DeviceAdminExtensionPoint". GUI thread only.
class IDeviceAdmin : public IExtensionPoint
{
public:
    IDeviceAdmin() = default;
    ~IDeviceAdmin() override;

    /// Returns the device of that type, owned by the caller, or null if there is none. The reader has type 1 and an
    /// empty name.
    virtual IDevice* acquireDevice(int type, const QString& name) = 0;
    /// Switches on or off a mode in which the host leaves the device to the caller. Returns true if the mode changed.
    /// Does nothing and returns false by default.
    virtual bool setDeviceHold(bool hold);
};
