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
    // All levels are forwarded at the highest one, so that a link that only forwards never lowers a message.
    if (m_next)
        m_next->logCritical(title, text, detail);
}
