// SPDX-FileCopyrightText: 2026 The Merivo Connections developers
// SPDX-License-Identifier: MIT

// CSV fields: a byte that selects the locale, and the field.

#include "fuzz/Target.h"
#include "toolkit/LmBidiText.h"
#include "toolkit/LmCsv.h"

#include <QLocale>

#include <array>

namespace {

constexpr std::array<const char*, 8> Locales{"en_GB", "de_DE", "he_IL", "ar_EG", "fa_IR", "hi_IN", "fr_CH", "nb_NO"};

/// Returns the text within ="..." with single backslashes.
QString unquoted(const QString& formula)
{
    const QString text = formula.mid(2, formula.size() - 3);
    QString plain;
    for (int i = 0; i < text.size(); ++i) {
        plain += text.at(i);
        if (text.at(i) == '\\')
            require(++i < text.size() && text.at(i) == '\\', "backslashes come in pairs");
    }
    return plain;
}

void checkFormula(const QString& item, const QString& formula)
{
    require(formula.size() > 2 && formula.endsWith('"'), "a formula is complete");
    QString kept = item;
    for (const char control : {'\n', '\r', '\t'})
        kept.remove(QLatin1Char(control));
    require(unquoted(formula) == kept, "a formula has the whole text except line ends and tabs");
}

void checkNumber(const QString& item, const QString& number)
{
    require(!number.contains(LmBidi::RLM), "a number has no marks");
    QString same = item;
    require(same.remove(LmBidi::RLM).size() == number.size(), "a number keeps its length");
    const QString again = number.trimmed();
    if (QLocale().decimalPoint() == QLocale::system().decimalPoint() && again == number)
        require(lmFixTextCsvItem(again, false) == number, "a number stays a number");
}

void checkLine(const QString& item, const QString& line, const QString& blanked)
{
    require(blanked == line || blanked.isEmpty(), "a field is blanked entirely or not at all");
    if (lmFixCsvItem(item.trimmed()).startsWith('=')) {
        for (const char control : {'\n', '\r', '\t'})
            require(!line.contains(QLatin1Char(control)), "a text is one line");
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const QByteArray bytes = inputOf(data, size);
    const std::size_t locale = bytes.isEmpty() ? 0 : static_cast<std::uint8_t>(bytes.at(0)) % Locales.size();
    QLocale::setDefault(QLocale(Locales.at(locale)));
    const QString item = QString::fromUtf8(bytes.mid(1));

    const QString field = lmFixCsvItem(item);
    if (field.startsWith("=\""))
        checkFormula(item, field);
    else
        checkNumber(item, field);
    checkLine(item, lmFixTextCsvItem(item, false), lmFixTextCsvItem(item, true));
    return 0;
}
