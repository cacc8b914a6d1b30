// SPDX-FileCopyrightText: 2026 The Merivo Connections developers
// SPDX-License-Identifier: MIT
#include "toolkit/LmIconCache.h"

#include <QCache>
#include <QDebug>
#include <QFile>
#include <QFileInfo>
#include <QPainter>
#include <QSvgRenderer>
#include <QXmlStreamReader>

#include <utility>

namespace {

constexpr int MaxImages = 100;

using LmIconCache = QCache<QString, LmIconItem>;

LmIconCache& cache()
{
    static LmIconCache instance(MaxImages);
    return instance;
}

bool isSvg(const QString& path)
{
    return QFileInfo(path).suffix() == QLatin1String("svg");
}

QPicture recordSvg(QSvgRenderer& renderer)
{
    QPicture picture;
    const QRectF rect(QPointF(), renderer.viewBoxF().size());
    if (renderer.isValid()) {
        QPainter painter(&picture);
        // Extends the bounds of the picture to the whole view box, including empty margins.
        painter.fillRect(rect, Qt::transparent);
        renderer.render(&painter, rect);
    }
    return picture;
}

QPicture recordRaster(const QImage& image)
{
    QPicture picture;
    QPainter painter(&picture);
    painter.drawImage(0, 0, image);
    return picture;
}

/// Keeps an SVG as it is now, since its file may change and its resource may be unregistered before its picture is
/// requested. A file is recorded at once because it may refer to other files. For a resource only its bytes are kept,
/// because recording is slow and most pictures are never requested.
void keepSvg(LmIconItem& item)
{
    if (item.path.startsWith(QLatin1String(":/"))) {
        QFile file(item.path);
        if (file.open(QIODevice::ReadOnly))
            item.svg = file.readAll();
    } else {
        QSvgRenderer renderer(item.path);
        item.picture = recordSvg(renderer);
    }
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
    LmIconHandle item(new LmIconItem{path, std::nullopt, QByteArray(), QPicture(), image, QIcon(path), image.size()});
    if (isSvg(path))
        keepSvg(*item);
    return item;
}

QPicture lmPictureOf(LmIconItem& item)
{
    if (!item.picture && isSvg(item.path)) {
        QXmlStreamReader reader(std::exchange(item.svg, {}));
        QSvgRenderer renderer(&reader);
        item.picture = recordSvg(renderer);
    } else if (!item.picture) {
        item.picture = recordRaster(item.image);
    }
    return *item.picture;
}
