// SPDX-FileCopyrightText: 2026 The Merivo Connections developers
// SPDX-License-Identifier: MIT

// CSV fields: a byte that chooses the locale, then the field.

#include "fuzz/Target.h"
#include "toolkit/LmBidiText.h"
#include "toolkit/LmCsv.h"

#include <QLocale>

#include <array>

namespace {

constexpr std::array<const char*, 8> Locales{"en_GB", "de_DE", "he_IL", "ar_EG", "fa_IR", "hi_IN", "fr_CH", "nb_NO"};

/// The text within ="...", with its backslashes halved.
QString unquoted(const QString& formula)
{
    const QString text = formula.mid(2, formula.size() - 3);
    QString plain;
    for (int i = 0; i < text.size(); ++i) {
        plain += text.at(i);
        if (text.at(i) == QLatin1Char('\\'))
            require(++i < text.size() && text.at(i) == QLatin1Char('\\'), "backslashes come in pairs");
    }
    return plain;
}

void checkFormula(const QString& item, const QString& formula)
{
    require(formula.size() > 2 && formula.endsWith(QLatin1Char('"')), "a formula is whole");
    QString kept = item;
    for (const char control : {'\n', '\r', '\t'})
        kept.remove(QLatin1Char(control));
    require(unquoted(formula) == kept, "a formula has all of the text but line ends and tabs");
}

void checkNumber(const QString& item, const QString& number)
{
    require(!number.contains(LmBidi::RLM), "a number has no marks");
    QString same = item;
    require(same.remove(LmBidi::RLM).size() == number.size(), "a number keeps its length");
    const QString again = number.trimmed();
    if (QLocale().decimalPoint() == QLocale::system().decimalPoint() && again == number)
        require(lmFixTextCsvItem(again, false) == number, "a number stays one");
}

void checkLine(const QString& item, const QString& line, const QString& blanked)
{
    require(blanked == line || blanked.isEmpty(), "a field is blanked whole or not at all");
    if (lmFixCsvItem(item.trimmed()).startsWith(QLatin1Char('='))) {
        for (const char control : {'\n', '\r', '\t'})
            require(!line.contains(QLatin1Char(control)), "a text stands in one line");
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    silenceLog();
    Input input(data, size);
    QLocale::setDefault(QLocale(QLatin1String(Locales.at(input.take<std::uint8_t>() % Locales.size()))));
    const QString item = input.takeText();

    const QString field = lmFixCsvItem(item);
    if (field.startsWith(QLatin1String("=\"")))
        checkFormula(item, field);
    else
        checkNumber(item, field);
    checkLine(item, lmFixTextCsvItem(item, false), lmFixTextCsvItem(item, true));
    return 0;
}
