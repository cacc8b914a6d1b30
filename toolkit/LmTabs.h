// SPDX-FileCopyrightText: 2026 The Merivo Connections developers
// SPDX-License-Identifier: MIT
#pragma once

#include <QStackedWidget>
#include <QTabWidget>

/// @file
/// Pages under names that a style sheet can address. GUI thread only.

/// Lets go of a style of its tab bar's own before it goes.
class LmTabWidget : public QTabWidget
{
    Q_OBJECT
    Q_DISABLE_COPY_MOVE(LmTabWidget)

public:
    explicit LmTabWidget(QWidget* parent = nullptr);
    ~LmTabWidget() override;
};

/// A style sheet may select on the property "LayoutDirInverted": whether the layout was right to left when the stack
/// was made. A later change of direction doesn't touch it.
class LmTabStackedWidget : public QStackedWidget
{
    Q_OBJECT
    Q_DISABLE_COPY_MOVE(LmTabStackedWidget)

public:
    explicit LmTabStackedWidget(QWidget* parent = nullptr);
};
