// SPDX-FileCopyrightText: 2026 The Merivo Connections developers
// SPDX-License-Identifier: MIT
#pragma once

#include <QStackedWidget>
#include <QTabWidget>

/// @file
/// Widgets of several pages with names of their own, so that a style sheet can address them. GUI thread only.

/// A QTabWidget that resets the style of its tab bar before it is destroyed. An application may set a proxy style for a
/// single tab bar, and may delete that style before or after the tab bar.
class LmTabWidget : public QTabWidget
{
    Q_OBJECT
    Q_DISABLE_COPY_MOVE(LmTabWidget)

public:
    explicit LmTabWidget(QWidget* parent = nullptr);
    ~LmTabWidget() override;
};

/// A QStackedWidget with the dynamic property "LayoutDirInverted" for style sheets: true if the layout direction was
/// right to left at construction. A later change of direction doesn't change it.
class LmTabStackedWidget : public QStackedWidget
{
    Q_OBJECT
    Q_DISABLE_COPY_MOVE(LmTabStackedWidget)

public:
    explicit LmTabStackedWidget(QWidget* parent = nullptr);
};
