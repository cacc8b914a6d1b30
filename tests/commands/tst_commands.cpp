// SPDX-FileCopyrightText: 2026 The Merivo Connections developers
// SPDX-License-Identifier: MIT
#include "commands/CommandController.h"
#include "commands/CommandKeys.h"
#include "commands/ImportDataCommand.h"
#include "commands/QueryDiaryCmd.h"
#include "plugin/session/PatientSession.h"
#include "support/MessageCapture.h"
#include "support/RecordingHost.h"

#include <QDateTime>
#include <QSet>
#include <QTemporaryDir>
#include <QTest>

#include <memory>
#include <typeinfo>

namespace {

/// A command with an option of its own.
class HookedCommand final : public CommandExt
{
public:
    HookedCommand()
        : CommandExt(nullptr)
    {}
    ICommand* command() override { return nullptr; }
    QString commandName() const override { return {}; }
    void prepare() override { ++prepared; }
    bool parseOption(QStringList& args) override
    {
        const bool mine = args.first() == QLatin1String("-mine");
        if (mine)
            args.removeFirst();
        return mine;
    }
    int prepared = 0;
};

QStringList words(const char* text)
{
    return *text ? QString::fromUtf8(text).split(QLatin1Char(',')) : QStringList();
}

} // namespace

class TestCommands final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void arguments_data()
    {
        QTest::addColumn<QStringList>("args");
        QTest::addColumn<bool>("understood");
        QTest::addColumn<QStringList>("left");
        QTest::addColumn<QString>("commandLine");
        QTest::addColumn<QString>("jobId");
        const auto row = [](const char* args, bool understood, const char* left, const char* line, const char* jobId) {
            QTest::newRow(args) << words(args) << understood << words(left) << QString(line) << QString(jobId);
        };
        const char* const kept = "(kept)";
        row("", true, "", "", kept);
        row("import,-pid1,'Doe'", true, "import,-pid1,'Doe'", "", kept);
        row(",-jobid,42", true, ",-jobid,42", "", kept);
        row("-jobid,42,import", true, "import", "-jobid 42", "42");
        row("-jobid,-mine,import", true, "import", "-jobid -mine", "-mine");
        row("-jobid,1,-mine,-jobid,2", true, "", "-jobid 1 -mine -jobid 2", "2");
        row("-jobid", false, "", "-jobid", kept);
        row("-bogus,import", false, "import", "-bogus", kept);
        row("-jobid,7,-JobId,8", false, "8", "-jobid 7 -JobId", "7");
        row("-jobid,a%20b", true, "", "-jobid 'a b'", "a%20b");
        row("-jobid,", true, "", "-jobid ''", "");
        row("-jobid,'it \"is\"'", true, "", "-jobid 'it is'", "'it \"is\"'");
        // A bare file among the options, as it lies in the current folder.
        row("-week.xDIA", false, "", "import -filepath -week.xDIA", kept);
        row("-week%20one.dia", false, "", "import -filepath '-week one.dia'", kept);
        row("-week.dia.txt", false, "", "-week.dia.txt", kept);
        row("-folder.dia", false, "", "-folder.dia", kept);
        row("-mine,-week.xDIA", false, "", "-mine -week.xDIA", kept);
    }
    void arguments()
    {
        QFETCH(QStringList, args);
        QFETCH(QString, jobId);
        const QTemporaryDir folder;
        for (const char* name : {"-week.xDIA", "-week%20one.dia", "-week.dia.txt"})
            QVERIFY(QFile(folder.filePath(name)).open(QIODevice::WriteOnly));
        QVERIFY(QDir(folder.path()).mkdir(QStringLiteral("-folder.dia")));
        const QString before = QDir::currentPath();
        QVERIFY(QDir::setCurrent(folder.path()));
        HookedCommand command;
        const QString ownId = command.jobId();
        const bool understood = command.setArguments(args);
        QVERIFY(QDir::setCurrent(before));

        QTEST(understood, "understood");
        QTEST(args, "left");
        QTEST(command.commandLine(), "commandLine");
        QCOMPARE(command.jobId(), jobId == QLatin1String("(kept)") ? ownId : jobId);
        QCOMPARE(command.prepared, 1);
    }

    void options_data()
    {
        QTest::addColumn<QStringList>("args");
        QTest::addColumn<QString>("values"); // mode, control, puid, diary name, what is left; empty: not understood
        QTest::newRow("mode") << words("-mode,a,-mode") << QStringLiteral("a||-||-mode");
        QTest::newRow("control") << words("-control,x&quot;y&quot;") << QStringLiteral("|x\"y\"|-||");
        QTest::newRow("puid") << words("-puid,p1,rest") << QStringLiteral("||p1||rest");
        QTest::newRow("diary name") << words("-diaryname,'d 1'") << QStringLiteral("||-|'d 1'|");
        for (const char* text :
             {"-mode", "-control", "-puid", "-diaryname", "-Mode,a", "-PUID,p", "mode,a", "-x,y", ",a"})
            QTest::newRow(text) << words(text) << QString();
    }
    void options()
    {
        QFETCH(QStringList, args);
        QFETCH(QString, values);
        const QStringList before = args;
        ImportDataCommand command(nullptr);
        const bool taken = command.parseModeOption(args) || command.parsePatientOption(args);
        QCOMPARE(taken, !values.isEmpty());
        const QStringList now{command.mode(), command.control(), command.puid(), command.diaryName(), args.join(',')};
        QCOMPARE(now.join('|'), taken ? values : "||-||" + before.join(','));
    }

    void records()
    {
        ImportDataCommand command(nullptr);
        QVERIFY(command.optionA() && command.optionB());
        QCOMPARE(command.pids(), (QStringList{{}, {}, {}, {}}));
        QVERIFY(!command.assign(static_cast<const IModeData*>(nullptr)));
        QVERIFY(!command.assign(static_cast<const IPatientData*>(nullptr)));
        ModeData mode(QStringLiteral("m"), false, false);
        mode.m_control = QStringLiteral("c");
        const PatientEvent<IPatientChangedEvt> patient(QStringLiteral("p"), words("a,b"), QStringLiteral("d"));
        QVERIFY(command.assign(&mode) && command.assign(&patient));
        QVERIFY(!command.optionA() && !command.optionB());
        QCOMPARE(command.mode() + command.control() + command.puid() + command.diaryName(), QStringLiteral("mcpd"));
        QCOMPARE(command.pids(), words("a,b"));
        QCOMPARE(command.pid(1), QStringLiteral("b"));
        QVERIFY(command.pid(-1).isEmpty() && command.pid(2).isEmpty());
    }

    void typesAndClones()
    {
        for (int type = -2; type <= 14; ++type)
            QCOMPARE(ICommand(type).isValid(), type >= 0 && type <= 12);

        const QDateTime start = QDateTime::currentDateTime();
        ImportDataCommand import(this);
        const QDateTime made = QDateTime::fromString(import.jobId(), QStringLiteral("yyyyMMdd.hhmmss.zzz"));
        QVERIFY(made >= start.addMSecs(-1) && made <= QDateTime::currentDateTime());
        QCOMPARE(import.command(), static_cast<ICommand*>(&import));
        QCOMPARE(import.commandName() + import.importTag() + import.importNote(), QStringLiteral("import"));
        QVERIFY(import.isExecutable() && !import.isImportFlagged() && !import.flagA() && !import.flagB());
        QCOMPARE(import.owner(), this);
        ICommand* bare = import.clone();
        QVERIFY(typeid(*bare) == typeid(ICommand));
        QCOMPARE(bare->type(), 3);
        ::operator delete(bare); // Of no other class, so nothing is left to be destroyed.

        QueryDiaryCmd query(this);
        QStringList args = words("-jobid,9");
        const MessageCapture capture;
        QVERIFY(query.setArguments(args));
        QCOMPARE(capture.texts(QtInfoMsg), words("adjust command line,-> complete"));
        QCOMPARE(capture.texts(QtDebugMsg), words("### -jobid,### 9"));
        const std::unique_ptr<QueryDiaryCmd> copy(static_cast<QueryDiaryCmd*>(query.clone()));
        QVERIFY(copy.get() != &query && copy->command() == copy.get());
        QCOMPARE(copy->type(), 5);
        QCOMPARE(copy->commandName() + copy->jobId() + copy->commandLine(), QStringLiteral("query9-jobid 9"));
        QCOMPARE(copy->owner(), this);
    }

    void vocabulary()
    {
        QCOMPARE(CommandKeys::All.size(), 49);
        QCOMPARE(QSet<QString>(CommandKeys::All.cbegin(), CommandKeys::All.cend()).size(), 49);
        QCOMPARE(CommandKeys::All.first() + CommandKeys::All.last(), QStringLiteral("jobcmddiarydiffs"));
        QCOMPARE(CommandKeys::OutputFormats, words("pdf,png,txt,csv,html,xml"));
        QCOMPARE(CommandKeys::ReportVariants.value(QStringLiteral("graph")), words("combined,staggered"));
    }

    void fileMac_data()
    {
        QTest::addColumn<QString>("guid");
        QTest::addColumn<QByteArray>("bytes"); // null: there is no file; "/": a folder in its place
        QTest::addColumn<QString>("mac");      // worked out by another implementation
        const QByteArray data("<data/>\r\n\0\xff", 11);
        QByteArray large;
        for (int i = 0; i < 256 * 1025; ++i)
            large.append(static_cast<char>(i));
        const char* const ofNothing = "ceab1b7ffaf45d45e0276a97225695e2b8be26d474f24f530ff16cb7a9522960";
        const auto row = [](const char* name, const char* guid, const QByteArray& bytes, const char* mac) {
            QTest::newRow(name) << QString(guid) << bytes << QString(mac);
        };
        row("missing", "{g}", {}, ofNothing);
        row("folder", "{g}", "/", ofNothing);
        row("empty", "{g}", "", ofNothing);
        row("bytes", "{g}", data, "3f33720d74f21f5eceea75e9d8eccec8a70ab94422bb4b93a39975ca180c8557");
        row("other guid", "{h}", data, "d85f74e447f1473203ef869d7251ac948efe46ebff5c0bf90708f661ce605426");
        row("no guid", "", data, "02f8fa75182ab5ba992bd50cec96503f1c583f1bfbfcd3f731310f17b569709e");
        row("utf-8", "{ü-€}", data, "5677de049be232647952212e75dfff8f97423a0580687fa89615feb2eb489279");
        row("large", "{g}", large, "44343cf8b6d18abf4795fda5a418c0aa526308b09218541984e0cb1b3b120c85");
    }
    void fileMac()
    {
        QFETCH(QString, guid);
        QFETCH(QByteArray, bytes);
        const QTemporaryDir folder;
        const QString path = folder.filePath(QStringLiteral("I0001.xml"));
        if (bytes == "/") {
            QVERIFY(QDir().mkdir(path));
        } else if (!bytes.isNull()) {
            QFile file(path);
            QVERIFY(file.open(QIODevice::WriteOnly) && file.write(bytes) == bytes.size());
        }
        PatientSession::instance()->setExchangeFilePath(path);
        const MessageCapture capture;
        ImportDataCommand command(nullptr);
        command.m_databaseGuid = guid;
        QTEST(command.fileMac(), "mac");
        QVERIFY(capture.messages().isEmpty());
    }

    void importReachesTheHost()
    {
        const QTemporaryDir folder;
        QFile file(folder.filePath(QStringLiteral("I0001.xml")));
        QVERIFY(file.open(QIODevice::WriteOnly));
        PatientSession* session = PatientSession::create(nullptr);
        session->setPatientId(QStringLiteral("p-7"));
        session->setPids(words("Doe,,1970-02-03"));
        session->setDiaryName(QStringLiteral("diary"));
        session->setExchangeFilePath(file.fileName());

        RecordingHost host;
        CommandController controller;
        controller.m_commandHandler = &host.commandHandler;
        const MessageCapture capture;
        controller.importData(QStringLiteral("{g}"));
        QCOMPARE(host.commandHandler.commandTypes, QList<int>{3});
        QVERIFY(capture.texts(QtDebugMsg).isEmpty()); // The line starts with the command's word: no option is seen.

        const IImportDataCmd& import = *host.commandHandler.imports.front();
        QVERIFY(import.isValid());
        QCOMPARE(import.puid() + import.diaryName() + import.mode(), QStringLiteral("p-7diary"));
        QCOMPARE(import.pids(), words("Doe,,1970-02-03"));
        QCOMPARE(import.filePath(), file.fileName());
        QVERIFY(import.fileMac().startsWith(QLatin1String("ceab1b7f")));
        const auto& extension = dynamic_cast<const CommandExt&>(import);
        QVERIFY(extension.commandLine().isEmpty());
        QCOMPARE(extension.owner(), &controller);

        // The command names the session's file, whichever that is by now; its patient stays.
        session = PatientSession::create(nullptr);
        session->setExchangeFilePath(QStringLiteral("/later.xml"));
        QCOMPARE(import.filePath(), QStringLiteral("/later.xml"));
        QCOMPARE(import.puid(), QStringLiteral("p-7"));
    }
};

QTEST_GUILESS_MAIN(TestCommands)
#include "tst_commands.moc"
