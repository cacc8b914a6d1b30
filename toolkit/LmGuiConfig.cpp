// SPDX-FileCopyrightText: 2026 The Merivo Connections developers
// SPDX-License-Identifier: MIT
#include "toolkit/LmGuiConfig.h"

#include <QDate>

namespace {

LmGuiConfig* s_instance = nullptr;

} // namespace

LmGuiConfig::LmGuiConfig(QObject* parent)
    : QObject(parent)
{
    setInstance(this);
}

LmGuiConfig::~LmGuiConfig()
{
    // Whichever config is destroyed, the next instance() creates a default one.
    s_instance = nullptr;
}

LmGuiConfig* LmGuiConfig::instance()
{
    if (!s_instance)
        new LmGuiConfig; // Sets itself as the instance. Never deleted.
    return s_instance;
}

void LmGuiConfig::setInstance(LmGuiConfig* config)
{
    if (!s_instance)
        s_instance = config;
}

QString LmGuiConfig::styleName() const
{
    return QStringLiteral("Fusion");
}

QString LmGuiConfig::dateFormat() const
{
    return QStringLiteral("yyyy-MM-dd");
}

QString LmGuiConfig::timeFormat() const
{
    return QStringLiteral("hh:mm");
}

bool LmGuiConfig::isWeekend(const QDate& date) const
{
    return date.isValid() && date.dayOfWeek() > Qt::Friday;
}

int LmGuiConfig::firstWeekDay() const
{
    return 1;
}
