// SPDX-FileCopyrightText: 2026 The Merivo Connections developers
// SPDX-License-Identifier: MIT
#pragma once

#include <QDoubleSpinBox>

/// A decimal field in the digits and with the decimal point of the default locale, as that is when the field is made or
/// at the last refreshLocale(). GUI thread only.
///
/// It treats its special text as LmSpinBox does, takes an empty text as a finished entry, and mends decimal separators:
/// "*", "#", the default locale's decimal point and the field's own group separator each become the field's decimal
/// point. The first of these that stands in the text, in that order, is replaced at its first place, one at each
/// keystroke. A point on the keypad thus does in German or English; "*" and "#" do in every locale.
///
/// Prefix and suffix are part of the text that is searched, so none of the four may stand in them; and a field that
/// shows group separators can't be typed into.
class LmDoubleSpinBox : public QDoubleSpinBox
{
    Q_OBJECT
    Q_DISABLE_COPY_MOVE(LmDoubleSpinBox)

public:
    explicit LmDoubleSpinBox(QWidget* parent = nullptr);

    QValidator::State validate(QString& input, int& pos) const override;
    /// With a special text, an entry that can't be used becomes the minimum, to six digits.
    void fixup(QString& input) const override;

    /// Takes over the default locale, after that has changed, and writes the value anew.
    void refreshLocale();

private:
    void mendSeparator(QString& input) const;
};
