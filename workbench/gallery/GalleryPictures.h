// SPDX-FileCopyrightText: 2026 The Merivo Connections developers
// SPDX-License-Identifier: MIT
#pragma once

#include "workbench/gallery/GalleryPages.h"

/// Writes a PNG of each page, with the windows that it opens below it, into a folder, which is made if there is none.
/// False, with one sentence in @p error, if one can't be written. Shows the pages and their windows for a moment.
bool writeGallery(const QVector<GalleryPage>& pages, const QString& folder, QString* error);
