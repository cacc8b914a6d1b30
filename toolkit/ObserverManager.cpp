// SPDX-FileCopyrightText: 2026 The Merivo Connections developers
// SPDX-License-Identifier: MIT
#include "toolkit/ObserverManager.h"

#include <QDebug>
#include <QList>

namespace {

void logSection(const char* title, const QList<InstanceObservers>& types)
{
    qDebug().noquote() << QStringLiteral("\n---A--- DUMP %1 objects: number types=%2")
                              .arg(QLatin1String(title), QString::number(types.size()));
    for (const InstanceObservers& type : types)
        type.logSummary();
    qDebug().noquote() << QStringLiteral("===E=== DUMP %1 objects.\n").arg(QLatin1String(title));
}

} // namespace

ObserverManager& ObserverManager::instance()
{
    static ObserverManager* const instance = new ObserverManager;
    return *instance;
}

void ObserverManager::add(InstanceObserver& observer)
{
    InstanceObservers& observers = (*this)[observer.typeName()];
    observers.m_typeName = observer.typeName();
    observers.append(&observer);
}

void ObserverManager::remove(InstanceObserver& observer)
{
    const auto observers = QMap::find(observer.typeName());
    if (observers == end())
        return;
    observers->removeOne(&observer);
    observers->m_cleared.append(observer.runtimes());
}

InstanceObserver* ObserverManager::find(const void* address) const
{
    for (const InstanceObservers& observers : *this) {
        if (InstanceObserver* const found = observers.find(address))
            return found;
    }
    return nullptr;
}

void ObserverManager::dump() const
{
    QList<InstanceObservers> running;
    QList<InstanceObservers> cleared;
    for (const InstanceObservers& observers : *this)
        (observers.isEmpty() ? cleared : running).append(observers);

    if (!running.isEmpty())
        logSection("running", running);
    logSection("cleared", cleared);
}
