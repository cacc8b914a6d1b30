// SPDX-FileCopyrightText: 2026 The Merivo Connections developers
// SPDX-License-Identifier: MIT
#pragma once

#include "toolkit/InstanceObserver.h"

#include <QList>
#include <QString>

/// The living observers of one type in the order of their registration, and the timings of destroyed objects. Doesn't
/// own the observers.
class InstanceObservers final : public QList<InstanceObserver*>
{
public:
    /// Returns the observer of the object at @p address, or null.
    InstanceObserver* find(const void* address) const;
    bool contains(const void* address) const { return find(address); }

    /// Writes to Qt's debug log the number of living observers, the state of each verbose one, and the calls and
    /// seconds of each name, including those of destroyed objects.
    void logSummary() const;

    QString m_typeName;            ///< The name of the type.
    QList<RuntimeTable> m_cleared; ///< Timings of destroyed objects.
};
