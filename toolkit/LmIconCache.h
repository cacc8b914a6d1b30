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

/// One image in all forms that callers can request. Private to the toolkit.
struct LmIconItem
{
    QString path;                    ///< The key.
    std::optional<QPicture> picture; ///< See lmPictureOf().
    QByteArray svg;                  ///< Of an SVG resource whose picture hasn't been requested.
    QPicture mirroredPicture;        ///< Recorded on demand; null before.
    QImage image;                    ///< At natural size.
    QIcon icon;                      ///< From the path, with further pixmaps for requested sizes.
    QSize size;                      ///< Natural size of the image.
};

/// Puts an item back into the cache, where it replaces any other item of its path.
struct LmIconReturn
{
    void operator()(LmIconItem* item) const;
};

/// Owns an item outside of the cache, so that it can't be evicted while it is used.
using LmIconHandle = std::unique_ptr<LmIconItem, LmIconReturn>;

/// Takes the item of @p path out of the cache, or loads it. Returns null, with a critical entry in Qt's log, if there
/// is no readable image.
LmIconHandle lmTakeIconItem(const QString& path);

/// Returns the loaded image as paint commands, or null if it is an SVG that can't be rendered.
QPicture lmPictureOf(LmIconItem& item);
