// SPDX-FileCopyrightText: 2026 The Merivo Connections developers
// SPDX-License-Identifier: MIT
#include "reader/DeviceList.h"
#include "workbench/Programs.h"
#include "workbench/reader/ReaderDrive.h"
#include "workbench/reader/ReaderSimulator.h"
#include "workbench/reader/Scenario.h"
#include "workbench/traffic/ReaderCommand.h"

#include <QDir>
#include <QSignalSpy>
#include <QTemporaryDir>

#include <array>

namespace {

const QByteArray Head = "QD17-C RemoteControl File\nCommand=";
const QByteArray Pumps = R"({ "times": { "progress": 5 }, "exchange": { "days": 3 }, "pumps": [
    { "serialNumber": "MV-1", "address": "A1", "patientId": "p1" },
    { "serialNumber": "MV 2", "address": "A2", "confirmationCode": "4711", "user": { "does": "confirms" } },
    { "serialNumber": "MV-3", "address": "A3", "patientId": "p3", "inRange": false },
    { "serialNumber": "MV-4", "address": "A4", "patientId": "p4", "errors": { "BTREAD": 32, "BTPUMPREASSIGN": 140 } } ] })";

const QByteArray Lone = R"({"pumps": [{"serialNumber": "MV-1", "address": "A")";

Scenario world(const QString& fault = {})
{
    QStringList errors;
    QString error;
    Scenario scenario = parseScenario(Pumps, &errors).value();
    scenario.faults.add(fault, &error);
    return scenario;
}

/// The plug-in's side of a drive.
struct Drive
{
    QString file(const QString& name) const { return path + "/MISC/" + name; }
    bool send(const QByteArray& command) const { return write(file("CommandFile.txt"), Head + command); }
    bool trigger() const { return write(path + "/MISCNoCommand.txt", {}); }
    QString devices() const
    {
        QStringList devices;
        for (const DeviceInfo& device : readDeviceList(file({}), "DEVLIST.XML"))
            devices << device.serialNumber + '=' + device.btAddress + '=' + device.patientId;
        return devices.join(' ');
    }
    /// Command, status word, result and error code as they are shown now.
    QString shown() const
    {
        const QList<QByteArray> lines = bytesOf(file("STATUS.TXT")).split('\n');
        return lines.value(1).mid(4) + ' ' + lines.value(2).mid(10) + ' ' + lines.value(3).mid(10) + ' ' +
               lines.value(4).mid(12).split('.').first();
    }

    QString path;
};

/// A reader at work on a folder.
struct Bench : Drive
{
    explicit Bench(const QTemporaryDir& folder, const Scenario& scenario = world(), bool instant = true)
        : Drive{folder.path()}
        , end(path)
        , reader(end, scenario, instant)
    {
        QString error;
        QObject::connect(&reader, &ReaderSimulator::logged, &reader, [this](const QString& line) { log << line; });
        QVERIFY2(end.open(&error) && reader.start(&error), qPrintable(error));
    }
    /// What the next trigger brings to light.
    QString status()
    {
        QSignalSpy triggered(&end, &ReaderDrive::triggered);
        return trigger() && triggered.wait() ? shown() : "the trigger was lost";
    }
    /// The status behind a command, once the log holds its ending.
    QString answer(const QByteArray& command, const char* ending = " (done|failed),|^refused")
    {
        const QByteArray before = bytesOf(file("STATUS.TXT"));
        log.clear();
        send(command);
        if (!QTest::qWaitFor([&] { return !log.filter(QRegularExpression(ending)).isEmpty(); }))
            return "no such ending in the log: " + log.join('\n');
        if (bytesOf(file("STATUS.TXT")) != before)
            return "an answer without the trigger";
        return status();
    }

    ReaderDrive end;
    ReaderSimulator reader;
    QStringList log;
};

} // namespace

class TestReaderProgram final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void commandIsStrictToTheByte()
    {
        const std::pair<QByteArray, const char*> files[] = {
            {"QD17-D RemoteControl File\nCommand=ABORT ", "it doesn't begin with"},
            {"\xef\xbb\xbf" + Head + "ABORT ", "it isn't UTF-8, or begins with a byte order mark"},
            {Head + "btread \"MV-1\"", "unknown command \"btread\""},
            {Head + "ABORT", "\"ABORT\" isn't of the form \"ABORT \""},
            {Head + "ABORT \n", "a control character or a line end inside the command"},
            {Head + "BTISPAIRED p1\r", "a control character"},
            {Head + "BTISPAIRED  p1", "\"BTISPAIRED  p1\" isn't of the form \"BTISPAIRED PATIENT\""},
            {Head + "BTISPAIRED p\xe4", "it isn't UTF-8"},
            {Head + "BTREAD \"MV-1", "\"BTREAD \"MV-1\" isn't of the form \"BTREAD \"SERIAL\"\""},
            {Head + "BTDELETEADDR \"MV-1\"", "isn't of the form \"BTDELETEADDR  \"SERIAL\"\""},
            {Head + "BTPAIRCONFIRM true", "isn't of the form \"BTPAIRCONFIRM 0|1\""},
            {Head + "BTPAIR  \"MV-1\" p1", "isn't of the form \"BTPAIR ADDRESS \"SERIAL\" PATIENT\""},
        };
        for (const auto& [bytes, expected] : files) {
            QString fault;
            QVERIFY2(!parseCommandFile(bytes, &fault) && fault.contains(expected), qPrintable(fault));
        }
    }

    void scenarioErrorNamesItsField()
    {
        const std::pair<QByteArray, const char*> scenarios[] = {
            {"{\n \"seed\": 1,\n}", "line 3, column "},
            {R"({"times": {"read": 0.5}})", "times.read: must be a whole number from 0 to 3600000"},
            {R"({"exchange": {"lastDay": "2026-02-30"}})", "exchange.lastDay: must be a date such as 2026-03-01"},
            {R"({"pumps": [{"serialNumber": "12", "address": "A"}]})", "pumps[0].serialNumber: must have three"},
            {Lone + R"(, "user": {"does": "sleeps"}}]})", "pumps[0].user.does: must be \"confirms\""},
            {Lone + R"(, "errors": {"BTREAD": 0}}]})", "pumps[0].errors.BTREAD: must be a whole number from 1 to"},
            {Lone + R"(}, {"serialNumber": "MV-1", "address": "B"}]})", "pumps[1].serialNumber: \"MV-1\" is that of"},
            {R"({"faults": ["no-start", "no-stop"]})", "faults[1]: fault \"no-stop\": unknown"},
            {R"({"faults": ["fail"]})", "faults[0]: fault \"fail\": needs a value"},
            {R"({"faults": ["slow=-1"]})", "faults[0]: fault \"slow=-1\": the value must be a whole number"},
            {R"({"faults": ["log-missing@ABORT"]})", "faults[0]: fault \"log-missing@ABORT\": can't be restricted"},
            {R"({"faults": ["vanish=now"]})", "faults[0]: fault \"vanish=now\": the value must be command,"},
            {R"({"firmware": "\ud800"})", "firmware: must hold whole characters"},
        };
        for (const auto& [json, error] : scenarios) {
            QStringList errors;
            QVERIFY2(!parseScenario(json, &errors) && errors.size() == 1, json);
            QVERIFY2(errors.first().startsWith(error), qPrintable(errors.first()));
        }
    }

    /// One reader, so each command counts for those behind it.
    void commandsAreAnswered()
    {
        const QTemporaryDir folder;
        Bench bench(folder);
        QCOMPARE(bench.shown(), QString("NONE done  0"));
        QCOMPARE(bytesOf(bench.file("VERSION.log")).split('\n').value(4), QByteArray("Firmware version 3.2.23"));
        const QString exchanges = R"(SEARCH 00100 = done 3 0; ABORT  = done  0; BTISPAIRED {p 2} = done 0 0
BTISPAIRED p1 = done MV-1 0; BTISPAIRED  = done 0 0; BTREAD "" = failed  31; BTDELETEADDR  "" = failed  31
BTREAD "MV-1" = done IMV-1_0001.xml 0; BTREAD "MV-1" = done IMV-1_0002.xml 0; BTPAIR A2 "" p2 = failed  31
BTREAD "MV 2" = failed  31; BTREAD "MV-3" = failed  31; BTREAD "MV-4" = failed  32; BTPAIR A2 "MV 2"  = failed  25
BTPAIRCONFIRM 1 = failed  20; BTPAIR A2 "MV 2" p2 = done 4711 0; ABORT  = done  0; BTPAIRCONFIRM 1 = failed  20
BTPAIR A2 "MV 2" p2 = done 4711 0; BTISPAIRED p2 = done 0 0; BTPAIRCONFIRM 1 = failed  20
BTPAIR A2 "MV 2" p2 = done 4711 0; BTPAIRCONFIRM 0 = done  0; BTISPAIRED p2 = done 0 0; BTPAIR A1 "MV 2" p2 = failed  31
BTPAIR A2 "MV 2" {p 2} = done 4711 0; BTPAIRCONFIRM 1 = done MV 2 0; BTISPAIRED {p 2} = done MV 2 0
BTPUMPREASSIGN "MV-3" p1 = done MV-3 0; BTISPAIRED p1 = done MV-3 0; BTISPAIRED p3 = done 0 0
BTPUMPREASSIGN "MV-4" p2 = failed  140; BTPUMPREASSIGN "MV-9" p2 = failed  31; BTPUMPREASSIGN "MV-3" 0 = failed  25
BTDELETEADDR  "MV-3" = done MV-3 0; BTISPAIRED p1 = done 0 0; BTDELETEADDR  "MV-9" = failed  31)";
        for (const auto& [command, answer] : pairsOf(exchanges))
            QCOMPARE(bench.answer(command.toUtf8()), command.section(' ', 0, 0) + ' ' + answer);
        const QByteArray before = bytesOf(bench.file("STATUS.TXT"));
        bench.answer("BTDELETEADDR  \"MV-9\""); // an equal command counts again; the header tells its answer apart
        QVERIFY(bytesOf(bench.file("STATUS.TXT")) != before);
        QCOMPARE(bench.answer("BTISPAIRED  p1"), QString("BTDELETEADDR failed  31")); // refused, so not answered
        QCOMPARE(QDir(bench.file({})).entryList({"I*"}), QStringList("IMV-1_0002.xml"));
        QCOMPARE(bench.devices(), QString("MV-1=A1= MV 2=A2={p 2} MV-4=A4=p4"));
        const QByteArray status = "\nCmd=BTDELETEADDR\nStatus  = failed\nResult  = \nError code -31.\n";
        QVERIFY(before.startsWith("QD17-C RemoteControl File ") && before.endsWith(status));
    }

    /// A pump, and the error code and the device list's patient behind each of five commands.
    void worldDecides()
    {
        const QString worlds = R"("user": { "does": "declines" } = 0 21 31 24 0; "inRange": false = 31 20 31 24 0
"user": { "does": "does nothing", "afterMs": 0 } = 0 22 31 24 0; "errors": { "BTPAIRCONFIRM": 777 } = 0 777 31 24 0
"user": { "does": "walks away" } = 0 32 31 24 0; "user": { "does": "confirms", "afterMs": 30001 } = 0 22 31 24 0
"user": { "does": "confirms", "afterMs": 30000 } = 0 0p2 0p2 0p3 0; "linkHoldsMs": 1999 = 32 20 31 24 0
"linkHoldsMs": 2000 = 0 0p2 32p2 0p3 0; "linkHoldsMs": 2000, "user": { "does": "declines", "afterMs": 2001 } = 0 32 31 24 0
"patientId": "p", "inRange": false = 124p 20p 31p 0p3 0)";
        for (const auto& [pump, expected] : pairsOf(worlds)) {
            QStringList seen, errors;
            const QTemporaryDir folder;
            Bench bench(folder, parseScenario(Lone + ',' + pump.toUtf8() + "}]}", &errors).value());
            for (const char* command : {R"(BTPAIR A "MV-1" p2)", "BTPAIRCONFIRM 1", R"(BTREAD "MV-1")",
                                        R"(BTPUMPREASSIGN "MV-1" p3)", R"(BTDELETEADDR  "MV-1")"}) {
                seen << bench.answer(command).section(' ', -1);
                seen.last() += bench.devices().section('=', -1);
            }
            QCOMPARE(pump + seen.join(' '), pump + expected);
        }
    }

    /// Each strikes one read-out; the command behind it and the next read-out are sound again.
    void faultsStrikeAndPass()
    {
        // How often "running" came, how many pumps are listed, how many files are in MISC, and the status.
        const QString faults = R"(no-start = 0 3 4 NONE done  0; no-running = 0 3 5 BTREAD done IMV-1_0001.xml 0
unknown-status-word=Done = 0 3 5 BTREAD Done IMV-1_0001.xml 0; fail-without-code = 1 3 4 BTREAD failed  
stale-status = 1 3 5 NONE done  0; stale-until=2 = 1 3 5 NONE done  0; unchanged-status = 1 3 5 NONE done  0
header-only = 1 3 5 NONE done  0; half-status=45 = 1 3 5 BTR   ; empty-status = 1 3 5    ; folder-status = 1 3 4    
wrong-word=X = 1 3 5 X done IMV-1_0001.xml 0; lower-case-word = 1 3 5 btread done IMV-1_0001.xml 0
list-missing = 1 0 4 BTREAD done IMV-1_0001.xml 0; list-cut=300 = 1 1 5 BTREAD done IMV-1_0001.xml 0
list-devices=99 = 1 99 5 BTREAD done IMV-1_0001.xml 0; no-exchange-file = 1 3 4 BTREAD done  0
two-exchange-files = 1 3 6 BTREAD done IMV-1_0002.xml 0; exchange-folder = 1 3 4 BTREAD done IMV-1_0001.xml 0
blocked-trigger=400 = 1 3 5 the trigger was lost; blocked-command=400 = 1 3 4 BTREAD done IMV-1_0001.xml 0)";
        for (const auto& row : pairsOf(faults)) {
            const QTemporaryDir folder;
            Bench bench(folder, world(row.first + "@BTREAD:once"));
            const auto seen = [&] {
                const QString shown = bench.answer("BTREAD \"MV-1\"", "(done|failed),|leaves|\"I");
                QString text = row.first + " =";
                for (const auto count :
                     {bench.log.filter(" running").size(), readDeviceList(bench.file({}), "DEVLIST.XML").size(),
                      QDir(bench.file({})).entryList(QDir::Files).size()})
                    text += ' ' + QString::number(count);
                return text + ' ' + shown;
            };
            QCOMPARE(seen(), row.first + " = " + row.second);
            QTRY_VERIFY(bench.send("BTISPAIRED p1"));
            QTRY_COMPARE(bench.status(), QString("BTISPAIRED done MV-1 0"));
            QVERIFY(seen().startsWith(row.first + " = 1 3 5 BTREAD done IMV-1_"));
        }
        const QTemporaryDir folder;
        Bench bench(folder, world("foreign-abort"));
        bench.send("BTREAD \"MV-1\"");
        QTRY_VERIFY(bench.trigger() && bench.shown() == "ABORT done  0");
    }

    void vanishedDriveComesBack()
    {
        for (const QString fault : {"vanish=command,50", "vanish=running,50", "vanish-folder=done,50", "vanish=done"}) {
            const QTemporaryDir folder;
            auto bench = std::make_unique<Bench>(folder, world(fault + "@BTREAD:once"));
            bench->send("BTREAD \"MV-1\"");
            const auto isAway = [&] {
                return !bench->trigger() || !bench->log.filter("took the drive away").isEmpty();
            };
            QTRY_VERIFY(isAway());
            if (fault == "vanish=done") {
                bench.reset();
                bench = std::make_unique<Bench>(folder, world("log-binary"));
                QCOMPARE(bytesOf(bench->file("VERSION.log")).size(), 4096);
            }
            QTRY_COMPARE(bench->log.filter("start 2").size(), 1);
            QCOMPARE(bench->answer("BTISPAIRED p1"), QString("BTISPAIRED done MV-1 0"));
        }
    }

    void pairingsOutliveARestart()
    {
        const QTemporaryDir folder;
        QCOMPARE(Bench(folder).answer("BTPUMPREASSIGN \"MV-3\" p1"), QString("BTPUMPREASSIGN done MV-3 0"));
        // A pump that the new world doesn't have stays known, out of range, and its pairing wins over that of a new
        // one; a command from before isn't taken again.
        Scenario other = world("left-running=SEARCH");
        other.pumps.remove(2);
        other.pumps.prepend(other.pumps.first());
        other.pumps.first().serialNumber = "MV-9";
        Bench bench(folder, other);
        QCOMPARE(bench.status(), QString("SEARCH running  0"));
        QVERIFY(bench.log.filter("took").isEmpty());
        QCOMPARE(bench.answer("BTISPAIRED p1"), QString("BTISPAIRED done MV-3 0"));
        QCOMPARE(bench.answer("BTREAD \"MV-3\""), QString("BTREAD failed  31"));
        QVERIFY(QDir(bench.path).rename(".merivo-reader.json", "a") && QDir(bench.path).mkdir(".merivo-reader.json"));
        const QString devices = bench.devices();
        bench.answer("BTDELETEADDR  \"MV-3\"", " running");
        QCOMPARE(bench.status(), QString("BTDELETEADDR running  0")); // what can't be kept isn't shown as done
        QCOMPARE(bench.devices(), devices);
    }

    /// By an ABORT, or by a loss of power and, as the plug-in does where it finds a command running, an ABORT.
    void commandThatIsCutOffChangesNothing()
    {
        const QTemporaryDir folder;
        Scenario scenario = world();
        scenario.times = {0, 0, 60000, 0, 60000, 400, 0, 60000, 60000, 0, 60000, 0};
        scenario.pumps[1].user = PumpUser::DoesNothing;
        auto bench = std::make_unique<Bench>(folder, scenario, false);
        const QByteArray commands[] = {"SEARCH 00100",     R"(BTPAIR A2 "MV 2" p2)",      "BTPAIRCONFIRM 1",
                                       R"(BTREAD "MV-1")", R"(BTPUMPREASSIGN "MV-1" p2)", R"(BTDELETEADDR  "MV-1")"};
        for (int i = 0; i < 12; ++i) {
            const QString running = commands[i / 2].split(' ').first() + " running  0";
            QVERIFY(i / 2 != 2 || bench->answer(commands[1]) == "BTPAIR done 4711 0");
            QCOMPARE(bench->answer(commands[i / 2], " running"), running);
            if (i % 2) {
                bench.reset();
                bench = std::make_unique<Bench>(folder, scenario, false);
                QCOMPARE(bench->status(), running);
            }
            QCOMPARE(bench->answer("ABORT "), QString("ABORT done  0"));
            QCOMPARE(bench->answer("BTPAIRCONFIRM 1"), QString("BTPAIRCONFIRM failed  20"));
            QCOMPARE(bench->devices(), QString("MV-1=A1=p1 MV-3=A3=p3 MV-4=A4=p4"));
        }
    }

    void exchangeFileComesFromTheSeed()
    {
        const auto fileOf = [](quint32 seed, bool instant, const QString& fault = {}) {
            const QTemporaryDir folder;
            Scenario scenario = world(fault);
            scenario.seed = seed;
            scenario.times.read = 100;
            Bench bench(folder, scenario, instant);
            bench.answer("BTREAD \"MV-1\"");
            const QString file = bench.file("IMV-1_0001.xml");
            const QByteArray atOnce = bytesOf(file);
            const bool isWhole = QTest::qWaitFor([&] { return bytesOf(file).endsWith("</pumpHistory>\n"); });
            return isWhole && bytesOf(file).size() > atOnce.size() ? "grown: " + bytesOf(file) : atOnce;
        };
        const QByteArray bytes = fileOf(7, true);
        QCOMPARE(bytes.count("<day "), 3);
        QVERIFY(bytes == fileOf(7, false)); // written in pieces
        QVERIFY(bytes != fileOf(8, true));
        QVERIFY(fileOf(7, true, "exchange-grows") == "grown: " + bytes);
    }

    void programEndsWithItsStatus()
    {
        const QTemporaryDir folder;
        const QDir dir(folder.path());
        const QByteArray memory = "{ \"pumps\": [ { \"patientId\": \"p1\" } ] }";
        QVERIFY(dir.mkdir("file") && write(dir.filePath("file/MISC"), {}) && dir.mkdir("broken"));
        QVERIFY(write(dir.filePath("broken/.merivo-reader.json"), memory));
        QVERIFY(write(dir.filePath("bad.json"), R"({"times": {"reed": 1}})"));
        QVERIFY(write(dir.filePath("bad.jsonl"), "{\"ms\":0,\"file\":\"../x\",\"text\":\"\"}\n"));
        const QString calls = R"(--list-faults = 0 ; --fault no-stop . = 2 --fault: fault "no-stop": unknown
 = 2 exactly one DRIVE expected; --fast . = 2 Unknown option 'fast'; --seed x . = 2 --seed: 'x' isn't a whole number
--pair MV . = 2 --pair: "MV" isn't SERIAL=PATIENT; --pair MV=1 . = 1 there is no pump "MV" to pair
--watch-only . = 2 --watch-only: needs --record; --replay x --seed 1 . = 2 --replay: plays what was recorded
none = 1 none: there is no such folder; file = 1 file/MISC: the folder can't be made
--scenario bad.json . = 1 bad.json: times.reed: unknown field; --log none/log . = 1 log file 'none/log': 
broken = 1 broken/.merivo-reader.json: pumps[0].serialNumber: is missing
--replay bad.jsonl . = 1 bad.jsonl: line 1: file: "../x" isn't a file of the reader)";
        for (const auto& [arguments, end] : pairsOf(calls)) {
            Program program(MERIVO_READER_PROGRAM, arguments.split(' ', Qt::SkipEmptyParts), folder.path());
            const QString told = program.end();
            QVERIFY2(told.startsWith(end.left(2)) && told.contains(end.mid(2)) && told.count('\n') == int(end != "0 "),
                     qPrintable(arguments + told));
        }
        QCOMPARE(bytesOf(dir.filePath("broken/.merivo-reader.json")), memory);
        const QFileInfoList scenarios = QDir(MERIVO_READER_SCENARIOS).entryInfoList({"*.json"});
        QVERIFY(!scenarios.isEmpty());
        for (const QFileInfo& file : scenarios)
            QVERIFY(Program(MERIVO_READER_PROGRAM, {"--check-scenario", "--scenario", file.filePath()}).end() == "0 ");
    }

    void recordingIsReplayedAndOneReaderServesADrive()
    {
        const QTemporaryDir first, second;
        const QString recording = first.filePath("recording");
        const auto run = [](const QString& path) {
            const Drive drive{path};
            QByteArray seen = bytesOf(drive.file("VERSION.log"));
            for (const QByteArray command : {"BTISPAIRED p1", "BTREAD \"MV-204817\""}) {
                drive.send(command);
                const QString end = command.left(command.indexOf(' ')) + " done ";
                if (!QTest::qWaitFor([&] { return drive.trigger() && drive.shown().startsWith(end); }, 20000))
                    return QByteArray("no answer");
                seen += bytesOf(drive.file("STATUS.TXT"));
            }
            return seen + bytesOf(drive.file("IMV-204817_0001.xml"));
        };
        const QStringList arguments{first.path(), "--instant", "--pair", "MV-204817=p1", "--record", recording};
        Program reader(MERIVO_READER_PROGRAM, arguments);
        QVERIFY(reader.waitForReadyRead());
        QVERIFY(Program(MERIVO_READER_PROGRAM, arguments).end().contains("another reader serves this drive"));
        const QByteArray seen = run(first.path());
        reader.terminate();
        QVERIFY(reader.end().startsWith("0 ") && !QFile::exists(first.filePath(".merivo-reader.lock")));
        QString lines = bytesOf(recording); // a drive that goes away takes the command along, but not its answer
        lines.replace(QRegularExpression("(\n.*\"ms\":\\d+,)(\"text.*BTISPAIRED p1\"\\})"), "\\1\\2\\1\"gone\":true}");
        QVERIFY(lines.contains("gone") && write(recording, lines.toUtf8()));
        Program replay(MERIVO_READER_PROGRAM, {second.path(), "--log", second.filePath("log"), "--replay", recording});
        QVERIFY(replay.waitForReadyRead() && seen.size() > 20000 && run(second.path()) == seen);
        QVERIFY(QDir(second.filePath("MISC")).removeRecursively());
        QCOMPARE(replay.end(), "1 merivo-reader: " + second.filePath("MISC") + ": the folder has gone\n");
    }
};

QTEST_GUILESS_MAIN(TestReaderProgram)

#include "tst_reader_program.moc"
