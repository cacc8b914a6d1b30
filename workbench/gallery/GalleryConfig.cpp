// SPDX-FileCopyrightText: 2026 The Merivo Connections developers
// SPDX-License-Identifier: MIT
#include "workbench/gallery/GalleryConfig.h"

#include <QDate>
#include <QLocale>

bool GalleryConfig::isWeekend(const QDate& date) const
{
    return date.isValid() && !QLocale().weekdays().contains(static_cast<Qt::DayOfWeek>(date.dayOfWeek()));
}

int GalleryConfig::firstWeekDay() const
{
    return QLocale().firstDayOfWeek() - Qt::Monday;
}
