// SPDX-FileCopyrightText: 2026 The Merivo Connections developers
// SPDX-License-Identifier: MIT
#pragma once

#include <QString>

/// Removes every occurrence of the special text of @p box from @p input, unless the special text is the prefix. Private
/// to the toolkit.
template <typename SpinBox>
void lmRemoveSpecialText(const SpinBox& box, QString& input)
{
    const QString special = box.specialValueText();
    if (!special.isEmpty() && special != box.prefix())
        input.remove(special);
}
