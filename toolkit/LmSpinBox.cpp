// SPDX-FileCopyrightText: 2026 The Merivo Connections developers
// SPDX-License-Identifier: MIT
#include "toolkit/LmSpinBox.h"

#include "toolkit/LmSpinBoxText.h"

#include <QLocale>

LmSpinBox::LmSpinBox(QWidget* parent)
    : QSpinBox(parent)
{
    setLocale(QLocale());
}

QValidator::State LmSpinBox::validate(QString& input, int& pos) const
{
    lmRemoveSpecialText(*this, input);
    return QSpinBox::validate(input, pos);
}

void LmSpinBox::fixup(QString& input) const
{
    if (specialValueText().isEmpty())
        QSpinBox::fixup(input);
    else
        input = QLocale().toString(minimum());
}
