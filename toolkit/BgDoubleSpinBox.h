// SPDX-FileCopyrightText: 2026 The Merivo Connections developers
// SPDX-License-Identifier: MIT
#pragma once

#include "toolkit/LmDoubleSpinBox.h"

/// A field for blood glucose, which has two units: one in whole numbers (mg/dl), in steps of 5, and one with a decimal
/// (mmol/l), in steps of 0.5. Begins with the whole unit, from 0 to 999. GUI thread only.
class BgDoubleSpinBox : public LmDoubleSpinBox
{
    Q_OBJECT
    Q_DISABLE_COPY_MOVE(BgDoubleSpinBox)

public:
    explicit BgDoubleSpinBox(QWidget* parent = nullptr);

    /// Goes over to that unit with a range given in it. The value isn't converted: it stays a number, brought into the
    /// new range and rounded to the new decimals.
    void setWholeUnit(double minimum, double maximum);
    void setDecimalUnit(double minimum, double maximum);
    bool isDecimalUnit() const;

private:
    void setUnit(double minimum, double maximum, int decimals, double step);

    bool m_decimalUnit = false;
};
