// SPDX-FileCopyrightText: 2026 The Merivo Connections developers
// SPDX-License-Identifier: MIT
#pragma once

#include "host/IDevice.h"
#include "host/IDeviceAdmin.h"

#include <QString>

/// The reader as a device: nothing but its drive.
class HostDevice final : public IDevice
{
    Q_OBJECT

public:
    explicit HostDevice(const QString& drivePath);

    void reserved12() override {}
    void reserved13() override {}
    void reserved14() override {}
    void reserved15() override {}
    void reserved16() override {}
    QString drivePath() override { return m_drivePath; }

private:
    const QString m_drivePath;
};

/// The administration of the one reader that this host knows: "DeviceAdminExtensionPoint".
class HostDeviceAdmin final : public IDeviceAdmin
{
public:
    /// The folder that stands for the reader's drive; empty: none. The reader is there while the folder exists, so it
    /// can be plugged in and pulled out at any time.
    void setDrivePath(const QString& path) { m_drivePath = path; }
    QString drivePath() const { return m_drivePath; }
    bool isReaderThere() const;
    bool isHeld() const { return m_isHeld; }

    /// The caller owns the device. Null for another type, or while the reader isn't there.
    IDevice* acquireDevice(int type, const QString& name) override;
    bool setDeviceHold(bool hold) override;

private:
    QString m_drivePath;
    bool m_isHeld = false;
};
