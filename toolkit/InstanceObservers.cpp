// SPDX-FileCopyrightText: 2026 The Merivo Connections developers
// SPDX-License-Identifier: MIT
#include "toolkit/InstanceObservers.h"

#include <QDebug>
#include <QMap>

#include <algorithm>

InstanceObserver* InstanceObservers::find(const void* address) const
{
    const auto found = std::find_if(
        begin(), end(), [address](const InstanceObserver* observer) { return observer->address() == address; });
    return found == end() ? nullptr : *found;
}

void InstanceObservers::logSummary() const
{
    qDebug().noquote() << QStringLiteral("   '%1': count=%2").arg(m_typeName, QString::number(size()));

    QList<RuntimeTable> tables;
    for (const InstanceObserver* observer : *this) {
        observer->logState();
        tables.append(observer->runtimes());
    }
    tables += m_cleared;

    QMap<QString, RuntimeItem> sums;
    for (const RuntimeTable& table : qAsConst(tables)) {
        for (const QList<RuntimeItem>& runs : table) {
            for (const RuntimeItem& run : runs) {
                RuntimeItem& sum = sums[run.name];
                sum.name = run.name;
                sum.calls += run.calls;
                sum.runtimeNs += run.runtimeNs;
            }
        }
    }

    for (const RuntimeItem& sum : qAsConst(sums)) {
        const qint64 milliseconds = sum.runtimeNs / 1000000;
        qDebug().noquote() << QStringLiteral("   ... '%0': calls=%1 / runtime=%2 seconds")
                                  .arg(sum.name.section(QStringLiteral("::"), -1), QString::number(sum.calls),
                                       QString::number(double(milliseconds) / 1000));
    }
}
