// SPDX-FileCopyrightText: 2026 The Merivo Connections developers
// SPDX-License-Identifier: MIT
#pragma once

#include "toolkit/InstanceObserver.h"

#include <QList>
#include <QString>

/// The observers of one type that are alive, in the order of their registration, with the runs of objects that have
/// gone. Owns none of the observers.
class InstanceObservers final : public QList<InstanceObserver*>
{
public:
    /// The observer of the object at @p address, or null.
    InstanceObserver* find(const void* address) const;
    bool contains(const void* address) const { return find(address); }

    /// Writes to Qt's debug log: how many are alive, the state of each verbose one, and the calls and seconds of each
    /// name, objects that have gone included.
    void logSummary() const;

    QString m_typeName;
    QList<RuntimeTable> m_cleared; ///< Runs of the objects that have gone.
};
