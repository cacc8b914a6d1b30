// SPDX-FileCopyrightText: 2026 The Merivo Connections developers
// SPDX-License-Identifier: MIT
#include "tools/host/HostDeviceAdmin.h"

#include <QDir>

#include <utility>

namespace {
constexpr int ReaderType = 1;
}

HostDevice::HostDevice(const QString& drivePath)
    : m_drivePath(drivePath)
{}

bool HostDeviceAdmin::isReaderThere() const
{
    return !m_drivePath.isEmpty() && QDir(m_drivePath).exists();
}

IDevice* HostDeviceAdmin::acquireDevice(int type, const QString& name)
{
    Q_UNUSED(name)
    return type == ReaderType && isReaderThere() ? new HostDevice(m_drivePath) : nullptr;
}

bool HostDeviceAdmin::setDeviceHold(bool hold)
{
    return std::exchange(m_isHeld, hold) != hold;
}
