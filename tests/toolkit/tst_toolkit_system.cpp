// SPDX-FileCopyrightText: 2026 The Merivo Connections developers
// SPDX-License-Identifier: MIT
#include "support/MessageCapture.h"
#include "toolkit/LmDateTimeProvider.h"
#include "toolkit/LmDriveSpaceObserver.h"
#include "toolkit/LmFiles.h"
#include "toolkit/LmStoredFile.h"
#include "toolkit/ObserverManager.h"

#include <QAbstractEventDispatcher>
#include <QDir>
#include <QStorageInfo>
#include <QTemporaryDir>
#include <QTest>
#include <QTimeZone>
#include <QTimerEvent>

#include <utility>

class TestToolkitSystem : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init() { QVERIFY(m_dir.isValid() && QDir::setCurrent(m_dir.path())); }
    void cleanupTestCase() { QDir::setCurrent(QDir::rootPath()); }

    void dumpListsObjectsAndTimes()
    {
        ObserverManager& manager = ObserverManager::instance();
        const int object = 0;
        const MessageCapture log;
        manager.dump();
        {
            InstanceObserver unused;
            unused.setObject(nullptr, QStringLiteral("Null::Null()"), false);
            unused.logState();
            InstanceObserver observer;
            observer.setObject(&object, QStringLiteral("Former::Former()"), false);
            observer.timingStop({QStringLiteral("dropped"), 1, 1000000});
            observer.setObject(&object, QStringLiteral("Import::Import(%1::%2)"), true);
            QVERIFY(manager.find(&object) == &observer && !manager.contains(nullptr) && !manager.contains(&manager));
            {
                RuntimeObserver run(QStringLiteral("span"));
                unused.timingStart(run);
                QTest::qSleep(3);
            }
            const RuntimeItem span = unused.runtimes().value("span").value(0);
            QVERIFY(span.calls == 1 && span.runtimeNs >= 3000000 && span.runtimeNs < 60000000000);

            // Neither part is a whole number of milliseconds; the sum is rounded down.
            observer.timingStop({QStringLiteral("Import::parse::line"), 2, 1499600000});
            observer.timingStop({QStringLiteral("Import::parse::line"), 1, 600000});
            manager.dump();
        }
        QVERIFY(!manager.contains(&object));

        QString expected = QString::fromLatin1(R"(
---A--- DUMP cleared objects: number types=0
===E=== DUMP cleared objects.

-----> create@

---A--- DUMP running objects: number types=1
   'Import': count=1
------ observer@
   ... 'line': calls=3 / runtime=1.5 seconds
===E=== DUMP running objects.


---A--- DUMP cleared objects: number types=1
   'Former': count=0
   ... 'dropped': calls=1 / runtime=0.001 seconds
===E=== DUMP cleared objects.

<----- delete@)");
        const QString place = QString::number(quintptr(&object));
        QCOMPARE(log.texts(QtDebugMsg).join('\n'), expected.replace('@', "-2 (Import) / address: " + place));
    }

    void figuresAreOfTheSizeAskedFor()
    {
        QVERIFY(LmDriveSpace::scaled(1048576, 2) == 1 && LmDriveSpace::scaled(-1, 3) == -1);
        const LmDriveSpace missing("missing");
        QVERIFY(missing.total(1) == -1 && missing.free(1) == -1 && missing.freePercent() == -1);
        for (int kind = 0; kind <= 2; ++kind) {
            const auto [total, available] = LmDriveSpace::memoryInfo(kind);
            QVERIFY2(available > 0 && available < total && total > 1 << 24, QByteArray::number(kind));
        }
        QVERIFY(LmDriveSpace::memoryInfo(1).first > LmDriveSpace::memoryInfo(2).first);
        QCOMPARE(LmDriveSpace::memoryInfo(3), qMakePair(-1.0, -1.0));
    }

    void changesOfADriveAreReported()
    {
        LmDriveSpaceObserver observer;
        QStringList drives;
        connect(&observer, &LmDriveSpaceObserver::driveSpaceChanged, this,
                [&drives](const LmDriveSpace& drive) { drives.append(drive.path()); });
        const MessageCapture log;
        observer.observe("data", "missing");
        observer.observe("data", "missing");
        const QString missingRoot = QStorageInfo("missing").rootPath(); // differs between systems
        QCOMPARE(drives, QStringList(missingRoot));
        QCOMPARE(log.texts(QtDebugMsg).value(1), QString("  usage : -1GiB (-1%) of -1GiB"));
        const QStorageInfo storage(m_dir.path());
        if (!storage.isValid())
            QSKIP("The system names no drive for the temporary folder, as in a chroot.");
        const QString root = storage.rootPath();
        observer.observe("data", m_dir.path());
        QCOMPARE(drives, QStringList({missingRoot, root}));
        const LmDriveSpace drive(root);
        QVERIFY(drive.free(0) > 0 && qAbs(drive.freePercent() - 100 * drive.free(2) / drive.total(2)) < 1e-9);

        const auto timers = QAbstractEventDispatcher::instance()->registeredTimers(&observer);
        QVERIFY(timers.size() == 1 && timers[0].interval == 300000);
        QTimerEvent foreign(timers[0].timerId + 1);
        QTimerEvent due(timers[0].timerId);
        QVERIFY(lmWriteBytes(QByteArray(1 << 23, 'x'), "filling", QIODevice::WriteOnly));
        QCoreApplication::sendEvent(&observer, &foreign);
        QCOMPARE(drives.size(), 2);
        QVERIFY(QTest::qWaitFor([&] { return QCoreApplication::sendEvent(&observer, &due) && drives.size() > 2; }));
        QVERIFY(QFile::remove("filling"));
        QVERIFY(QTest::qWaitFor([&] { return observer.observe("data", m_dir.path()), drives.size() > 3; }));
        QCOMPARE(drives.mid(2), QStringList({root, root}));
    }

    void timeIsThatOfTheFileSystem()
    {
        QVERIFY(QDir().mkdir("clock"));
        for (const char* directory : {"clock", "missing"}) {
            const LmDateTimeProvider provider(QString::fromLatin1(directory));
            QVERIFY(qAbs(QDateTime::currentDateTime().msecsTo(provider.now())) < 5000);
            QVERIFY(provider.now().timeSpec() == Qt::LocalTime && provider.nowUtc().timeSpec() == Qt::UTC &&
                    provider.now().msecsTo(provider.nowUtc()) < 5000);
        }
        QVERIFY(QDir("clock").isEmpty());
        const QDateTime noon({2026, 7, 1}, {12, 0}, QTimeZone(19800));
        const QDateTime fixed = LmDateTimeProvider::withLocalOffset(noon);
        QVERIFY(fixed == noon && fixed.timeSpec() == Qt::OffsetFromUTC && fixed.offsetFromUtc() == 19800);
    }

    void filesAreReadAndWrittenWhole()
    {
        const QByteArray content("\xc3\xa4 1\r\n\n2\0 3\n", 11);
        QVERIFY(lmMakeParentDir("") && lmMakeParentDir("file") &&
                lmWriteBytes(content, "a/b/file", QIODevice::WriteOnly));
        QCOMPARE(lmReadBytes("a/b/file", QIODevice::ReadOnly), content);
        QCOMPARE(lmReadLines("a/b/file", QIODevice::Text), QStringList({QString::fromUtf8("\u00e4 1"), "", "2"}));
        for (const char* unreadable : {"none", "a"})
            QVERIFY(lmReadLines(unreadable, QIODevice::ReadWrite).isEmpty() && !QFileInfo(unreadable).isFile());

        const auto file = LmStoredFile::readForDirectory("a/b/file", "e", QIODevice::ReadOnly, "hint");
        QVERIFY(file->path() == "e/file" && file->content() == content && file->hint() == "hint");
        QVERIFY(file->save(QIODevice::WriteOnly) && file->save("g", QIODevice::WriteOnly));
        QCOMPARE(LmStoredFile::read("e/file", QIODevice::ReadOnly)->content(), lmReadBytes("g", QIODevice::ReadOnly));

        // Below a file, on a directory, and where the drive is full.
        for (const char* unwritable : {"a/b/file/x", "a", QFile::exists("/dev/full") ? "/dev/full" : "a"})
            QVERIFY2(!lmWriteBytes(content, unwritable, QIODevice::WriteOnly), unwritable);
        QVERIFY(!lmWriteBytes(content, "g", QIODevice::ReadOnly));
    }

private:
    QTemporaryDir m_dir;
};

QTEST_GUILESS_MAIN(TestToolkitSystem)

#include "tst_toolkit_system.moc"
