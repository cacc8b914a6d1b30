// SPDX-FileCopyrightText: 2026 The Merivo Connections developers
// SPDX-License-Identifier: MIT
#include "toolkit/LmCsv.h"

#include "toolkit/LmBidiText.h"

#include <QDebug>
#include <QLocale>

#include <optional>

namespace {

std::optional<double> numberIn(const QString& item, const QLocale& locale)
{
    QString probe = item;
    probe.remove(QLatin1Char('%'));
    if (probe.contains(QLatin1Char('-'))) {
        // The sign is ignored wherever it is, so that the result is the magnitude.
        probe.replace(LmBidi::RLM, QLatin1Char(' '));
        probe.replace(QLatin1Char('-'), QLatin1Char(' '));
        probe = probe.trimmed();
    }
    bool isNumber = false;
    const double value = locale.toDouble(probe, &isNumber);
    return isNumber ? std::make_optional(value) : std::nullopt;
}

/// Appends @p text without line ends and tabs and with each backslash doubled.
void appendLine(QString& result, const QString& text)
{
    result.reserve(result.size() + text.size() + 1);
    for (const QChar character : text) {
        if (character == QLatin1Char('\n') || character == QLatin1Char('\r') || character == QLatin1Char('\t'))
            continue;
        result += character;
        if (character == QLatin1Char('\\'))
            result += character;
    }
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
    const QLocale locale;
    if (numberIn(item, locale)) {
        QString number = item;
        const QChar point = locale.decimalPoint();
        // QLocale::system() is slow, and many numbers of an export are whole.
        if (number.contains(point))
            number.replace(point, QLocale::system().decimalPoint());
        return number.remove(LmBidi::RLM);
    }
    QString formula = QStringLiteral("=\"");
    appendLine(formula, item);
    return formula += QLatin1Char('"');
}

QString lmFixTextCsvItem(const QString& item, bool blankZero)
{
    QString result = withoutTrailingSpace(item);
    if (result.size() != item.size()) {
        qDebug().noquote()
            << QStringLiteral("lmFixTextCsvItem('%1') --> '%2' (trailing spaces removed)").arg(item, result);
    }
    if (const std::optional<double> number = numberIn(result, QLocale())) {
        if (blankZero && *number == 0)
            return {};
        return result.remove(LmBidi::RLM);
    }
    result.replace(QLatin1Char('\n'), QLatin1Char(' '));
    QString line;
    appendLine(line, result);
    return blankZero && line == QLatin1String("-") ? QString() : line;
}
