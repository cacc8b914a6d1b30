// SPDX-FileCopyrightText: 2026 The Merivo Connections developers
// SPDX-License-Identifier: MIT
#include "toolkit/LmTabs.h"

#include <QTabBar>
#include <QVariant>

LmTabWidget::LmTabWidget(QWidget* parent)
    : QTabWidget(parent)
{}

LmTabWidget::~LmTabWidget()
{
    tabBar()->setStyle(nullptr);
}

LmTabStackedWidget::LmTabStackedWidget(QWidget* parent)
    : QStackedWidget(parent)
{
    setProperty("LayoutDirInverted", layoutDirection() == Qt::RightToLeft);
}
