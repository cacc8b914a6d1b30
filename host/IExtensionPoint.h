// SPDX-FileCopyrightText: 2026 The Merivo Connections developers
// SPDX-License-Identifier: MIT
#pragma once

#include <QtGlobal>

/// Base of what the host's registry finds. A plug-in never owns an extension point.
class IExtensionPoint
{
public:
    IExtensionPoint() = default;
    virtual ~IExtensionPoint();
    Q_DISABLE_COPY_MOVE(IExtensionPoint)
};
