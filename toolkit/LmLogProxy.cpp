// SPDX-FileCopyrightText: 2026 The Merivo Connections developers
// SPDX-License-Identifier: MIT
#include "toolkit/LmLogProxy.h"

LmLogProxy::LmLogProxy(LmLogProxy* next)
    : m_next(next)
{}

LmLogProxy::~LmLogProxy() = default;

void LmLogProxy::logCritical(QString title, QString text, QString detail)
{
    forward(title, text, detail);
}

void LmLogProxy::logWarning(QString title, QString text, QString detail)
{
    forward(title, text, detail);
}

void LmLogProxy::logInformation(QString title, QString text, QString detail)
{
    forward(title, text, detail);
}

void LmLogProxy::forward(const QString& title, const QString& text, const QString& detail)
{
    // All levels meet in the highest one on purpose: a link that only forwards must not play a message down.
    if (m_next)
        m_next->logCritical(title, text, detail);
}
