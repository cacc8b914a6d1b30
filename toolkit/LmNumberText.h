// SPDX-FileCopyrightText: 2026 The Merivo Connections developers
// SPDX-License-Identifier: MIT
#pragma once

#include <QString>

/// @file
/// Numbers for users, with the digits, separators and sign of the default locale at the time of the call. Thread-safe.
///
/// Where a function takes them, @p decimals is the number of digits after the point; if it is negative, the value isn't
/// rounded and QString::arg() shows six digits. @p fieldWidth is the minimum number of characters, filled with blanks
/// on the left, or on the right if it is negative. @p format is one of those of QString::arg(): 'e', 'E', 'f', 'F', 'g'
/// or 'G'.

/// Returns @p value rounded to @p decimals digits after the point, or before it if that is negative.
///
/// A half is rounded away from zero, and so is a value less than 0.00001 of the last digit below a half: 1.005, which
/// is stored as slightly less, yields 1.01. The result is never a negative zero.
///
/// The rounding uses an int. A value that doesn't fit into an int with @p decimals digits (beyond ±2147483647 of the
/// last digit: above 21 million with two decimals), an infinity or a NaN is returned unrounded.
double lmRoundTo(double value, int decimals);
/// Returns lmRoundTo(), or @p value unchanged if @p decimals is negative.
double lmRoundToOptional(double value, int decimals);

/// Returns @p value with the group separators of the locale.
QString lmLocalizedInt(int value);
/// Returns lmLocalizedInt() of a text that is an int in the C locale. Returns any other text unchanged.
QString lmLocalizedIntText(const QString& text);

/// Returns the rounded value in the C locale, without group separators, for machines and plain lists.
QString lmPlainDouble(double value, int decimals, int fieldWidth, char format);
/// Returns the rounded value in the locale.
///
/// In Hebrew, and in no other language, a negative value has the minus after the digits and a right-to-left mark before
/// them. Both come in addition to the field width, and are there too if the value rounds to zero.
QString lmLocalizedDouble(double value, int decimals, int fieldWidth, char format);
/// Returns lmLocalizedDouble() without its last character if that is a "0" and @p decimals is greater than 1 and than
/// @p fieldWidth. At most one zero is removed, so that a decimal remains. Zeros of other scripts aren't removed.
QString lmLocalizedDoubleTrimmed(double value, int decimals, int fieldWidth, char format);

/// Returns a duration, which may be negative, as a number without its unit: whole minutes below one hour, hours with
/// one decimal below nine and a half, otherwise whole hours. The unit is chosen before rounding, so that slightly less
/// than an hour is "60".
QString lmDurationText(qint64 nanoseconds);
/// Returns the quotient in the locale, and "inf", "-inf" or "nan" for a denominator of 0.
QString lmRatioText(qint64 numerator, qint64 denominator, int decimals);
