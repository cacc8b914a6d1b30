// SPDX-FileCopyrightText: 2026 The Merivo Connections developers
// SPDX-License-Identifier: MIT
#pragma once

#include <QSpinBox>

/// A whole-number field in the digits of the default locale, as that is when the field is made. GUI thread only.
///
/// With a special text (QSpinBox::specialValueText()) a user may type straight into it or behind it: it is taken out of
/// what was typed wherever it stands. A special text that is just the prefix is left alone.
class LmSpinBox : public QSpinBox
{
    Q_OBJECT
    Q_DISABLE_COPY_MOVE(LmSpinBox)

public:
    explicit LmSpinBox(QWidget* parent = nullptr);

    QValidator::State validate(QString& input, int& pos) const override;
    /// With a special text, an entry that can't be used becomes the minimum, which the special text stands for.
    void fixup(QString& input) const override;
};
