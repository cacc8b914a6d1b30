// SPDX-FileCopyrightText: 2026 The Merivo Connections developers
// SPDX-License-Identifier: MIT
#include "toolkit/BgDoubleSpinBox.h"

BgDoubleSpinBox::BgDoubleSpinBox(QWidget* parent)
    : LmDoubleSpinBox(parent)
{
    setWholeUnit(0, 999);
}

void BgDoubleSpinBox::setWholeUnit(double minimum, double maximum)
{
    m_decimalUnit = false;
    setUnit(minimum, maximum, 0, 5);
}

void BgDoubleSpinBox::setDecimalUnit(double minimum, double maximum)
{
    m_decimalUnit = true;
    setUnit(minimum, maximum, 1, 0.5);
}

void BgDoubleSpinBox::setDecimalUnit(bool decimalUnit)
{
    if (decimalUnit)
        setDecimalUnit(minimum(), maximum());
    else
        setWholeUnit(minimum(), maximum());
}

bool BgDoubleSpinBox::isDecimalUnit() const
{
    return m_decimalUnit;
}

void BgDoubleSpinBox::setUnit(double minimum, double maximum, int decimals, double step)
{
    setMinimum(minimum);
    setMaximum(maximum);
    setDecimals(decimals);
    setSingleStep(step);
}
