// SPDX-FileCopyrightText: 2026 The Merivo Connections developers
// SPDX-License-Identifier: MIT
#pragma once

#include <QDoubleSpinBox>

/// A decimal field in the digits and with the decimal point of the default locale, as it is when the field is made or
/// at the last refreshLocale(). GUI thread only.
///
/// It treats its special text as LmSpinBox does, and an empty text is a finished entry.
///
/// A typed separator becomes the field's decimal point. The candidates are, in this order, "*", "#", the default
/// locale's decimal point, the field's group separator, "." and ",", except for the one that is the field's decimal
/// point. The first candidate that the text contains is replaced once, so that each keystroke replaces one character.
/// The keys "1.5" and "1,5" thus yield one and a half in every locale.
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
    /// With a special text, replaces an entry that can't be used by the minimum, to six digits.
    void fixup(QString& input) const override;

    /// Takes over the default locale after it has changed, and writes the value again.
    void refreshLocale();

private:
    void repairSeparator(QString& input) const;
};
