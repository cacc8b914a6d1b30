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
    mendSeparator(input);
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

void LmDoubleSpinBox::mendSeparator(QString& input) const
{
    const QChar point = locale().decimalPoint();
    for (const QChar candidate : {QChar(u'*'), QChar(u'#'), QLocale().decimalPoint(), locale().groupSeparator()}) {
        const int place = candidate == point ? -1 : input.indexOf(candidate);
        if (place >= 0) {
            input[place] = point;
            return;
        }
    }
}
