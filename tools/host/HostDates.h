// SPDX-FileCopyrightText: 2026 The Merivo Connections developers
// SPDX-License-Identifier: MIT
#pragma once

#include <QDate>
#include <QLocale>

/// Returns a date in the locale's short format, with a four-digit year, as birthdays of two centuries occur.
inline QString shownDate(const QDate& date)
{
    QString format = QLocale().dateFormat(QLocale::ShortFormat);
    if (!format.contains("yyyy"))
        format.replace("yy", "yyyy");
    return QLocale().toString(date, format);
}
