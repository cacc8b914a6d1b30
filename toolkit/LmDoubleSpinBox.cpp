// SPDX-FileCopyrightText: 2026 The Merivo Connections developers
// SPDX-License-Identifier: MIT
#include "toolkit/LmDoubleSpinBox.h"

#include "toolkit/LmSpinBoxText.h"

#include <QLocale>

LmDoubleSpinBox::LmDoubleSpinBox(QWidget* parent)
    : QDoubleSpinBox(parent)
{
    setLocale(QLocale());
}

QValidator::State LmDoubleSpinBox::validate(QString& input, int& pos) const
{
    lmRemoveSpecialText(*this, input);
    if (input.isEmpty())
        return QValidator::Acceptable;
    repairSeparator(input);
    return QDoubleSpinBox::validate(input, pos);
}

void LmDoubleSpinBox::fixup(QString& input) const
{
    if (specialValueText().isEmpty())
        QDoubleSpinBox::fixup(input);
    else
        input = QLocale().toString(minimum(), 'g', 6);
}

void LmDoubleSpinBox::refreshLocale()
{
    setLocale(QLocale());
    setValue(value());
}

void LmDoubleSpinBox::repairSeparator(QString& input) const
{
    const QChar point = locale().decimalPoint();
    const auto replaceFirst = [&input, point](QChar candidate, int from, int to) {
        const int place = candidate == point ? -1 : input.indexOf(candidate, from);
        const bool isFound = place >= 0 && place < to;
        if (isFound)
            input[place] = point;
        return isFound;
    };
    for (const QChar candidate : {QChar(u'*'), QChar(u'#'), QLocale().decimalPoint(), locale().groupSeparator()}) {
        if (replaceFirst(candidate, 0, input.size()))
            return;
    }
    // These are searched only between prefix and suffix, since units and abbreviations can contain points.
    const int from = input.startsWith(prefix()) ? prefix().size() : 0;
    const int to = input.size() - (input.endsWith(suffix()) ? suffix().size() : 0);
    if (!replaceFirst(QChar(u'.'), from, to))
        replaceFirst(QChar(u','), from, to);
}
