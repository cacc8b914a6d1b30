// SPDX-FileCopyrightText: 2026 The Merivo Connections developers
// SPDX-License-Identifier: MIT
#include "bench/empty-plugin/EmptyPlugin.h"

EmptyPlugin::EmptyPlugin()
{
    m_icon.addFile(QStringLiteral(":/img/Images/PumpDownloadGreyDark.svg"), {}, QIcon::Normal, QIcon::Off);
    m_icon.addFile(QStringLiteral(":/img/Images/PumpDownloadGreyLight.svg"), {}, QIcon::Disabled, QIcon::Off);
}
