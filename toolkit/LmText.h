// SPDX-FileCopyrightText: 2026 The Merivo Connections developers
// SPDX-License-Identifier: MIT
#pragma once

#include <QString>

class QDate;
class QTime;

/// @file
/// Dates, times of day and names as a user reads them, in the words and digits of the default locale, which is asked at
/// each call. Formats are those of QLocale::toString(). An invalid date or time gives an empty text.

QString lmLocalizedDate(const QString& format, const QDate& date);
/// In the format of LmGuiConfig::timeFormat(), and like that on the GUI thread only. The others are safe on any thread.
QString lmLocalizedTime(const QTime& time);
QString lmLocalizedTime(const QString& format, const QTime& time);

/// The first character of @p text in capitals and all others in small letters, by the rules of no particular language.
QString lmCapitalized(const QString& text);
