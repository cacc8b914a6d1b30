// SPDX-FileCopyrightText: 2026 The Merivo Connections developers
// SPDX-License-Identifier: MIT
#include "hostapi/IExtension.h"

IExtension::~IExtension() = default;

QString IExtension::title() const
{
    return QStringLiteral("?");
}

QString IExtension::description() const
{
    return QStringLiteral("???");
}

QString IExtension::copyright() const
{
    return QStringLiteral("??");
}

QString IExtension::extraText() const
{
    return {};
}

QString IExtension::version() const
{
    return QStringLiteral("x.x.x.x");
}

QIcon IExtension::icon() const
{
    return {};
}

bool IExtension::isFlagged() const
{
    return false;
}
