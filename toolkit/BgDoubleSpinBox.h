// SPDX-FileCopyrightText: 2026 The Merivo Connections developers
// SPDX-License-Identifier: MIT
#pragma once

#include "toolkit/LmDoubleSpinBox.h"

/// A field for blood glucose in one of two units: the whole unit (mg/dl) without decimals in steps of 5, or the decimal
/// unit (mmol/l) with one decimal in steps of 0.5. The initial unit is the whole one, from 0 to 999. GUI thread only.
class BgDoubleSpinBox : public LmDoubleSpinBox
{
    Q_OBJECT
    Q_DISABLE_COPY_MOVE(BgDoubleSpinBox)
    /// The unit. Writing it keeps the range, so that a form sets decimals and range before it.
    Q_PROPERTY(bool decimalUnit READ isDecimalUnit WRITE setDecimalUnit)

public:
    explicit BgDoubleSpinBox(QWidget* parent = nullptr);

    /// Changes to the whole unit with a range in this unit. The value isn't converted, but brought into the range and
    /// rounded to the decimals of the unit.
    void setWholeUnit(double minimum, double maximum);
    /// Changes to the decimal unit with a range in this unit. The value isn't converted, but brought into the range.
    void setDecimalUnit(double minimum, double maximum);
    /// Changes to the decimal or the whole unit without a change of the range.
    void setDecimalUnit(bool decimalUnit);
    bool isDecimalUnit() const;

private:
    void setUnit(double minimum, double maximum, int decimals, double step);

    bool m_decimalUnit = false;
};
