// SPDX-FileCopyrightText: 2026 The Merivo Connections developers
// SPDX-License-Identifier: MIT
#include "support/MessageCapture.h"
#include "toolkit/LmDateTimeProvider.h"
#include "toolkit/LmDriveSpaceObserver.h"
#include "toolkit/LmFiles.h"
#include "toolkit/LmStoredFile.h"
#include "toolkit/LmXmlMessages.h"
#include "toolkit/LmXmlValidator.h"
#include "toolkit/ObserverManager.h"

#include <QAbstractEventDispatcher>
#include <QDir>
#include <QSourceLocation>
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

    void objectsAreBookedUntilTheyHaveGone()
    {
        ObserverManager& manager = ObserverManager::instance();
        const int objects[3] = {};
        const MessageCapture log;
        manager.dump();
        {
            InstanceObserver idle;
            InstanceObserver quiet;
            InstanceObserver loud;
            quiet.setObject(&objects[0], QStringLiteral("Export::Export()"), false);
            loud.setObject(&objects[2], QStringLiteral("Former::Former()"), false);
            loud.setObject(&objects[1], QStringLiteral("Import::Import(%1::%2)"), true);
            idle.setObject(nullptr, QStringLiteral("Null::Null()"), false);
            idle.setObject(&objects[2], QString(), false);
            QVERIFY(manager.find(&objects[1]) == &loud && manager.contains(&objects[0]));
            QVERIFY(!manager.contains(&objects[2]) && !manager.contains(nullptr));
            for (int i = 0; i < 2; ++i) {
                RuntimeObserver run(QStringLiteral("span"));
                idle.timingStart(run);
                QTest::qSleep(3);
                QCOMPARE(idle.runtimes().value("span").size(), i);
            }
            const RuntimeItem span = idle.runtimes().value("span").value(1);
            QVERIFY(span.calls == 1 && span.runtimeNs >= 3000000 && span.runtimeNs < 60000000000);

            // Neither part is a whole millisecond, but the sum is one more.
            loud.timingStop({QStringLiteral("Import::parse::line"), 2, 1499600000});
            loud.timingStop({QStringLiteral("Import::parse::line"), 1, 600000});
            loud.timingStop({QStringLiteral("all"), 1, 999999});
            for (const InstanceObserver* observer : {&idle, &quiet, &loud})
                observer->logState();
            manager.dump();
        }
        manager.dump();

        QString expected = QString::fromLatin1(R"(
---A--- DUMP cleared objects: number types=0
===E=== DUMP cleared objects.

-----> create@
------ observer@

---A--- DUMP running objects: number types=2
   'Export': count=1
   'Import': count=1
------ observer@
   ... 'line': calls=3 / runtime=1.5 seconds
   ... 'all': calls=1 / runtime=0 seconds
===E=== DUMP running objects.


---A--- DUMP cleared objects: number types=1
   'Former': count=0
===E=== DUMP cleared objects.

<----- delete@

---A--- DUMP cleared objects: number types=3
   'Export': count=0
   'Former': count=0
   'Import': count=0
   ... 'line': calls=3 / runtime=1.5 seconds
   ... 'all': calls=1 / runtime=0 seconds
===E=== DUMP cleared objects.
)");
        const QString place = QString::number(quintptr(&objects[1]));
        QCOMPARE(log.texts(QtDebugMsg).join('\n'), expected.replace('@', "-3 (Import) / address: " + place));
    }

    void figuresAreOfTheSizeAskedFor()
    {
        QCOMPARE(LmDriveSpace::scaled(1048576, 2), 1.0);
        QCOMPARE(LmDriveSpace::scaled(-1, 3), -1.0);

        const LmDriveSpace missing(m_dir.filePath("missing"));
        QVERIFY(missing.total(1) < 0 && missing.free(1) < 0 && missing.freePercent() < 0);

        for (int kind = 0; kind <= 2; ++kind) {
            const auto [total, available] = LmDriveSpace::memoryInfo(kind);
            QVERIFY2(available > 0 && available < total && total > 1 << 24, QByteArray::number(kind));
        }
        QVERIFY(LmDriveSpace::memoryInfo(2).first >= LmDriveSpace::memoryInfo(0).first);
        QVERIFY(qint64(LmDriveSpace::memoryInfo(0).first) % 4096 == 0);                 // Whole pages.
        QVERIFY(LmDriveSpace::memoryInfo(1).first > LmDriveSpace::memoryInfo(2).first); // Any memory fits in.
        for (const int kind : {-1, 3})
            QCOMPARE(LmDriveSpace::memoryInfo(kind), qMakePair(-1.0, -1.0));

        if (!QStorageInfo(m_dir.path()).isValid())
            QSKIP("The system names no drive for the temporary folder, as in a chroot.");
        const LmDriveSpace drive(m_dir.path());
        QVERIFY(drive.total(0) > drive.free(0) && drive.free(0) > 0);
        QVERIFY(qAbs(drive.freePercent() - 100 * drive.free(2) / drive.total(2)) < 1e-9);
    }

    void changesOfADriveAreTold()
    {
        LmDriveSpaceObserver observer;
        QStringList drives;
        connect(&observer, &LmDriveSpaceObserver::driveSpaceChanged, this,
                [&drives](const LmDriveSpace& drive) { drives.append(drive.path()); });
        const QString root = LmDriveSpace::driveInfo(m_dir.path()).path();
        const MessageCapture log;
        observer.observe("data", "missing");
        observer.observe("data", "missing");
        QCOMPARE(drives, QStringList(QString()));
        QCOMPARE(log.texts(QtInfoMsg).mid(2),
                 QStringList({"=> drive information for \"\"", "==> Observe path \"missing\""}));
        QCOMPARE(log.texts(QtDebugMsg).mid(4), QStringList({"  path  : \"missing\"", "  usage : -1GiB (-1%) of -1GiB",
                                                            "    -> type  : \"data\"", "    -> drive : \"\""}));
        observer.observe("backup", "missing");
        QCOMPARE(drives, QStringList({"", ""}));
        if (!QStorageInfo(m_dir.path()).isValid())
            QSKIP("The system names no drive for the temporary folder, as in a chroot.");
        observer.observe("data", m_dir.path());
        QCOMPARE(drives, QStringList({"", "", root}));
        const double total = LmDriveSpace(root).total(3);
        QVERIFY(log.texts(QtDebugMsg).filter(QStringLiteral("%) of %1GiB").arg(total)).size() == 1);

        const auto timers = QAbstractEventDispatcher::instance()->registeredTimers(&observer);
        QCOMPARE(timers.size(), 1);
        QVERIFY(timers[0].interval == 300000 && timers[0].timerType != Qt::PreciseTimer);
        QTimerEvent foreign(timers[0].timerId + 1);
        QTimerEvent due(timers[0].timerId);
        QVERIFY(lmWriteBytes(QByteArray(1 << 23, 'x'), "filling", QIODevice::WriteOnly));
        QCoreApplication::sendEvent(&observer, &foreign);
        QCOMPARE(drives.size(), 3);
        QVERIFY(QTest::qWaitFor([&] { return QCoreApplication::sendEvent(&observer, &due) && drives.size() > 3; }));
        QVERIFY(QFile::remove("filling"));
        QVERIFY(QTest::qWaitFor([&] { return observer.observe("data", m_dir.path()), drives.size() > 4; }));
        QCOMPARE(drives.mid(3), QStringList({root, root}));
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
        const QDateTime noon({2026, 7, 1}, {12, 0}, QTimeZone("Asia/Kolkata"));
        const QDateTime fixed = LmDateTimeProvider::withLocalOffset(noon);
        QVERIFY(fixed == noon && fixed.timeSpec() == Qt::OffsetFromUTC && fixed.offsetFromUtc() == 19800);
    }

    void filesAreReadAndWrittenWhole()
    {
        const QByteArray content("\xc3\xa4 1\r\n\n2\0 3\n", 11);
        QVERIFY(lmWriteBytes(content, "a/b/file", QIODevice::WriteOnly));
        const MessageCapture log;
        QVERIFY(lmMakeParentDir("") && lmMakeParentDir("file") && lmMakeParentDir("c/d/file") && QDir("c/d").exists());
        QVERIFY(log.messages().isEmpty());
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
        QVERIFY(!lmWriteBytes("x", "a/b/file", QIODevice::ReadOnly));
        QCOMPARE(lmReadBytes("a/b/file", QIODevice::WriteOnly), content);
    }

    void documentsAreHeldToTheSchema()
    {
        const QUrl file = QUrl::fromLocalFile(m_dir.filePath("document.xml"));
        LmXmlValidator validator(QUrl::fromLocalFile(DOSE_SCHEMA), nullptr);
        LmXmlValidator withoutSchema(file, nullptr);
        LmXmlMessages messages(nullptr);
        QVERIFY(validator.isValid() && !withoutSchema.isValid() && withoutSchema.schemaUrl() == file);
        QVERIFY(!validator.validate(file, messages) && messages.messages().isEmpty()); // It doesn't exist yet.
        // Wrong and right in turn, so that each finds what the former has left in the collector.
        for (const QByteArray document : {"<dose>\n  many</dose>", "<dose>1.5</dose>", "<dose", "<dose>2</dose>"}) {
            QVERIFY(lmWriteBytes(document, "document.xml", QIODevice::WriteOnly));
            const bool right = document.contains('.') || document.contains('2');
            QVERIFY(validator.validate(document, messages) == right && validator.validate(file, messages) == right);
            QCOMPARE(messages.messages().isEmpty(), right);
            QVERIFY(withoutSchema.validate(document, messages) && messages.messages().isEmpty());
        }
    }

    void worstMessagesLead()
    {
        LmXmlMessages messages(nullptr);
        const QString line = QStringLiteral("%1 at (line 3;column 7) - %2%3");
        const QString info = line.arg("Info").arg(QtCriticalMsg);
        const std::pair<QtMsgType, QStringList> rows[] = {{QtDebugMsg, {line.arg("Error").arg(QtDebugMsg)}},
                                                          {QtCriticalMsg, {info}},
                                                          {QtWarningMsg, {info, line.arg("Error").arg(QtWarningMsg)}},
                                                          {QtCriticalMsg, {info}},
                                                          {QtCriticalMsg, {info, info}}};
        for (const auto& [type, lines] : rows) {
            messages.message(type, QString::number(type) + "%3", QUrl(), QSourceLocation(QUrl(), 3, 7));
            QCOMPARE(messages.messages(), lines);
        }
    }

private:
    QTemporaryDir m_dir;
};

QTEST_GUILESS_MAIN(TestToolkitSystem)

#include "tst_toolkit_system.moc"
