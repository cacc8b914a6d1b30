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
/// Images of files and resources, through one cache of the last 100 used ones, and small painting helpers. GUI thread
/// only.
///
/// An image that can't be read gives a null result and a critical entry in Qt's log. The failure isn't cached: the next
/// request tries the file again.

/// The image at its natural size.
QIcon lmIcon(const QString& path);
/// The image as an icon that has a pixmap of @p width by @p height for the normal, off state; a negative width or
/// height stands for the natural size. Where the icon can't scale itself to just this size, the image is set at its
/// natural scale in the upper left corner of a transparent pixmap.
QIcon lmIcon(const QString& path, int width, int height);

/// The normal, off pixmap of lmIcon() with the same arguments.
QPixmap lmPixmap(const QString& path);
QPixmap lmPixmap(const QString& path, int width, int height);

/// The image as paint commands: sharp at any scale if it is an SVG, that is if the path ends in ".svg" in small
/// letters. Null, without an entry in the log, for an empty path; null too for an SVG that can't be rendered.
QPicture lmPicture(const QString& path);
/// The same flipped left to right, for right-to-left layouts. Only an SVG has this form; any other image gives null.
QPicture lmMirroredPicture(const QString& path);

/// @p pixmap with everything in @p color; the transparency stays.
QPixmap lmColorizePixmap(const QPixmap& pixmap, const QColor& color);
/// All pixmaps of @p icon colorized, for each mode and state; 32 by 32 pixels where the icon only scales. An icon that
/// gives no pixmaps comes back as it is, with a critical entry in Qt's log.
QIcon lmColorizeIcon(const QIcon& icon, const QColor& color);

/// Draws @p picture on an active painter with the edge, corner or middle that @p alignment (of Qt::Alignment) names at
/// @p anchor. Left and top go before right and bottom; whatever isn't named is centred. The upper left corner is
/// rounded to whole numbers. Returns the rectangle that the picture covers.
QRectF lmPaintPicture(QPainter* painter, const QPicture& picture, QPointF anchor, int alignment);
/// The same, aligned within @p rect.
QRectF lmPaintPicture(QPainter* painter, const QPicture& picture, QRectF rect, int alignment);

/// Fills @p rect with diagonals 8 apart that fall to the left. They stand on a grid of 8 from x = 0, so that areas side
/// by side line up.
void lmPaintHatched(QPainter* painter, QRectF rect, const QPen& pen);

/// Device pixels per logical pixel of @p window, or of the application's sharpest screen if that is null; always 1
/// unless the application has set Qt::AA_UseHighDpiPixmaps.
qreal lmDevicePixelRatio(QWindow* window);
