// SPDX-FileCopyrightText: 2026 The Merivo Connections developers
// SPDX-License-Identifier: MIT
#include "toolkit/ObserverManager.h"

#include <QDebug>
#include <QList>

namespace {

/// Writes @p head with the number of types, the summary of each, and @p foot.
void logSection(const QString& head, const QList<InstanceObservers>& types, const QString& foot)
{
    qDebug().noquote() << head.arg(types.size());
    for (const InstanceObservers& type : types)
        type.logSummary();
    qDebug().noquote() << foot;
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

    if (!running.isEmpty()) {
        logSection(QStringLiteral("\n---A--- DUMP running objects: number types=%1"), running,
                   QStringLiteral("===E=== DUMP running objects.\n"));
    }
    logSection(QStringLiteral("\n---A--- DUMP cleared objects: number types=%1"), cleared,
               QStringLiteral("===E=== DUMP cleared objects.\n"));
}
