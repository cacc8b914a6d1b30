// SPDX-FileCopyrightText: 2026 The Merivo Connections developers
// SPDX-License-Identifier: MIT
#include "bench/endurance/ResourceCounts.h"

#include <QAbstractEventDispatcher>
#include <QApplication>
#include <QDir>
#include <QFile>
#include <QMutex>
#include <QSet>
#include <QStringList>
#include <QThread>

#include <unistd.h>

/// QtCore's hooks for debuggers: an array whose first element is the version of its layout. Exported, but declared in a
/// private header.
extern "C" Q_CORE_EXPORT quintptr qtHookData[];

namespace {

enum Hook { LayoutVersion = 0, ObjectAdded = 3, ObjectRemoved = 4 };

QMutex s_mutex;
QSet<QObject*> s_objects; // guarded by s_mutex

void objectAdded(QObject* object)
{
    const QMutexLocker lock(&s_mutex);
    s_objects.insert(object);
}

void objectRemoved(QObject* object)
{
    const QMutexLocker lock(&s_mutex);
    s_objects.remove(object);
}

int entryCount(const QString& folder)
{
    return QDir(folder).entryList(QDir::AllEntries | QDir::System | QDir::NoDotAndDotDot).size();
}

} // namespace

void watchObjects()
{
    if (qtHookData[LayoutVersion] < 1)
        qFatal("This version of Qt has no hooks to count objects.");
    qtHookData[ObjectAdded] = reinterpret_cast<quintptr>(&objectAdded);
    qtHookData[ObjectRemoved] = reinterpret_cast<quintptr>(&objectRemoved);
}

ResourceCounts ResourceCounts::now()
{
    ResourceCounts counts;
    {
        const QMutexLocker lock(&s_mutex);
        const QAbstractEventDispatcher* dispatcher = QAbstractEventDispatcher::instance();
        for (QObject* object : qAsConst(s_objects)) {
            ++counts.objects[object->metaObject()->className()];
            if (object->thread() == QThread::currentThread())
                counts.others["timers"] += dispatcher->registeredTimers(object).size();
        }
    }
    counts.others.insert("files", entryCount("/proc/self/fd"));
    counts.others.insert("threads", entryCount("/proc/self/task"));
    if (qobject_cast<QApplication*>(QCoreApplication::instance())) {
        counts.others.insert("top-level widgets", QApplication::topLevelWidgets().size());
        counts.others.insert("windows", QGuiApplication::allWindows().size());
        counts.others.insert("override cursors", QGuiApplication::overrideCursor() ? 1 : 0);
    }
    QFile memory("/proc/self/statm");
    if (memory.open(QIODevice::ReadOnly))
        counts.residentKiB = memory.readAll().split(' ').value(1).toLongLong() * sysconf(_SC_PAGESIZE) / 1024;
    return counts;
}

ResourceCounts ResourceCounts::settled(const ResourceCounts& start)
{
    for (int i = 0; i < 1000 && entryCount("/proc/self/task") > start.others.value("threads"); ++i)
        usleep(1000);
    return now();
}

QString ResourceCounts::differenceFrom(const ResourceCounts& start) const
{
    QStringList differences;
    const auto compare = [&differences](const QMap<QString, int>& before, const QMap<QString, int>& after) {
        QMap<QString, int> all = before;
        for (auto it = after.cbegin(); it != after.cend(); ++it)
            all.insert(it.key(), it.value());
        for (const QString& what : all.keys()) {
            if (before.value(what) != after.value(what))
                differences << QString("%1 %2 -> %3").arg(what).arg(before.value(what)).arg(after.value(what));
        }
    };
    compare(start.others, others);
    compare(start.objects, objects);
    return differences.join(", ");
}
