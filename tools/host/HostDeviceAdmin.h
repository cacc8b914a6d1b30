// SPDX-FileCopyrightText: 2026 The Merivo Connections developers
// SPDX-License-Identifier: MIT
#pragma once

#include "hostapi/IDevice.h"
#include "hostapi/IDeviceAdmin.h"

#include <QString>

/// The reader as a device that has only a drive.
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

/// "DeviceAdminExtensionPoint" for the host's only reader.
class HostDeviceAdmin final : public IDeviceAdmin
{
public:
    /// Sets the folder that represents the reader's drive; empty: none. The reader is plugged in while the folder
    /// exists.
    void setDrivePath(const QString& path) { m_drivePath = path; }
    QString drivePath() const { return m_drivePath; }
    bool isReaderThere() const;
    bool isHeld() const { return m_isHeld; }

    /// Returns a device that the caller owns, or null for another type or while the reader isn't plugged in.
    IDevice* acquireDevice(int type, const QString& name) override;
    bool setDeviceHold(bool hold) override;

private:
    QString m_drivePath;
    bool m_isHeld = false;
};
