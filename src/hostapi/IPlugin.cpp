// SPDX-FileCopyrightText: 2026 The Merivo Connections developers
// SPDX-License-Identifier: MIT
#include "hostapi/IPlugin.h"

IPlugin::~IPlugin() = default;

bool IPlugin::isFlagged() const
{
    return m_flag;
}

void IPlugin::setExtensionRegistry(IExtensionRegistry* registry)
{
    m_registry = registry;
}

void IPlugin::initialize(QSettings&, const QDir& directory)
{
    m_dir = directory;
}

void IPlugin::onHostNotice(void*) {}

void IPlugin::installTranslator() {}

QList<IExtensionPoint*> IPlugin::extensionPoints() const
{
    return {};
}

QList<IComponent*> IPlugin::components() const
{
    return {};
}

QList<IElement*> IPlugin::elements() const
{
    return {};
}
