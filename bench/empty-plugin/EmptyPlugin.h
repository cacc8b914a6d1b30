// SPDX-FileCopyrightText: 2026 The Merivo Connections developers
// SPDX-License-Identifier: MIT
#pragma once

#include "host/IPlugin.h"

#include <QIcon>
#include <QObject>

/// The least that a plug-in of this host can be: it loads the two icons of the menu entry and offers none. What it
/// costs to load is Qt's share in the loading of the real one.
class EmptyPlugin final : public QObject, public IPlugin
{
    Q_OBJECT
    Q_PLUGIN_METADATA(IID MERIVO_PLUGIN_IID FILE "EmptyPlugin.json")
    Q_INTERFACES(IPlugin)

public:
    EmptyPlugin();

    QString pluginName() const override { return QStringLiteral("EmptyPlugin"); }
    QIcon icon() const override { return m_icon; }

private:
    QIcon m_icon;
};
