// SPDX-FileCopyrightText: 2026 The Merivo Connections developers
// SPDX-License-Identifier: MIT
#pragma once

#include <QString>

/// @file
/// Numbers as a user reads them: in the digits, with the separators and the sign of the default locale, which is asked
/// at each call. Safe on any thread.
///
/// Where an operation takes them, @p decimals is the number of digits behind the point; a negative one leaves the value
/// unrounded and the choice to QString::arg(), which then shows six. @p fieldWidth is the least number of characters,
/// made up with blanks on the left, or on the right if it is negative. @p format is one of QString::arg()'s: 'e', 'E',
/// 'f', 'F', 'g' or 'G'.

/// @p value rounded to @p decimals digits behind the point, or before it if that is negative. A half goes away from
/// zero, and so does what lies less than 0.00001 of the last kept digit below a half: 1.005 is stored as slightly less
/// and still gives 1.01. Never gives a negative zero.
///
/// The rounding passes through an int. A value that with @p decimals digits doesn't fit into one (beyond ±2147483647 of
/// the last kept digit: above 21 million with two decimals), an infinity or a NaN comes back unrounded.
double lmRoundTo(double value, int decimals);
/// lmRoundTo(), or @p value as it is if @p decimals is negative.
double lmRoundToOptional(double value, int decimals);

/// @p value with the locale's group separators.
QString lmLocalizedInt(int value);
/// lmLocalizedInt() of a text that is an int in plain decimal digits; any other text comes back as it is.
QString lmLocalizedIntText(const QString& text);

/// The rounded value for a machine or a plain list: digits, point and sign of the C locale, no group separators.
QString lmPlainDouble(double value, int decimals, int fieldWidth, char format);
/// The rounded value in the locale. In Hebrew, and there alone, the minus stands behind the digits and a right-to-left
/// mark before them, both on top of the field's width; a value that rounds to zero from below has them too.
QString lmLocalizedDouble(double value, int decimals, int fieldWidth, char format);
/// lmLocalizedDouble() without its last character if that is a "0" and @p decimals is above both 1 and @p fieldWidth:
/// one zero at most, so that a decimal stays. Only the digit "0" counts, not the zeros of other scripts.
QString lmLocalizedDoubleTrimmed(double value, int decimals, int fieldWidth, char format);

/// A span of time, which may be negative, as a number without its unit: whole minutes below one hour, hours with one
/// decimal below nine and a half, whole hours from there on. The unit is chosen ahead of the rounding, so just below an
/// hour is "60".
QString lmDurationText(qint64 nanoseconds);
/// The quotient in the locale; "inf", "-inf" or "nan" for a denominator of 0.
QString lmRatioText(qint64 numerator, qint64 denominator, int decimals);
