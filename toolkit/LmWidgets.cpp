// SPDX-FileCopyrightText: 2026 The Merivo Connections developers
// SPDX-License-Identifier: MIT
#include "toolkit/LmWidgets.h"

#include <QApplication>
#include <QStyle>
#include <QWidget>

void lmRemoveHelpButton(QWidget* widget)
{
    if (widget)
        widget->setWindowFlags(widget->windowFlags() & ~Qt::WindowContextHelpButtonHint);
}

void lmRepolish(QWidget* widget)
{
    QStyle* const style = QApplication::style();
    if (widget && style)
        style->polish(widget);
}
