// SPDX-FileCopyrightText: 2026 The Merivo Connections developers
// SPDX-License-Identifier: MIT
#include "host/IDeviceAdmin.h"

IDeviceAdmin::~IDeviceAdmin() = default;

bool IDeviceAdmin::setDeviceHold(bool hold)
{
    Q_UNUSED(hold)
    return false;
}
