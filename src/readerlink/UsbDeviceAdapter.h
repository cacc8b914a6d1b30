// SPDX-FileCopyrightText: 2026 The Merivo Connections developers
// SPDX-License-Identifier: MIT
#pragma once

#include "hostapi/IDevice.h"

#include <QString>

#include <memory>

class IDeviceAdmin;

/// Holds the device reader as a device of the host during the adapter's lifetime, and provides the path of its drive.
///
/// Host and reader need pauses: the constructor waits 1200 ms if the host's state has changed, the destructor 2700 ms
/// if there is a device. Both process events meanwhile. GUI thread only.
class UsbDeviceAdapter
{
    Q_DISABLE_COPY_MOVE(UsbDeviceAdapter)

public:
    /// @p deviceAdmin is not owned and may be null. On any failure m_drivePath is empty.
    explicit UsbDeviceAdapter(IDeviceAdmin* deviceAdmin);
    /// Restores the host's state.
    virtual ~UsbDeviceAdapter();

    /// Blocks the caller with a wait cursor, but processes events every 20 ms. Counts steps instead of time, so that it
    /// takes longer by the time spent on events. Always returns true; 0 and negative values don't sleep.
    static bool wait(int milliseconds);

    /// The root of the reader's drive, without "/MISC"; empty if no reader is connected.
    QString m_drivePath;

private:
    IDeviceAdmin* m_deviceAdmin;
    std::unique_ptr<IDevice> m_device;
    bool m_restoreHold = true; ///< What the destructor passes to the host.
};
