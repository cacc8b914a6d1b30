// SPDX-FileCopyrightText: 2026 The Merivo Connections developers
// SPDX-License-Identifier: MIT
#pragma once

#include <QTimer>

/// Calls @p function, a member of @p context or a functor, once in @p ms milliseconds, unless @p context is deleted
/// before. QTimer::singleShot() would keep the functor in the event dispatcher in that case, and destroy it later with
/// code of the plug-in, which may have been unloaded.
template <typename Context, typename Function>
void callLater(int ms, Context* context, Function function)
{
    auto* timer = new QTimer(context);
    timer->setSingleShot(true);
    timer->setTimerType(ms >= 2000 ? Qt::CoarseTimer : Qt::PreciseTimer); // as QTimer::singleShot()
    QObject::connect(timer, &QTimer::timeout, context, function);
    QObject::connect(timer, &QTimer::timeout, timer, &QObject::deleteLater);
    timer->start(ms);
}
