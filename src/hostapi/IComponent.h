// SPDX-FileCopyrightText: 2026 The Merivo Connections developers
// SPDX-License-Identifier: MIT
#pragma once

#include "hostapi/IElement.h"

/// An element that the host shows as one menu entry.
class IComponent : public IElement
{
public:
    IComponent() = default;
    ~IComponent() override;
};
