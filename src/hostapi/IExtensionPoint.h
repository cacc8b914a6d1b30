// SPDX-FileCopyrightText: 2026 The Merivo Connections developers
// SPDX-License-Identifier: MIT
#pragma once

#include <QtGlobal>

/// Base of the interfaces that IExtensionRegistry returns. Extension points are owned by the host.
class IExtensionPoint
{
public:
    IExtensionPoint() = default;
    virtual ~IExtensionPoint();
    Q_DISABLE_COPY_MOVE(IExtensionPoint)
};
