// SPDX-FileCopyrightText: 2026 The Merivo Connections developers
// SPDX-License-Identifier: MIT
#pragma once

#include <QMap>
#include <QString>

/// The resources that this process holds.
struct ResourceCounts
{
    QMap<QString, int> objects; ///< QObjects of all threads by class; those created before watchObjects() don't count
    QMap<QString, int> others;  ///< files, threads, timers of the GUI thread, windows and so on
    qint64 residentKiB = 0;

    /// GUI thread only, while no other thread works.
    static ResourceCounts now();
    /// Waits up to a second of real time until there are no more threads than in @p start, as a joined thread still
    /// exists for a moment.
    static ResourceCounts settled(const ResourceCounts& start);
    /// Returns the differences from @p start except memory, or an empty text.
    QString differenceFrom(const ResourceCounts& start) const;
};

/// Starts counting QObjects.
void watchObjects();
