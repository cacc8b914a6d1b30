// SPDX-FileCopyrightText: 2026 The Merivo Connections developers
// SPDX-License-Identifier: MIT
#pragma once

#include <QByteArray>
#include <QMap>
#include <QString>

/// What this process holds at a moment.
struct Holdings
{
    int files = 0;
    int threads = 0;
    int timers = 0;          ///< the GUI thread's, of all objects
    int objects = 0;         ///< QObjects, of all threads
    int topLevelWidgets = 0; ///< shown or not
    int windows = 0;         ///< as the window system knows them
    int overrideCursors = 0; ///< 1 if there is any
    qint64 residentKiB = 0;
    qint64 allocatedKiB = 0; ///< what malloc() has given out and not got back
    QMap<QByteArray, int> objectsByClass;

    /// Of the GUI thread, with no other thread at work.
    static Holdings now();
    /// The same once no thread is left but those of @p start, for which it waits up to a second of real time: a thread
    /// that was joined is still on its way out, with what it had open.
    static Holdings settled(const Holdings& start);
    /// What differs from @p start, in words; empty if nothing does. Memory isn't compared.
    QString differenceFrom(const Holdings& start) const;
};

/// From now on all new QObjects are counted; those that are there already aren't.
void watchObjects();
