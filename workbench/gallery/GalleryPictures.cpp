// SPDX-FileCopyrightText: 2026 The Merivo Connections developers
// SPDX-License-Identifier: MIT
#include "workbench/gallery/GalleryPictures.h"

#include <QCoreApplication>
#include <QDir>
#include <QImageWriter>
#include <QMenu>
#include <QPainter>

namespace {

constexpr int Gap = 16;

QImage imageOf(QWidget* widget)
{
    const bool wasVisible = widget->isVisible();
    if (auto* const menu = qobject_cast<QMenu*>(widget)) {
        menu->popup(QPoint());
    } else {
        widget->adjustSize();
        widget->show();
    }
    QCoreApplication::processEvents();
    const QImage image = widget->grab().toImage();
    widget->setVisible(wasVisible);
    return image;
}

QImage imageOf(const GalleryPage& page)
{
    page.widget->show();
    QVector<QImage> parts{imageOf(page.widget)};
    for (QWidget* window : page.windows)
        parts.append(imageOf(window));
    // In logical pixels; the images have all of the device's.
    const qreal ratio = parts.constFirst().devicePixelRatio();
    QSize size;
    for (const QImage& part : qAsConst(parts)) {
        const QSize partSize = part.size() / ratio;
        size = QSize(qMax(size.width(), partSize.width()), size.height() + partSize.height() + Gap);
    }

    QImage picture((size + QSize(2 * Gap, Gap)) * ratio, QImage::Format_RGB32);
    picture.setDevicePixelRatio(ratio);
    picture.fill(QColor(200, 200, 200));
    QPainter painter(&picture);
    QPoint corner(Gap, Gap);
    for (const QImage& part : qAsConst(parts)) {
        painter.drawImage(corner, part);
        corner.ry() += (part.size() / ratio).height() + Gap;
    }
    return picture;
}

} // namespace

bool writeGallery(const QVector<GalleryPage>& pages, const QString& folder, QString* error)
{
    if (!QDir().mkpath(folder)) {
        *error = QString("can't make the folder %1").arg(folder);
        return false;
    }
    for (const GalleryPage& page : pages) {
        QImageWriter writer(QString("%1/%2.png").arg(folder, page.name));
        if (!writer.write(imageOf(page))) {
            *error = QString("can't write %1: %2").arg(writer.fileName(), writer.errorString());
            return false;
        }
    }
    return true;
}
