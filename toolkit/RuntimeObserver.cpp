// SPDX-FileCopyrightText: 2026 The Merivo Connections developers
// SPDX-License-Identifier: MIT
#include "toolkit/RuntimeObserver.h"

RuntimeObserver::RuntimeObserver(const QString& name)
    : m_item{name, 1, 0}
{
    m_timer.start();
}

RuntimeObserver::~RuntimeObserver()
{
    m_item.runtimeNs = m_timer.nsecsElapsed();
    Q_EMIT timeElapsed(m_item);
}
