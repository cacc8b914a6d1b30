// SPDX-FileCopyrightText: 2026 The Merivo Connections developers
// SPDX-License-Identifier: MIT
#pragma once

#include <QDoubleSpinBox>

/// A decimal field with the digits and the decimal point of the default locale at construction or at the last
/// refreshLocale(). GUI thread only.
///
/// Handles its special text like LmSpinBox, and accepts an empty text.
///
/// Corrects the decimal separator. On each edit, the first candidate that the text contains is replaced, at its first
/// occurrence, by the decimal point of the field. The candidates are, in this order, "*", "#", the decimal point of the
/// default locale, the group separator of the field, "." and ",", except the decimal point of the field. Typing "1.5"
/// or "1,5" thus enters one and a half in every locale.
///
/// The first four candidates are searched in the whole text, so that neither prefix nor suffix may contain one; "." and
/// "," are searched between prefix and suffix. A field that shows group separators can't be typed into.
class LmDoubleSpinBox : public QDoubleSpinBox
{
    Q_OBJECT
    Q_DISABLE_COPY_MOVE(LmDoubleSpinBox)

public:
    explicit LmDoubleSpinBox(QWidget* parent = nullptr);

    QValidator::State validate(QString& input, int& pos) const override;
    /// With a special text, replaces an entry that isn't acceptable with the minimum, to six digits.
    void fixup(QString& input) const override;

    /// Adopts the default locale after it has changed, and updates the text.
    void refreshLocale();

private:
    void repairSeparator(QString& input) const;
};
