// SPDX-FileCopyrightText: 2026 The Merivo Connections developers
// SPDX-License-Identifier: MIT
#include "bench/endurance/Holdings.h"

#include <QAbstractEventDispatcher>
#include <QApplication>
#include <QDir>
#include <QFile>
#include <QMutex>
#include <QSet>
#include <QStringList>
#include <QThread>

#include <malloc.h>
#include <unistd.h>

/// QtCore's hooks for debuggers and inspectors: an array whose first number is the version of its layout. Declared in a
/// private header, and there for all users of the library.
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

qint64 residentKiB()
{
    QFile file(QStringLiteral("/proc/self/statm"));
    if (!file.open(QIODevice::ReadOnly))
        return 0;
    return file.readAll().split(' ').value(1).toLongLong() * sysconf(_SC_PAGESIZE) / 1024;
}

} // namespace

void watchObjects()
{
    if (qtHookData[LayoutVersion] < 1)
        qFatal("This Qt has no hooks to count objects by.");
    qtHookData[ObjectAdded] = reinterpret_cast<quintptr>(&objectAdded);
    qtHookData[ObjectRemoved] = reinterpret_cast<quintptr>(&objectRemoved);
}

Holdings Holdings::now()
{
    Holdings holdings;
    {
        const QMutexLocker lock(&s_mutex);
        const QAbstractEventDispatcher* dispatcher = QAbstractEventDispatcher::instance();
        for (QObject* object : qAsConst(s_objects)) {
            ++holdings.objectsByClass[object->metaObject()->className()];
            if (object->thread() == QThread::currentThread())
                holdings.timers += dispatcher->registeredTimers(object).size();
        }
        holdings.objects = s_objects.size();
    }
    holdings.files = entryCount(QStringLiteral("/proc/self/fd"));
    holdings.threads = entryCount(QStringLiteral("/proc/self/task"));
    if (qobject_cast<QApplication*>(QCoreApplication::instance())) {
        holdings.topLevelWidgets = QApplication::topLevelWidgets().size();
        holdings.windows = QGuiApplication::allWindows().size();
        holdings.overrideCursors = QGuiApplication::overrideCursor() ? 1 : 0;
    }
    holdings.residentKiB = ::residentKiB();
    const struct mallinfo2 heap = mallinfo2();
    holdings.allocatedKiB = static_cast<qint64>(heap.uordblks + heap.hblkhd) / 1024;
    return holdings;
}

Holdings Holdings::settled(const Holdings& start)
{
    constexpr int MostLooks = 1000;
    for (int look = 0; look < MostLooks && entryCount(QStringLiteral("/proc/self/task")) > start.threads; ++look)
        usleep(1000);
    return now();
}

QString Holdings::differenceFrom(const Holdings& start) const
{
    QStringList differences;
    const auto compare = [&differences](const QString& what, int before, int after) {
        if (after != before)
            differences.append(QStringLiteral("%1 %2 -> %3").arg(what).arg(before).arg(after));
    };
    compare(QStringLiteral("files"), start.files, files);
    compare(QStringLiteral("threads"), start.threads, threads);
    compare(QStringLiteral("timers"), start.timers, timers);
    compare(QStringLiteral("top-level widgets"), start.topLevelWidgets, topLevelWidgets);
    compare(QStringLiteral("windows"), start.windows, windows);
    compare(QStringLiteral("override cursors"), start.overrideCursors, overrideCursors);
    QMap<QByteArray, int> classes = objectsByClass;
    for (auto it = start.objectsByClass.cbegin(); it != start.objectsByClass.cend(); ++it)
        classes.insert(it.key(), 0);
    for (auto it = classes.cbegin(); it != classes.cend(); ++it)
        compare(QString::fromLatin1(it.key()), start.objectsByClass.value(it.key()), objectsByClass.value(it.key()));
    return differences.join(QStringLiteral(", "));
}
