// SPDX-FileCopyrightText: 2026 The Merivo Connections developers
// SPDX-License-Identifier: MIT
#pragma once

#include "host/IDevice.h"

#include <QString>

#include <memory>

class IDeviceAdmin;

/// Holds the device reader as a device of the host for as long as it lives, and knows the drive by which it is reached.
///
/// Constructor and destructor take real time, since host and reader need pauses to settle: 1200 ms on the way in if the
/// host's state changed, 2700 ms on the way out if there is a device. Events are processed meanwhile. GUI thread only.
class UsbDeviceAdapter
{
    Q_DISABLE_COPY_MOVE(UsbDeviceAdapter)

public:
    /// @p deviceAdmin stays the host's and may be null. Any failure shows as an empty m_drivePath.
    explicit UsbDeviceAdapter(IDeviceAdmin* deviceAdmin);
    /// Gives the host's state back.
    virtual ~UsbDeviceAdapter();

    /// Blocks the caller under the wait cursor, but keeps the event loop turning in steps of 20 ms: signals and queued
    /// calls can arrive. The steps are counted, not the clock, so the real time is longer by what the events take.
    /// Returns true, also for 0 and less, which don't sleep.
    static bool wait(int milliseconds);

    /// The root of the reader's drive, without "/MISC"; empty if no reader is connected.
    QString m_drivePath;

private:
    IDeviceAdmin* m_deviceAdmin;
    std::unique_ptr<IDevice> m_device;
    bool m_restoreHold = true; ///< What the host gets back at the end.
};
