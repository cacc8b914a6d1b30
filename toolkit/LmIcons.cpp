// SPDX-FileCopyrightText: 2026 The Merivo Connections developers
// SPDX-License-Identifier: MIT
#include "toolkit/LmIcons.h"

#include "toolkit/LmIconCache.h"

#include <QColor>
#include <QDebug>
#include <QGuiApplication>
#include <QPainter>
#include <QPen>
#include <QSvgRenderer>
#include <QWindow>

#include <cmath>

namespace {

/// Returns the icon of lmIcon(). Sets @p size to the natural size if it was negative, and to (-1, -1) if there is no
/// image.
QIcon iconOfSize(const QString& path, QSize* size)
{
    const LmIconHandle item = lmTakeIconItem(path);
    if (!item) {
        *size = QSize(-1, -1);
        return QIcon();
    }

    if (size->width() < 0 || size->height() < 0) {
        *size = item->size;
        // An icon from the path has this size; actualSize() would render an SVG at a size that may never be shown.
        if (!item->icon.isNull())
            return item->icon;
    }
    if (item->icon.actualSize(*size, QIcon::Normal, QIcon::Off) == *size)
        return item->icon;

    const qreal ratio = lmDevicePixelRatio(nullptr);
    const QSize pixels = *size * ratio;
    if (pixels.isEmpty())
        return item->icon;

    QPixmap pixmap(pixels);
    pixmap.setDevicePixelRatio(ratio);
    pixmap.fill(Qt::transparent);
    QPainter(&pixmap).drawImage(0, 0, item->image);
    item->icon.addPixmap(pixmap, QIcon::Normal, QIcon::Off);
    return item->icon;
}

QPicture recordMirrored(const QString& path)
{
    QPicture picture;
    QSvgRenderer renderer(path);
    const QRectF rect(QPointF(), renderer.viewBoxF().size());
    if (!renderer.isValid())
        return picture;

    QPainter painter(&picture);
    painter.fillRect(rect, Qt::transparent);
    painter.save();
    painter.translate(rect.width() / 2, 0);
    painter.scale(-1, 1);
    painter.translate(-rect.width() / 2, 0);
    renderer.render(&painter, rect);
    painter.restore();
    return picture;
}

template <typename SizesOf>
QIcon colorized(const QIcon& icon, const QColor& color, SizesOf sizesOf)
{
    QIcon result;
    for (const QIcon::Mode mode : {QIcon::Normal, QIcon::Disabled, QIcon::Active, QIcon::Selected}) {
        for (const QIcon::State state : {QIcon::On, QIcon::Off}) {
            for (const QSize& size : sizesOf(mode, state))
                result.addPixmap(lmColorizePixmap(icon.pixmap(size, mode, state), color), mode, state);
        }
    }
    return result;
}

} // namespace

QIcon lmIcon(const QString& path)
{
    return lmIcon(path, -1, -1);
}

QIcon lmIcon(const QString& path, int width, int height)
{
    QSize size(width, height);
    return iconOfSize(path, &size);
}

QPixmap lmPixmap(const QString& path)
{
    return lmPixmap(path, -1, -1);
}

QPixmap lmPixmap(const QString& path, int width, int height)
{
    QSize size(width, height);
    const QIcon icon = iconOfSize(path, &size);
    return icon.pixmap(size, QIcon::Normal, QIcon::Off);
}

QPicture lmPicture(const QString& path)
{
    if (path.isEmpty())
        return QPicture();
    const LmIconHandle item = lmTakeIconItem(path);
    return item ? lmPictureOf(*item) : QPicture();
}

QPicture lmMirroredPicture(const QString& path)
{
    if (path.isEmpty())
        return QPicture();
    const LmIconHandle item = lmTakeIconItem(path);
    if (!item || lmPictureOf(*item).isNull())
        return QPicture();
    if (item->mirroredPicture.isNull())
        item->mirroredPicture = recordMirrored(path);
    return item->mirroredPicture;
}

QPixmap lmColorizePixmap(const QPixmap& pixmap, const QColor& color)
{
    QPixmap result = pixmap;
    if (result.isNull())
        return result;
    QPainter painter(&result);
    painter.setCompositionMode(QPainter::CompositionMode_SourceIn);
    painter.fillRect(result.rect(), color);
    return result;
}

QIcon lmColorizeIcon(const QIcon& icon, const QColor& color)
{
    QIcon result = colorized(
        icon, color, [&icon](QIcon::Mode mode, QIcon::State state) { return icon.availableSizes(mode, state); });
    // A scalable icon lists no sizes.
    if (result.isNull())
        result = colorized(icon, color, [](QIcon::Mode, QIcon::State) { return QList<QSize>{QSize(32, 32)}; });
    if (!result.isNull())
        return result;

    qCritical().nospace() << "icon " << icon.name() << " (isNull = " << icon.isNull() << ") converted to null icon";
    return icon;
}

QRectF lmPaintPicture(QPainter* painter, const QPicture& picture, QPointF anchor, int alignment)
{
    QRectF covered(anchor, QSizeF(picture.boundingRect().size()));
    if (alignment & Qt::AlignLeft) {
        // The anchor is the left edge already.
    } else if (alignment & Qt::AlignRight) {
        covered.moveRight(anchor.x());
    } else {
        covered.moveLeft(anchor.x() - covered.width() / 2);
    }
    if (alignment & Qt::AlignTop) {
        // The anchor is the top edge already.
    } else if (alignment & Qt::AlignBottom) {
        covered.moveBottom(anchor.y());
    } else {
        covered.moveTop(anchor.y() - covered.height() / 2);
    }

    // std::round() rounds negative halves away from zero, unlike qRound(). The right and bottom edges aren't rounded.
    covered.setLeft(std::round(covered.left()));
    covered.setTop(std::round(covered.top()));
    painter->drawPicture(covered.topLeft(), picture);
    return covered;
}

QRectF lmPaintPicture(QPainter* painter, const QPicture& picture, QRectF rect, int alignment)
{
    QPointF anchor = rect.center();
    if (alignment & Qt::AlignLeft)
        anchor.setX(rect.left());
    else if (alignment & Qt::AlignRight)
        anchor.setX(rect.right());
    if (alignment & Qt::AlignTop)
        anchor.setY(rect.top());
    else if (alignment & Qt::AlignBottom)
        anchor.setY(rect.bottom());
    return lmPaintPicture(painter, picture, anchor, alignment);
}

void lmPaintHatched(QPainter* painter, QRectF rect, const QPen& pen)
{
    constexpr qreal Grid = 8;
    const qreal start = rect.x() - std::fmod(rect.x(), Grid);
    const qreal end = start + rect.width() + rect.height() + 2 * Grid;
    const qreal span = rect.height() + 2;

    painter->save();
    painter->setClipRect(rect, Qt::IntersectClip);
    painter->setPen(pen);
    QLineF line(start + 1, rect.y() - 1, start - span + 1, rect.y() + span - 1);
    for (; line.x1() < end; line.translate(Grid, 0))
        painter->drawLine(line);
    painter->restore();
}

qreal lmDevicePixelRatio(QWindow* window)
{
    if (!QCoreApplication::testAttribute(Qt::AA_UseHighDpiPixmaps))
        return 1;
    return window ? window->devicePixelRatio() : qGuiApp->devicePixelRatio();
}
