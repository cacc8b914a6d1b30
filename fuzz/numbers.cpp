// SPDX-FileCopyrightText: 2026 The Merivo Connections developers
// SPDX-License-Identifier: MIT

// Numbers: a value, its decimals, its field's width, a whole number, then the locale's name.

#include "fuzz/Target.h"
#include "toolkit/LmNumberText.h"

#include <QLocale>

#include <cmath>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    silenceLog();
    Input input(data, size);
    const auto value = input.take<double>();
    const auto decimals = input.take<std::int8_t>();
    const auto width = input.take<std::int8_t>();
    const auto whole = input.take<qint64>();
    QLocale::setDefault(QLocale(input.takeText()));

    const double rounded = lmRoundTo(value, decimals);
    require(std::isnan(value) == std::isnan(rounded), "a number stays a number");
    if (std::isfinite(value)) {
        const double step = std::pow(10.0, -decimals);
        require(std::abs(rounded - value) <= 0.5001 * step + 1e-9 * std::abs(value), "half a step away at most");
    }
    const QString text = lmLocalizedDouble(value, decimals, width, 'f');
    require(text.size() >= std::abs(width), "a field is filled");
    const QString trimmed = lmLocalizedDoubleTrimmed(value, decimals, width, 'f');
    require(trimmed == text || trimmed + QLatin1Char('0') == text, "one zero at most is trimmed");
    if (decimals >= 0)
        require(lmPlainDouble(value, decimals, 0, 'f').toDouble() == 0 || value != 0, "nothing stays nothing");
    require(!lmDurationText(whole).isEmpty() && !lmRatioText(whole, decimals, 2).isEmpty(), "a number has a text");
    return 0;
}
