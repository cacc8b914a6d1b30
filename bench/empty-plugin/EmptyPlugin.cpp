// SPDX-FileCopyrightText: 2026 The Merivo Connections developers
// SPDX-License-Identifier: MIT
#include "hostapi/IPlugin.h"

#include <QIcon>
#include <QObject>

/// The smallest plug-in of this host: it loads the two icons of the menu entry and has no component. Its loading time
/// is Qt's share of that of the real one.
class EmptyPlugin final : public QObject, public IPlugin
{
    Q_OBJECT
    Q_PLUGIN_METADATA(IID MERIVO_PLUGIN_IID)
    Q_INTERFACES(IPlugin)

public:
    EmptyPlugin()
    {
        m_icon.addFile(":/img/Images/PumpDownloadGreyDark.svg", {}, QIcon::Normal, QIcon::Off);
        m_icon.addFile(":/img/Images/PumpDownloadGreyLight.svg", {}, QIcon::Disabled, QIcon::Off);
    }

    QString pluginName() const override { return "EmptyPlugin"; }
    QIcon icon() const override { return m_icon; }

private:
    QIcon m_icon;
};

#include "EmptyPlugin.moc"
