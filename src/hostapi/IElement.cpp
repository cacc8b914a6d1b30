// SPDX-FileCopyrightText: 2026 The Merivo Connections developers
// SPDX-License-Identifier: MIT
#include "hostapi/IElement.h"

#include "hostapi/IPlugin.h"

IElement::~IElement() = default;

QString IElement::description() const
{
    const IPlugin* owner = plugin();
    return owner ? owner->description() : QString();
}

QString IElement::copyright() const
{
    const IPlugin* owner = plugin();
    return owner ? owner->copyright() : QString();
}

QString IElement::extraText() const
{
    const IPlugin* owner = plugin();
    return owner ? owner->extraText() : QString();
}

QString IElement::version() const
{
    const IPlugin* owner = plugin();
    return owner ? owner->version() : QString();
}

bool IElement::isFlagged() const
{
    const IPlugin* owner = plugin();
    return owner && owner->isFlagged();
}

bool IElement::isEnabled() const
{
    return true;
}

QString IElement::menuText() const
{
    return title();
}

QString IElement::elementKey() const
{
    const IPlugin* owner = plugin();
    return owner ? owner->pluginName() : title();
}
