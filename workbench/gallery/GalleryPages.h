// SPDX-FileCopyrightText: 2026 The Merivo Connections developers
// SPDX-License-Identifier: MIT
#pragma once

#include <QString>
#include <QVector>

class QWidget;

/// A group of widgets that belong together, each at work. Its texts are English in any locale; what the toolkit itself
/// writes, numbers, dates and names of days, is in the default locale, which has to be set before.
struct GalleryPage
{
    QString name; ///< Of its picture's file, without the ending.
    QString title;
    QWidget* widget = nullptr;      ///< Without a parent; whoever asked for the page owns it.
    QVector<QWidget*> windows = {}; ///< Menus and windows that the page opens, children of its widget.
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

/// All of them in the order of the window.
QVector<GalleryPage> galleryPages();
