// SPDX-FileCopyrightText: 2026 The Merivo Connections developers
// SPDX-License-Identifier: MIT
#include "commands/EventsObserver.h"
#include "plugin/session/PatientSession.h"
#include "support/RecordingHost.h"

#include <QMetaMethod>
#include <QPointer>
#include <QTest>

namespace {

/// Remembers which of its signals were connected, in their order.
class CountingPublisher final : public IEventPublisher
{
public:
    QStringList connected;

protected:
    void connectNotify(const QMetaMethod& signal) override { connected.append(QString::fromLatin1(signal.name())); }
};

IDiarySessionOpenedEvtPtr opened(const QString& puid, const QString& pid)
{
    return IDiarySessionOpenedEvtPtr(new PatientEvent<IDiarySessionOpenedEvt>(puid, {pid}, "diary " + puid));
}

IPatientChangedEvtPtr changed(const QString& puid, const QString& pid)
{
    return IPatientChangedEvtPtr(new PatientEvent<IPatientChangedEvt>(puid, {pid}, "x"));
}

/// The session in one line: patient, ids, diary, pump, device, exchange file.
QString session()
{
    const PatientSession* now = PatientSession::instance();
    const QString pids = now->pids().join(',');
    return QStringList{now->patientId(),       pids, now->diaryName(), now->pumpSerialNumber(), now->deviceName(),
                       now->exchangeFilePath()}
        .join('|');
}

} // namespace

class TestEvents final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init() { PatientSession::create(nullptr); }

    void eventsWriteTheSession()
    {
        CountingPublisher publisher;
        EventsObserver observer;
        observer.attach(&publisher, nullptr);
        const QStringList expected{"diarySessionOpened", "diarySessionClosed", "patientChanged"};
        QCOMPARE(publisher.connected, expected);

        Q_EMIT publisher.patientChanged(changed("p1", "Early"));
        QCOMPARE(session(), QStringLiteral("||||Sanvio Merivo|"));

        Q_EMIT publisher.diarySessionOpened(opened("p1", "Doe"));
        QCOMPARE(session(), QStringLiteral("p1|Doe|diary p1||Sanvio Merivo|"));
        PatientSession::instance()->setPump("123", "Other");
        PatientSession::instance()->setExchangeFilePath(QStringLiteral("/I1.xml"));

        Q_EMIT publisher.patientChanged(changed("p2", "Foreign"));
        QCOMPARE(session(), QStringLiteral("p1|Doe|diary p1|123|Other|/I1.xml"));
        Q_EMIT publisher.patientChanged(changed("p1", "Roe"));
        QCOMPARE(session(), QStringLiteral("p1|Roe|diary p1|123|Other|/I1.xml"));

        Q_EMIT publisher.diarySessionOpened(opened("p2", "Poe"));
        QCOMPARE(session(), QStringLiteral("p2|Poe|diary p2||Sanvio Merivo|"));
        Q_EMIT publisher.diarySessionClosed({});
        QCOMPARE(session(), QStringLiteral("||||Sanvio Merivo|"));

        observer.attach(&publisher, nullptr); // not guarded
        QCOMPARE(publisher.connected, expected + expected);
    }

    void replacedExtensionPointsAreDeleted()
    {
        Journal journal;
        QPointer<IEventPublisher> first = new RecordingEventPublisher;
        RecordingEventPublisher second;
        QPointer<IDatabase> database = new RecordingDatabase(journal);
        {
            EventsObserver observer;
            observer.attach(nullptr, nullptr);
            observer.attach(first, database);
            observer.attach(first, database);
            QVERIFY(first && database);
            observer.attach(&second, database);
            QVERIFY(!first && database);
            observer.attach(&second, nullptr);
            QVERIFY(!database);

            auto* gone = new RecordingDatabase(journal);
            observer.attach(&second, gone);
            delete gone; // by the host itself: not to be deleted again
            observer.attach(&second, nullptr);
        }
        // Of the last one only the connections have gone.
        Q_EMIT second.diarySessionOpened(opened("p3", "Doe"));
        QCOMPARE(session(), QStringLiteral("||||Sanvio Merivo|"));
    }
};

QTEST_GUILESS_MAIN(TestEvents)
#include "tst_events.moc"
