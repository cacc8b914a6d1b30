// SPDX-FileCopyrightText: 2026 The Merivo Connections developers
// SPDX-License-Identifier: MIT
#include "base/PatientSession.h"
#include "base/SessionWatch.h"
#include "hostcommands/CommandController.h"
#include "hostcommands/EventsObserver.h"
#include "hostcommands/ImportDataCommand.h"
#include "hostcommands/QueryDiaryCmd.h"
#include "support/MessageCapture.h"
#include "support/RecordingHost.h"

#include <QDateTime>
#include <QTemporaryDir>
#include <QTest>

#include <memory>
#include <tuple>
#include <typeinfo>

namespace {

/// A command with an option of its own.
class HookedCommand final : public CommandExt
{
public:
    using CommandExt::CommandExt;
    ICommand* command() override { return nullptr; }
    QString commandName() const override { return {}; }
    void prepare() override { m_jobId = "prepared"; }
    bool parseOption(QStringList& args) override { return args.first() == "-mine" && args.removeOne("-mine"); }
};

QStringList words(const char* text)
{
    return QString(text).split(',');
}

/// The session in one line: patient, ids, diary, pump, device, exchange file.
QString session()
{
    const PatientSession* now = PatientSession::instance();
    return QStringList{now->patientId(),        now->pids().join(','), now->diaryName(),
                       now->pumpSerialNumber(), now->deviceName(),     now->exchangeFilePath()}
        .join('|');
}

const QString NoSession = "||||Sanvio Merivo|";
/// The MAC of no data with the GUID "{g}", computed by another implementation like all MACs here.
const QString MacOfNothing = "ceab1b7ffaf45d45e0276a97225695e2b8be26d474f24f530ff16cb7a9522960";

} // namespace

class TestCommands final : public QObject
{
    Q_OBJECT

    const QTemporaryDir m_folder; // the current one

private Q_SLOTS:
    void initTestCase()
    {
        QVERIFY(QDir::setCurrent(m_folder.path()) && QDir().mkdir("-folder.dia"));
        QVERIFY(QFile("-week%20one.xDIA").open(QIODevice::WriteOnly));
    }
    void init() { PatientSession::create(nullptr); }

    void argumentsAreTaken()
    {
        // The arguments, those that are left, the command line and the job id.
        const QStringList rows[] = {{"-mine,import,-mine", "import,-mine", "-mine", "prepared"},
                                    {"-jobid,-mine,import", "import", "-jobid -mine", "-mine"},
                                    {"-jobid,,import", "import", "-jobid ''", ""},
                                    // The names of a folder and of a file in the current folder aren't options.
                                    {"-folder.dia", "", "-folder.dia", "prepared"},
                                    {"-week%20one.xDIA", "", "import -filepath '-week one.xDIA'", "prepared"}};
        for (const QStringList& row : rows) {
            const MessageCapture capture;
            HookedCommand command(nullptr);
            QStringList args = row.at(0).split(',');
            QCOMPARE(command.setArguments(args), row.at(1).startsWith("import"));
            QCOMPARE(QStringList({row.at(0), args.join(','), command.commandLine(), command.jobId()}), row);
            QCOMPARE(capture.texts(QtInfoMsg), words("adjust command line,-> complete"));
            QCOMPARE(capture.texts(QtDebugMsg).filter("suffix"),
                     row.at(2).startsWith("import") ? QStringList("### suffix: xDIA") : QStringList());
            QCOMPARE(capture.texts(QtDebugMsg).first(), "### " + row.at(0).section(',', 0, 0));
        }
    }

    void recordsAreAssigned()
    {
        ImportDataCommand source(nullptr);
        QVERIFY(source.optionA() && source.optionB());
        QCOMPARE(source.puid() + source.pids().join(','), QString("-,,,"));
        static_cast<ModeData&>(source) = ModeData("m", true, false);
        source.m_control = "c";
        source.m_puid = "p";
        source.m_pids = words("a,b");
        source.m_diaryName = "d";
        source.m_text1 = "1";
        source.m_text2 = "2";

        ImportDataCommand command(nullptr);
        const IModeData& mode = source;
        const IPatientData& patient = source;
        QVERIFY(command.assign(&mode) && command.assign(&patient));
        QVERIFY(!command.assign(static_cast<IModeData*>(nullptr)));
        QVERIFY(!command.assign(static_cast<IPatientData*>(nullptr)));
        QVERIFY(command.optionA() && !command.optionB());
        const QStringList texts{command.mode(),      command.control(),      command.puid(),
                                command.diaryName(), command.patientText1(), command.patientText2()};
        QCOMPARE(texts.join(""), QString("mcpd12"));
        QCOMPARE(command.pids(), words("a,b"));
        QCOMPARE(command.pid(-1) + command.pid(1) + command.pid(2) + command.patientText0(), QString("b"));
    }

    void typesAndClones()
    {
        for (int type = -2; type <= 14; ++type)
            QCOMPARE(ICommand(type).isValid(), type >= 0 && type <= 12);

        const QDateTime start = QDateTime::currentDateTime();
        ImportDataCommand import(this);
        const QDateTime made = QDateTime::fromString(import.jobId(), "yyyyMMdd.hhmmss.zzz");
        QVERIFY(made >= start.addMSecs(-1) && made <= QDateTime::currentDateTime());
        QCOMPARE(import.commandName() + import.importTag() + import.importNote(), QString("import"));
        QVERIFY(import.command() == &import && import.isExecutable() && !import.isImportFlagged() &&
                !import.extraResult() && !import.flagA() && !import.flagB());
        ICommand* bare = import.clone();
        QVERIFY(typeid(*bare) == typeid(ICommand) && bare->type() == 3);
        ::operator delete(bare); // an ICommand has nothing to destroy

        QueryDiaryCmd query(this);
        QStringList args = words("-jobid,9");
        QVERIFY(query.setArguments(args));
        const std::unique_ptr<QueryDiaryCmd> copy(static_cast<QueryDiaryCmd*>(query.clone()));
        QVERIFY(copy.get() != &query && copy->command() == copy.get() && copy->type() == 5 && copy->owner() == this);
        QCOMPARE(copy->commandName() + copy->jobId() + copy->commandLine(), QString("query9-jobid 9"));
    }

    void fileMac()
    {
        const std::tuple<const char*, QByteArray, QString> rows[] = {
            {"{g}", {}, MacOfNothing}, // no file
            {"{ü-€}", QByteArray(" <data/>\r\n\0\xff\n", 13),
             "89d309a1c8bc1dffce6620b739e7831b6c7f79f8018a7fa90f2584f436e1f068"},
            {"{g}", QByteArray(262400, 'x'), "a73e4458e197a300484b6a488b8b4013550fde7033fd76f3598741f2a64dcf08"}};
        for (const auto& [guid, bytes, mac] : rows) {
            QFile file("I0001.xml");
            QVERIFY(bytes.isNull() || (file.open(QIODevice::WriteOnly) && file.write(bytes) == bytes.size()));
            file.close();
            PatientSession::instance()->setExchangeFilePath(file.fileName());
            ImportDataCommand command(nullptr);
            command.m_databaseGuid = guid;
            QCOMPARE(command.fileMac(), mac);
        }
    }

    void importReachesTheHost()
    {
        PatientSession* session = PatientSession::instance();
        session->setPatientId("p-7");
        session->setPids(words("Doe,,O'Hara %1"));
        session->setDiaryName("diary");
        RecordingHost host;
        CommandController controller;
        controller.m_commandHandler = &host.commandHandler;
        const MessageCapture capture;
        controller.importData("{g}");
        QVERIFY(capture.texts(QtDebugMsg).isEmpty()); // the line begins with the command: no options

        const IImportDataCmd& import = *host.commandHandler.imports.front();
        QCOMPARE(import.pids() << import.fileMac(), words("Doe,,O'Hara %1") << MacOfNothing);
        const auto& command = dynamic_cast<const ImportDataCommand&>(import);
        QCOMPARE(CommandController::importArguments(command, "E:/MISC/I 1.xml").join('|'),
                 "import|-pid1|'Doe'|-pid3|'O'Hara %1'|-filepath|'E:/MISC/I 1.xml'|-filemac|'" + MacOfNothing + "'");
        QVERIFY(import.isValid() && command.commandLine().isEmpty() && command.owner() == &controller);
        // The command names the session's present file, but keeps its patient.
        PatientSession::create(nullptr)->setExchangeFilePath("/later.xml");
        QCOMPARE(import.filePath() + import.puid() + import.diaryName() + import.mode(), QString("/later.xmlp-7diary"));
    }

    void eventsWriteTheSession()
    {
        RecordingHost host;
        EventsObserver observer;
        observer.attach(&host.publisher, nullptr);
        const auto open = [&host](const char* puid) {
            host.openDiary(puid, {"Doe"});
            return session();
        };
        const auto change = [&host](const char* puid) {
            host.changePatient(puid, {"Roe"});
            return session();
        };
        QCOMPARE(change("p1"), NoSession);
        QCOMPARE(change(""), NoSession);
        const QString opened = "p1|Doe|p1.dia||Sanvio Merivo|", used = "p1|Doe|p1.dia|123|Other|/I1.xml";
        const auto use = [] {
            PatientSession::instance()->setPump("123", "Other");
            PatientSession::instance()->setExchangeFilePath("/I1.xml");
        };
        QCOMPARE(open("p1"), opened);
        use();
        QCOMPARE(change("p2"), used);
        QCOMPARE(change("p1"), "p1|Roe" + used.mid(6));
        {
            const SessionWatch run;
            {
                const SessionWatch dialog;
                QVERIFY(!dialog.hasDiaryChanged());
            }
            QCOMPARE(open("p1"), used);
            QVERIFY(!run.hasDiaryChanged());
        }
        QCOMPARE(open("p1"), opened); // the run is over
        use();
        const SessionWatch run;
        QCOMPARE(open("p2"), QString("p2|Doe|p2.dia||Sanvio Merivo|"));
        Q_EMIT host.publisher.diarySessionClosed({});
        QCOMPARE(session(), NoSession);
        QCOMPARE(open("p1"), opened);
        use();
        QCOMPARE(open("p1"), opened); // the run isn't one for this diary
        QVERIFY(run.hasDiaryChanged() && !SessionWatch().hasDiaryChanged());
    }
};

QTEST_GUILESS_MAIN(TestCommands)
#include "tst_commands.moc"
