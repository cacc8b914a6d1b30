// SPDX-FileCopyrightText: 2026 The Merivo Connections developers
// SPDX-License-Identifier: MIT
#include "toolkit/LmIconCache.h"

#include <QCache>
#include <QDebug>
#include <QFileInfo>
#include <QPainter>
#include <QSvgRenderer>

namespace {

constexpr int MaximumImages = 100;

using LmIconCache = QCache<QString, LmIconItem>;

LmIconCache& cache()
{
    static LmIconCache instance(MaximumImages);
    return instance;
}

QPicture recordPicture(const QString& path)
{
    QPicture picture;
    if (QFileInfo(path).suffix() == QLatin1String("svg")) {
        QSvgRenderer renderer(path);
        const QRectF rect(QPointF(), renderer.viewBoxF().size());
        if (renderer.isValid()) {
            QPainter painter(&picture);
            // Gives the picture the bounds of the whole view box, empty margins included.
            painter.fillRect(rect, Qt::transparent);
            renderer.render(&painter, rect);
        }
        return picture;
    }

    const QImage image(path);
    if (!image.isNull()) {
        QPainter painter(&picture);
        painter.drawImage(0, 0, image);
    }
    return picture;
}

/// A file may change or vanish, so that its picture is recorded together with the image. What is compiled in stays as
/// it is, and can wait until somebody asks: recording a raster image encodes it anew, which takes longer than all the
/// rest.
bool isCompiledIn(const QString& path)
{
    return path.startsWith(QLatin1String(":/"));
}

} // namespace

void LmIconReturn::operator()(LmIconItem* item) const
{
    cache().insert(item->path, item);
}

LmIconHandle lmTakeIconItem(const QString& path)
{
    if (LmIconItem* cached = cache().take(path))
        return LmIconHandle(cached);

    const QImage image = path.isEmpty() ? QImage() : QImage(path);
    if (image.isNull()) {
        qCritical().noquote() << QStringLiteral("icon \"%1\" cannot be loaded").arg(path);
        return nullptr;
    }
    LmIconHandle item(new LmIconItem{path, std::nullopt, QPicture(), image, QIcon(path), image.size()});
    if (!isCompiledIn(path))
        item->picture = recordPicture(path);
    return item;
}

QPicture lmPictureOf(LmIconItem& item)
{
    if (!item.picture)
        item.picture = recordPicture(item.path);
    return *item.picture;
}
