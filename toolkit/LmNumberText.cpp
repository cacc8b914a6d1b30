// SPDX-FileCopyrightText: 2026 The Merivo Connections developers
// SPDX-License-Identifier: MIT
#include "toolkit/LmNumberText.h"

#include "toolkit/LmBidiText.h"

#include <QLocale>

#include <array>
#include <cmath>
#include <limits>

namespace {

/// Reads usual powers from a table, because std::pow() takes several times as long as the rest of lmRoundTo(), and some
/// C libraries return an inexact result for a negative exponent. With a larger power only tiny values fit into an int.
double powerOfTen(int exponent)
{
    static constexpr std::array<double, 10> Powers{1e0, 1e1, 1e2, 1e3, 1e4, 1e5, 1e6, 1e7, 1e8, 1e9};
    constexpr int Size = Powers.size();
    if (exponent >= 0 && exponent < Size)
        return Powers[static_cast<std::size_t>(exponent)];
    if (exponent < 0 && exponent > -Size)
        return 1 / Powers[static_cast<std::size_t>(-exponent)];
    return std::pow(10.0, exponent);
}

QString filled(const QString& pattern, double value, int decimals, int fieldWidth, char format)
{
    return pattern.arg(lmRoundToOptional(value, decimals), fieldWidth, format, decimals, QLatin1Char(' '));
}

} // namespace

double lmRoundTo(double value, int decimals)
{
    // Exclusive limits of qRound(), which adds 0.5 to a positive value and subtracts 1 from a negative one.
    constexpr double MinScaled = std::numeric_limits<int>::min();
    constexpr double MaxScaled = std::numeric_limits<int>::max() + 0.5;

    const double scale = powerOfTen(decimals);
    const double nudge = value > 0 ? 0.00001 : -0.00001;
    const double scaled = value * scale + nudge;
    // Outside of the limits the conversion is undefined, and the value is the closest result. The comparisons are
    // written so that a NaN is outside too.
    const bool representable = scaled > MinScaled && scaled < MaxScaled;
    return representable ? qRound(scaled) / scale : value;
}

double lmRoundToOptional(double value, int decimals)
{
    return decimals < 0 ? value : lmRoundTo(value, decimals);
}

QString lmLocalizedInt(int value)
{
    return QStringLiteral("%L1").arg(value);
}

QString lmLocalizedIntText(const QString& text)
{
    bool isNumber = false;
    const int value = text.toInt(&isNumber, 10);
    return isNumber ? lmLocalizedInt(value) : text;
}

QString lmPlainDouble(double value, int decimals, int fieldWidth, char format)
{
    return filled(QStringLiteral("%1"), value, decimals, fieldWidth, format);
}

QString lmLocalizedDouble(double value, int decimals, int fieldWidth, char format)
{
    // Not cached, since an application may change the default locale at any time.
    if (value < 0 && QLocale().language() == QLocale::Hebrew)
        return filled(LmBidi::RLM + QStringLiteral("%L1-"), -value, decimals, fieldWidth, format);
    return filled(QStringLiteral("%L1"), value, decimals, fieldWidth, format);
}

QString lmLocalizedDoubleTrimmed(double value, int decimals, int fieldWidth, char format)
{
    QString text = lmLocalizedDouble(value, decimals, fieldWidth, format);
    if (decimals > qMax(fieldWidth, 1) && text.endsWith(QLatin1Char('0')))
        text.chop(1);
    return text;
}

QString lmDurationText(qint64 nanoseconds)
{
    constexpr qint64 Minute = 60'000'000'000;
    constexpr qint64 Hour = 60 * Minute;
    constexpr qint64 WholeHours = 9 * Hour + 30 * Minute;

    const auto within = [nanoseconds](qint64 limit) {
        return nanoseconds > -limit && nanoseconds < limit;
    };
    const qint64 unit = within(Hour) ? Minute : Hour;
    const int decimals = !within(Hour) && within(WholeHours) ? 1 : 0;
    return lmRatioText(nanoseconds, unit, decimals);
}

QString lmRatioText(qint64 numerator, qint64 denominator, int decimals)
{
    const double quotient = static_cast<double>(numerator) / static_cast<double>(denominator);
    return lmLocalizedDouble(quotient, decimals, 0, 'f');
}
