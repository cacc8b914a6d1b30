// SPDX-FileCopyrightText: 2026 The Merivo Connections developers
// SPDX-License-Identifier: MIT
#include "commands/CommandController.h"
#include "commands/CommandKeys.h"
#include "commands/EventsObserver.h"
#include "commands/ImportDataCommand.h"
#include "commands/QueryDiaryCmd.h"
#include "plugin/session/PatientSession.h"
#include "plugin/session/SessionWatch.h"
#include "support/MessageCapture.h"
#include "support/RecordingHost.h"

#include <QDateTime>
#include <QPointer>
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
    void prepare() override { m_jobId = "own"; }
    bool parseOption(QStringList& args) override { return args.first() == "-mine" && args.removeOne("-mine"); }
};

QStringList words(const char* text)
{
    return *text ? QString(text).split(',') : QStringList();
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
/// The code of no data under the GUID "{g}", as all codes here worked out by another implementation.
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
        for (const char* name : {"-week.xDIA", "-week%20one.dia", "-week.dia.txt"})
            QVERIFY(QFile(name).open(QIODevice::WriteOnly));
    }
    void init() { PatientSession::create(nullptr); }

    void arguments()
    {
        // The words; whether they are understood, what is left, the command line, the job id.
        const QPair<const char*, QString> rows[] = {
            {"", "1|||own"},
            {"import,-pid1,'Doe'", "1|import,-pid1,'Doe'||own"},
            {",-jobid,42", "1|,-jobid,42||own"},
            {"-jobid,42,import", "1|import|-jobid 42|42"},
            {"-jobid,-mine,import", "1|import|-jobid -mine|-mine"},
            {"-jobid,1,-mine,-jobid,2", "1||-jobid 1 -mine -jobid 2|2"},
            {"-jobid", "0||-jobid|own"},
            {"-bogus,import", "0|import|-bogus|own"},
            {"-jobid,7,-JobId,8", "0|8|-jobid 7 -JobId|7"},
            {"-jobid,a%20b", "1||-jobid 'a b'|a%20b"},
            {"-jobid,", "1||-jobid ''|"},
            {"-jobid,'it \"is\"'", "1||-jobid 'it is'|'it \"is\"'"},
            // A bare file among the options, as it lies in the current folder.
            {"-week.xDIA", "0||import -filepath -week.xDIA|own"},
            {"-week%20one.dia", "0||import -filepath '-week one.dia'|own"},
            {"-week.dia.txt", "0||-week.dia.txt|own"},
            {"-folder.dia", "0||-folder.dia|own"},
            {"-mine,-week.xDIA", "0||-mine -week.xDIA|own"},
        };
        for (const auto& [text, outcome] : rows) {
            HookedCommand command(nullptr);
            QStringList args = words(text);
            const MessageCapture capture;
            const QString understood = QString::number(command.setArguments(args));
            const QStringList now{understood, args.join(','), command.commandLine(), command.jobId()};
            QCOMPARE(now.join('|'), outcome);
            if (text == QLatin1String("-week.xDIA")) {
                QStringList log;
                for (const MessageCapture::Message& message : capture.messages())
                    log << QString::number(message.type) + message.text; // 4 is info, 0 is debug
                QCOMPARE(log, words("4adjust command line,0### -week.xDIA,0### suffix: xDIA,4-> complete"));
            }
        }
    }

    void options()
    {
        const auto outcome = [](const char* line) {
            QStringList args = words(line);
            ImportDataCommand command(nullptr);
            const bool taken = command.parseModeOption(args) || command.parsePatientOption(args);
            const QStringList values{command.mode(), command.control(), command.puid(), command.diaryName()};
            return QString::number(taken) + values.join('|') + '<' + args.join(',');
        };
        QCOMPARE(outcome("-mode,a,-mode"), QString("1a||-|<-mode"));
        QCOMPARE(outcome("-control,x&quot;y&quot;"), QString("1|x\"y\"|-|<"));
        QCOMPARE(outcome("-puid,p1,rest"), QString("1||p1|<rest"));
        QCOMPARE(outcome("-diaryname,'d 1'"), QString("1||-|'d 1'<"));
        for (const char* bad :
             {"-mode", "-control", "-puid", "-diaryname", "-Mode,a", "-PUID,p", "mode,a", "-x,y", ",a"})
            QCOMPARE(outcome(bad), QString("0||-|<") + bad);
    }

    void recordsAreAssigned()
    {
        ImportDataCommand source(nullptr);
        QVERIFY(source.optionA() && source.optionB());
        QCOMPARE(source.pids(), (QStringList{{}, {}, {}, {}}));
        static_cast<ModeData&>(source) = ModeData("m", true, false);
        source.m_control = "c";
        source.m_puid = "p";
        source.m_pids = words("a,b");
        source.m_diaryName = "d";
        source.m_text1 = "1";
        source.m_text2 = "2";

        ImportDataCommand command(nullptr);
        const IModeData* mode = nullptr;
        const IPatientData* patient = nullptr;
        QVERIFY(!command.assign(mode) && !command.assign(patient));
        QVERIFY(command.assign(mode = &source) && command.assign(patient = &source));
        QVERIFY(command.optionA() && !command.optionB());
        QCOMPARE(command.mode() + command.control() + command.puid() + command.diaryName() + command.patientText1() +
                     command.patientText2(),
                 QString("mcpd12"));
        QVERIFY(command.patientText0().isEmpty() && command.pid(-1).isEmpty() && command.pid(2).isEmpty());
        QVERIFY(command.pids() == words("a,b") && command.pid(1) == "b");
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
        ::operator delete(bare); // Of no other class, so nothing is left to be destroyed.

        QueryDiaryCmd query(this);
        QStringList args = words("-jobid,9");
        QVERIFY(query.setArguments(args));
        const std::unique_ptr<QueryDiaryCmd> copy(static_cast<QueryDiaryCmd*>(query.clone()));
        QVERIFY(copy.get() != &query && copy->command() == copy.get() && copy->type() == 5 && copy->owner() == this);
        QCOMPARE(copy->commandName() + copy->jobId() + copy->commandLine(), QString("query9-jobid 9"));
    }

    void vocabulary()
    {
        QCOMPARE(CommandKeys::All.join(' '),
                 QString("jobcmd jobid msgid msgtxt puid pid1 pid2 pid3 pid4 pido1 pido2 pido3 pido4 diary-from "
                         "diary-to range-from range-to testing-from testing-to period-from period-to bg-mean bg-sd "
                         "bg-hbgi bg-lbgi bg-unit bg-count bg-freq bg-color-hypo bg-color-mean bg-color-sd "
                         "bg-target-high bg-target-low bg-target-hypo bg-target-count-high bg-target-count-in "
                         "bg-target-count-low bg-target-count-hypo ip-bolus-count ip-bolus-freq ip-bolus-avg "
                         "ip-basal-avg app-path diaryname datapath instance-id patient-guid vtlpid diarydiffs"));
        QCOMPARE(CommandKeys::OutputFormats, words("pdf,png,txt,csv,html,xml"));
        QCOMPARE(CommandKeys::ReportVariants.value("graph"), words("combined,staggered"));
    }

    void fileMac()
    {
        const QByteArray data(" <data/>\r\n\0\xff\n", 13);
        const std::tuple<const char*, QByteArray, QString> rows[] = {
            {"{g}", {}, MacOfNothing}, // There is no file.
            {"{g}", "", MacOfNothing},
            {"{g}", data, "53c5bb1eeb35201f1c56c35464e5fadb8da8d1aadde3b903bbbea4c73e6c1790"},
            {"{h}", data, "fcef8d434da6d3c27568085e8b7f6e1387e9c8873a3e7643027d4767b536e9ed"},
            {"{ü-€}", data, "89d309a1c8bc1dffce6620b739e7831b6c7f79f8018a7fa90f2584f436e1f068"},
            {"{g}", QByteArray(262400, 'x'), "a73e4458e197a300484b6a488b8b4013550fde7033fd76f3598741f2a64dcf08"},
        };
        for (const auto& [guid, bytes, mac] : rows) {
            QFile file("I0001.xml");
            file.remove();
            QVERIFY(bytes.isNull() || (file.open(QIODevice::WriteOnly) && file.write(bytes) == bytes.size()));
            file.close();
            PatientSession::instance()->setExchangeFilePath(file.fileName());
            ImportDataCommand command(nullptr);
            command.m_databaseGuid = guid;
            QCOMPARE(command.fileMac(), mac);
        }
    }

    void importWords()
    {
        const QStringList rows[] = {
            {"Doe,,1970-02-03", "-pid1|'Doe'|-pid3|'1970-02-03'|"}, {",,,O'Hara %1", "-pid4|'O'Hara %1'|"}, {",", ""}};
        ImportDataCommand command(nullptr);
        command.m_databaseGuid = "{g}";
        for (const QStringList& row : rows) {
            command.m_pids = row.at(0).split(',');
            QCOMPARE(CommandController::importWords(command, "E:/MISC/I 1.xml").join('|'),
                     "import|" + row.at(1) + "-filepath|'E:/MISC/I 1.xml'|-filemac|'" + MacOfNothing + "'");
        }
    }

    void importReachesTheHost()
    {
        PatientSession* session = PatientSession::instance();
        session->setPatientId("p-7");
        session->setPids(words("Doe,,1970-02-03"));
        session->setDiaryName("diary");
        RecordingHost host;
        CommandController controller;
        controller.m_commandHandler = &host.commandHandler;
        const MessageCapture capture;
        controller.importData("{g}");
        QVERIFY(capture.texts(QtDebugMsg).isEmpty()); // The line starts with the command's word: no option is seen.

        const IImportDataCmd& import = *host.commandHandler.imports.front();
        QCOMPARE(import.pids() << import.fileMac(), words("Doe,,1970-02-03") << MacOfNothing);
        const auto& extension = dynamic_cast<const CommandExt&>(import);
        QVERIFY(import.isValid() && extension.commandLine().isEmpty() && extension.owner() == &controller);
        // The command names the session's file, whichever that is by now; its patient stays.
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
            using Event = PatientEvent<IPatientChangedEvt>;
            Q_EMIT host.publisher.patientChanged(IPatientChangedEvtPtr(new Event(puid, {"Roe"}, "x")));
            return session();
        };
        QCOMPARE(change("p1"), NoSession);
        QCOMPARE(change(""), NoSession);
        const QString opened = "p1|Doe|diary p1||Sanvio Merivo|", used = "p1|Doe|diary p1|123|Other|/I1.xml";
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
        QCOMPARE(open("p2"), QString("p2|Doe|diary p2||Sanvio Merivo|"));
        Q_EMIT host.publisher.diarySessionClosed({});
        QCOMPARE(session(), NoSession);
        QCOMPARE(open("p1"), opened);
        use();
        QCOMPARE(open("p1"), opened); // of no run any more
        QVERIFY(run.hasDiaryChanged() && !SessionWatch().hasDiaryChanged());
    }

    void replacedExtensionPointsAreDeleted()
    {
        RecordingHost host;
        QPointer<IEventPublisher> first = new RecordingEventPublisher;
        QPointer<IDatabase> database = new RecordingDatabase(host.journal);
        {
            EventsObserver observer;
            observer.attach(first, database);
            observer.attach(first, database);
            QVERIFY(first && database);
            observer.attach(&host.publisher, database);
            QVERIFY(!first && database);
            observer.attach(&host.publisher, nullptr);
            QVERIFY(!database);
            auto* gone = new RecordingDatabase(host.journal);
            observer.attach(&host.publisher, gone);
            delete gone; // by the host itself: not to be deleted again
            observer.attach(&host.publisher, nullptr);
        }
        host.openDiary("p3"); // Of the last one only the connections have gone.
        QCOMPARE(session(), NoSession);
    }
};

QTEST_GUILESS_MAIN(TestCommands)
#include "tst_commands.moc"
