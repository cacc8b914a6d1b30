// SPDX-FileCopyrightText: 2026 The Merivo Connections developers
// SPDX-License-Identifier: MIT
#pragma once

#include <QImage>
#include <QPainter>

/// Returns an image of @p size, filled with @p ground, on which @p paint has painted.
template <typename Paint>
QImage imageOf(const QSize& size, const QColor& ground, Paint paint)
{
    QImage image(size, QImage::Format_ARGB32_Premultiplied);
    image.fill(ground);
    QPainter painter(&image);
    paint(painter);
    return image;
}

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
