// SPDX-FileCopyrightText: 2026 The Merivo Connections developers
// SPDX-License-Identifier: MIT
#pragma once

#include <QImage>

/// Returns the smallest rectangle with all pixels of @p image for which @p isWanted returns true.
template <typename Predicate>
QRect boundsOf(const QImage& image, Predicate isWanted)
{
    QRect bounds;
    for (int y = 0; y < image.height(); ++y) {
        for (int x = 0; x < image.width(); ++x) {
            if (isWanted(image.pixel(x, y)))
                bounds |= QRect(x, y, 1, 1);
        }
    }
    return bounds;
}
