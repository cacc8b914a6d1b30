// SPDX-FileCopyrightText: 2026 The Merivo Connections developers
// SPDX-License-Identifier: MIT
#pragma once

#include "toolkit/InstanceObservers.h"

#include <QMap>
#include <QString>

/// Knows all objects that hold an InstanceObserver, by the name of their type, and dumps them to Qt's debug log: a help
/// in the search for leaks and hot spots. The entry of a type stays when its last object has gone. Looking up an
/// address walks all lists, so it has no place in a hot path. GUI thread only.
class ObserverManager final : public QMap<QString, InstanceObservers>
{
    Q_DISABLE_COPY_MOVE(ObserverManager)

public:
    /// Made at first use, and never deleted: objects with static storage may go after anything else.
    static ObserverManager& instance();

    /// Counts one more observer and gives its number, from 1.
    int takeNumber() { return ++m_created; }

    /// Appends @p observer to the entry of its type.
    void add(InstanceObserver& observer);
    /// Takes @p observer out of the entry of its type, which keeps a copy of its runs. Ignored if there is no such
    /// entry.
    void remove(InstanceObserver& observer);

    /// The observer of the object at @p address, or null.
    InstanceObserver* find(const void* address) const;
    bool contains(const void* address) const { return find(address); }

    /// Writes all types to Qt's debug log, in the order of their names: first those with a living object, if there are
    /// any, then those whose objects have gone.
    void dump() const;

private:
    ObserverManager() = default;

    int m_created = 0;
};
