// SPDX-FileCopyrightText: 2026 The Merivo Connections developers
// SPDX-License-Identifier: MIT
#pragma once

#include <QByteArray>
#include <QIcon>
#include <QImage>
#include <QPicture>
#include <QSize>
#include <QString>

#include <memory>
#include <optional>

/// One image in all the forms in which it is handed out. Private to the toolkit.
struct LmIconItem
{
    QString path;                    ///< The key.
    std::optional<QPicture> picture; ///< See lmPictureOf().
    QByteArray svg;                  ///< Of an SVG resource whose picture hasn't been asked for.
    QPicture mirroredPicture;        ///< Made on demand; null before.
    QImage image;                    ///< At natural size.
    QIcon icon;                      ///< Made from the path, and given further pixmaps as sizes are asked for.
    QSize size;                      ///< Natural size of the image.
};

/// Puts an item back into the cache, in place of any other item of its path.
struct LmIconReturn
{
    void operator()(LmIconItem* item) const;
};

/// The exclusive hold of an item outside of the cache: eviction can't delete it during use.
using LmIconHandle = std::unique_ptr<LmIconItem, LmIconReturn>;

/// Takes the item of @p path out of the cache, or loads it. Null, with a critical entry in Qt's log, if there is no
/// readable image.
LmIconHandle lmTakeIconItem(const QString& path);

/// The image recorded as paint commands; null if it is an SVG that can't be rendered.
QPicture lmPictureOf(LmIconItem& item);
