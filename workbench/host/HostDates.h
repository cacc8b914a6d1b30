// SPDX-FileCopyrightText: 2026 The Merivo Connections developers
// SPDX-License-Identifier: MIT
#pragma once

#include <QDate>
#include <QLocale>

/// The date as this host shows dates: the locale's short form, with the whole year, since two digits of a birthday say
/// nothing of the century.
inline QString shownDate(const QDate& date)
{
    QString format = QLocale().dateFormat(QLocale::ShortFormat);
    if (!format.contains("yyyy"))
        format.replace("yy", "yyyy");
    return QLocale().toString(date, format);
}
