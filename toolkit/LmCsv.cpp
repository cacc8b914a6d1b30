// SPDX-FileCopyrightText: 2026 The Merivo Connections developers
// SPDX-License-Identifier: MIT
#include "toolkit/LmCsv.h"

#include "toolkit/LmBidiText.h"

#include <QDebug>
#include <QLocale>

#include <optional>

namespace {

std::optional<double> numberIn(const QString& item)
{
    QString probe = item;
    probe.remove(QLatin1Char('%'));
    if (probe.contains(QLatin1Char('-'))) {
        // The sign is put aside wherever it stands, so only the magnitude counts.
        probe.replace(LmBidi::RLM, QLatin1Char(' '));
        probe.replace(QLatin1Char('-'), QLatin1Char(' '));
        probe = probe.trimmed();
    }
    bool isNumber = false;
    const double value = QLocale().toDouble(probe, &isNumber);
    return isNumber ? std::make_optional(value) : std::nullopt;
}

QString withoutTrailingSpace(const QString& text)
{
    int length = text.size();
    while (length > 0 && text.at(length - 1).isSpace())
        --length;
    return text.left(length);
}

} // namespace

QString lmFixCsvItem(const QString& item)
{
    QString result = item;
    if (numberIn(item)) {
        const QChar point = QLocale().decimalPoint();
        // Asking the system is slow, and most numbers of an export are whole.
        if (result.contains(point))
            result.replace(point, QLocale::system().decimalPoint());
        return result.remove(LmBidi::RLM);
    }
    for (const char unwanted : {'\n', '\r', '\t'})
        result.remove(QLatin1Char(unwanted));
    result.replace(QLatin1String("\\"), QLatin1String("\\\\"));
    return QLatin1String("=\"") + result + QLatin1Char('"');
}

QString lmFixTextCsvItem(const QString& item, bool blankZero)
{
    QString result = withoutTrailingSpace(item);
    if (result.size() != item.size()) {
        qDebug().noquote()
            << QStringLiteral("lmFixTextCsvItem('%1') --> '%2' (trailing spaces removed)").arg(item, result);
    }
    if (const std::optional<double> number = numberIn(result)) {
        if (blankZero && *number == 0)
            return {};
        return result.remove(LmBidi::RLM);
    }
    result.replace(QLatin1String(".\n"), QLatin1String(". "));
    result.replace(QLatin1Char('\n'), QLatin1Char(' '));
    for (const char unwanted : {'\r', '\t'})
        result.remove(QLatin1Char(unwanted));
    result.replace(QLatin1String("\\"), QLatin1String("\\\\"));
    if (blankZero && result == QLatin1String("-"))
        return {};
    return result;
}
