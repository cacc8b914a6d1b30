// SPDX-FileCopyrightText: 2026 The Merivo Connections developers
// SPDX-License-Identifier: MIT
#pragma once

#include "toolkit/InstanceObservers.h"

#include <QMap>
#include <QString>

/// All objects with an InstanceObserver by the name of their type, for finding leaks and hot spots. The entry of a type
/// remains after its last object is destroyed. Finding an address searches all lists and is slow. GUI thread only.
class ObserverManager final : public QMap<QString, InstanceObservers>
{
    Q_DISABLE_COPY_MOVE(ObserverManager)

public:
    /// Creates the manager at the first call. It is never deleted, because static objects may be destroyed at any time.
    static ObserverManager& instance();

    /// Counts a further observer and returns its number, starting at 1.
    int takeNumber() { return ++m_created; }

    /// Appends @p observer to the entry of its type.
    void add(InstanceObserver& observer);
    /// Removes @p observer from the entry of its type, which keeps a copy of its timings. Does nothing if there is no
    /// such entry.
    void remove(InstanceObserver& observer);

    /// Returns the observer of the object at @p address, or null.
    InstanceObserver* find(const void* address) const;
    bool contains(const void* address) const { return find(address); }

    /// Writes all types to Qt's debug log in the order of their names: first those with a living object, if there are
    /// any, then those whose objects are all destroyed.
    void dump() const;

private:
    ObserverManager() = default;

    int m_created = 0;
};
