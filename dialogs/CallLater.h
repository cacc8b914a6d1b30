// SPDX-FileCopyrightText: 2026 The Merivo Connections developers
// SPDX-License-Identifier: MIT
#pragma once

#include <QTimer>

/// Calls @p function, a member of @p context or a functor, once in @p ms milliseconds, unless @p context is deleted
/// before. Unlike QTimer::singleShot(), leaves nothing behind then: the event dispatcher would keep the functor, and
/// free it by code of the plug-in, which may have been unloaded by that time.
template <typename Context, typename Function>
void callLater(int ms, Context* context, Function function)
{
    auto* timer = new QTimer(context);
    timer->setSingleShot(true);
    timer->setTimerType(ms > 2000 ? Qt::CoarseTimer : Qt::PreciseTimer); // as QTimer::singleShot()
    QObject::connect(timer, &QTimer::timeout, context, function);
    QObject::connect(timer, &QTimer::timeout, timer, &QObject::deleteLater);
    timer->start(ms);
}
