// SPDX-FileCopyrightText: 2026 The Merivo Connections developers
// SPDX-License-Identifier: MIT
#pragma once

#include <QString>

class QDate;
class QTime;

/// @file
/// Dates, times of day and names for users, with the words and digits of the default locale at the time of the call.
/// Formats are those of QLocale::toString(). Thread-safe, except for lmLocalizedTime() without a format.

/// Returns @p date in @p format, or an empty text for an invalid date.
QString lmLocalizedDate(const QString& format, const QDate& date);
/// Returns @p time in the format LmGuiConfig::timeFormat(), or an empty text for an invalid time. GUI thread only.
QString lmLocalizedTime(const QTime& time);
/// Returns @p time in @p format, or an empty text for an invalid time.
QString lmLocalizedTime(const QString& format, const QTime& time);

/// Returns @p text with its first character in upper case and all others in lower case, without the rules of a
/// language.
QString lmCapitalized(const QString& text);
