// SPDX-FileCopyrightText: 2026 The Merivo Connections developers
// SPDX-License-Identifier: MIT
#pragma once

#include <QSpinBox>

/// A field for whole numbers in the digits of the default locale at construction. GUI thread only.
///
/// With a special text, QSpinBox::specialValueText(), a user may type into it or after it: it is removed from the input
/// wherever it appears. A special text that equals the prefix isn't removed.
class LmSpinBox : public QSpinBox
{
    Q_OBJECT
    Q_DISABLE_COPY_MOVE(LmSpinBox)

public:
    explicit LmSpinBox(QWidget* parent = nullptr);

    QValidator::State validate(QString& input, int& pos) const override;
    /// With a special text, replaces an entry that isn't acceptable with the minimum, which the special text
    /// represents.
    void fixup(QString& input) const override;
};
