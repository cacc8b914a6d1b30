// SPDX-FileCopyrightText: 2026 The Merivo Connections developers
// SPDX-License-Identifier: MIT
#include "toolkit/InstanceObserver.h"

#include "toolkit/ObserverManager.h"

#include <QDebug>

InstanceObserver::InstanceObserver()
    : m_number(ObserverManager::instance().takeNumber())
{}

InstanceObserver::~InstanceObserver()
{
    if (!m_address)
        return;
    if (m_verbose)
        logEvent(QStringLiteral("<----- delete-%1 (%2) / address: %3"));
    ObserverManager::instance().remove(*this);
}

void InstanceObserver::setObject(const void* address, const QString& typeSignature, bool verbose)
{
    if (m_address) {
        ObserverManager::instance().remove(*this);
        m_runtimes.clear();
    }
    m_verbose = verbose;
    m_address = address;
    m_typeName = typeSignature.section(QStringLiteral("::"), 0, 0);
    if (!address || typeSignature.isEmpty())
        return;
    ObserverManager::instance().add(*this);
    if (verbose)
        logEvent(QStringLiteral("-----> create-%1 (%2) / address: %3"));
}

void InstanceObserver::logState() const
{
    if (m_address && m_verbose)
        logEvent(QStringLiteral("------ observer-%1 (%2) / address: %3"));
}

void InstanceObserver::timingStart(RuntimeObserver& timeObserver)
{
    connect(&timeObserver, &RuntimeObserver::timeElapsed, this, &InstanceObserver::timingStop);
}

void InstanceObserver::timingStop(RuntimeItem item)
{
    m_runtimes[item.name].append(item);
}

void InstanceObserver::logEvent(const QString& pattern) const
{
    qDebug().noquote() << pattern.arg(QString::number(m_number), m_typeName,
                                      QString::number(reinterpret_cast<quintptr>(m_address)));
}
