// SPDX-FileCopyrightText: 2026 The Merivo Connections developers
// SPDX-License-Identifier: MIT
#pragma once

#include <QString>
#include <QVector>

class QWidget;

/// A group of related widgets. The labels are English in any locale; numbers, dates and names of days are in the
/// default locale, which must be set before.
struct GalleryPage
{
    QString name; ///< File name of its picture, without the extension.
    QString title;
    QWidget* widget = nullptr;      ///< Without a parent; owned by the caller.
    QVector<QWidget*> windows = {}; ///< Menus and windows that the page opens; children of its widget.
};

GalleryPage numbersPage();
GalleryPage datesPage();
GalleryPage monthsPage();
GalleryPage listsPage();
GalleryPage menusPage();
GalleryPage progressPage();
GalleryPage buttonsPage();
GalleryPage picturesPage();
GalleryPage messagesPage();

/// Returns all pages in their order in the window.
QVector<GalleryPage> galleryPages();
