// SPDX-FileCopyrightText: 2026 The Merivo Connections developers
// SPDX-License-Identifier: MIT
#pragma once

#include <QIcon>
#include <QPicture>
#include <QPixmap>
#include <QPointF>
#include <QRectF>

class QColor;
class QPainter;
class QPen;
class QString;
class QWindow;

/// @file
/// Images of files and resources, through a cache of the 100 most recently used ones, and helpers for painting. GUI
/// thread only.
///
/// An image that can't be read yields a null result and a critical entry in Qt's log. The failure isn't cached: the
/// next request reads the file again.

/// Returns the image at its natural size.
QIcon lmIcon(const QString& path);
/// Returns the image as an icon that has a pixmap of @p width by @p height for QIcon::Normal and QIcon::Off. A negative
/// width or height means the natural size. If the icon can't scale itself to this size, the image is painted at its
/// natural size in the upper left corner of a transparent pixmap.
QIcon lmIcon(const QString& path, int width, int height);

/// Returns the pixmap of lmIcon() for QIcon::Normal and QIcon::Off at the natural size of the image.
QPixmap lmPixmap(const QString& path);
/// Returns the pixmap of lmIcon() for QIcon::Normal and QIcon::Off, with @p width and @p height as in lmIcon().
QPixmap lmPixmap(const QString& path, int width, int height);

/// Returns the image as it was loaded, as paint commands. A path that ends in ".svg", in lower case, yields a
/// picture that is sharp at any scale. Returns a null picture for an SVG that can't be rendered and, without an entry
/// in the log, for an empty path.
QPicture lmPicture(const QString& path);
/// Returns an SVG as paint commands, flipped left to right for right-to-left layouts. Returns a null picture for any
/// other image, and whenever lmPicture() does.
QPicture lmMirroredPicture(const QString& path);

/// Returns @p pixmap with all of its pixels in @p color and their alpha unchanged.
QPixmap lmColorizePixmap(const QPixmap& pixmap, const QColor& color);
/// Returns @p icon with all pixmaps of each mode and state colorized. An icon that only scales gets pixmaps of 32
/// by 32. Returns @p icon unchanged, with a critical entry in Qt's log, if it has no pixmaps.
QIcon lmColorizeIcon(const QIcon& icon, const QColor& color);

/// Draws @p picture with the edge, corner or middle that @p alignment (Qt::Alignment) names at @p anchor, and returns
/// the rectangle that it covers.
///
/// Left wins over right and top over bottom; a direction without an edge is centred. The upper left corner is rounded
/// to whole numbers. The painter must be active.
QRectF lmPaintPicture(QPainter* painter, const QPicture& picture, QPointF anchor, int alignment);
/// Draws @p picture at the edge, corner or middle of @p rect that @p alignment (Qt::Alignment) names, and returns the
/// rectangle that it covers. Otherwise it is like the overload with an anchor.
QRectF lmPaintPicture(QPainter* painter, const QPicture& picture, QRectF rect, int alignment);

/// Fills @p rect with diagonal lines at a distance of 8 that fall to the left. The lines are on a grid of 8 from x = 0,
/// so that those of adjacent areas meet.
void lmPaintHatched(QPainter* painter, QRectF rect, const QPen& pen);

/// Returns the device pixels per logical pixel of @p window, or of the screen with the highest ratio if it is null.
/// Returns 1 if the application doesn't set Qt::AA_UseHighDpiPixmaps.
qreal lmDevicePixelRatio(QWindow* window);
