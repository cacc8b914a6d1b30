// SPDX-FileCopyrightText: 2026 The Merivo Connections developers
// SPDX-License-Identifier: MIT
#include "toolkit/LmText.h"

#include "toolkit/LmGuiConfig.h"

#include <QDateTime>
#include <QLocale>

QString lmLocalizedDate(const QString& format, const QDate& date)
{
    return QLocale().toString(date, format);
}

QString lmLocalizedTime(const QTime& time)
{
    return lmLocalizedTime(LmGuiConfig::instance()->timeFormat(), time);
}

QString lmLocalizedTime(const QString& format, const QTime& time)
{
    return QLocale().toString(time, format);
}

QString lmCapitalized(const QString& text)
{
    return QStringLiteral("%1%2").arg(text.left(1).toUpper(), text.mid(1).toLower());
}
