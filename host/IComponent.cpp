// SPDX-FileCopyrightText: 2026 The Merivo Connections developers
// SPDX-License-Identifier: MIT
#include "host/IComponent.h"

IComponent::~IComponent() = default;
