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

#include <cstdio>

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

/// Writes a file with the time stamp that all files get here, as on a drive whose stamps are coarse.
bool writeAtOnce(const QString& path, const QByteArray& bytes)
{
    QFile file(path + ".beside");
    const bool isWritten = file.open(QIODevice::WriteOnly) && file.write(bytes) == bytes.size() && file.flush() &&
                           file.setFileTime(QDateTime::fromSecsSinceEpoch(1700000000), QFile::FileModificationTime);
    return isWritten && std::rename(qPrintable(file.fileName()), qPrintable(path)) == 0;
}

/// The plug-in's side of a drive.
struct Drive
{
    QString file(const QString& name) const { return path + "/MISC/" + name; }
    bool send(const QByteArray& command) const { return writeAtOnce(file("CommandFile.txt"), Head + command); }
    bool trigger() const { return writeAtOnce(path + "/MISCNoCommand.txt", {}); }
    QString devices() const
    {
        QStringList devices;
        for (const DeviceInfo& device : readDeviceList(file({}), "DEVLIST.XML"))
            devices << device.serialNumber + '=' + device.btAddress + '=' + device.patientId + ' ';
        return devices.join(QString());
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
struct RunningReader : Drive
{
    explicit RunningReader(const QTemporaryDir& folder, const Scenario& scenario = world(), bool instant = true)
        : Drive{folder.path()}
        , end(path)
        , simulator(end, scenario, instant)
    {
        QString error;
        QObject::connect(&simulator, &ReaderSimulator::logged, &simulator,
                         [this](const QString& line) { log << line; });
        QVERIFY2(end.open(&error) && simulator.start(&error), qPrintable(error));
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
    ReaderSimulator simulator;
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
            {Head + "BTISPAIRED p1\r", "a control character or a line end inside the command"},
            {Head + "BTISPAIRED  p1", "\"BTISPAIRED  p1\" isn't of the form \"BTISPAIRED PATIENT\""},
            {Head + "BTDELETEADDR \"MV-1\"", "isn't of the form \"BTDELETEADDR  \"SERIAL\"\""},
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
            {Lone + R"(, "user": {"does": "sleeps"}}]})", "pumps[0].user.does: must be \"confirms\""},
            {Lone + R"(, "errors": {"BTREAD": 0}}]})", "pumps[0].errors.BTREAD: must be a whole number from 1 to"},
            {Lone + R"(}, {"serialNumber": "MV-1", "address": "B"}]})", "pumps[1].serialNumber: \"MV-1\" is that of"},
            {R"({"faults": ["no-start", "no-stop"]})", "faults[1]: fault \"no-stop\": unknown"},
            {R"({"faults": ["fail"]})", "faults[0]: fault \"fail\": needs a value"},
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
        RunningReader reader(folder);
        QCOMPARE(reader.shown(), QString("NONE done  0"));
        QCOMPARE(bytesOf(reader.file("VERSION.log")).split('\n').value(4), QByteArray("Firmware version 3.2.23"));
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
            QCOMPARE(reader.answer(command.toUtf8()), command.section(' ', 0, 0) + ' ' + answer);
        const QByteArray before = bytesOf(reader.file("STATUS.TXT"));
        reader.answer("BTDELETEADDR  \"MV-9\""); // an equal command counts again; the header tells its answer apart
        QVERIFY(bytesOf(reader.file("STATUS.TXT")) != before);
        QCOMPARE(reader.answer("BTISPAIRED  p1"), QString("BTDELETEADDR failed  31")); // refused, so not answered
        QCOMPARE(QDir(reader.file({})).entryList({"I*"}), QStringList("IMV-1_0002.xml"));
        QCOMPARE(reader.devices(), QString("MV-1=A1= MV 2=A2={p 2} MV-4=A4=p4 "));
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
            RunningReader reader(folder, parseScenario(Lone + ',' + pump.toUtf8() + "}]}", &errors).value());
            for (const char* command : {R"(BTPAIR A "MV-1" p2)", "BTPAIRCONFIRM 1", R"(BTREAD "MV-1")",
                                        R"(BTPUMPREASSIGN "MV-1" p3)", R"(BTDELETEADDR  "MV-1")"}) {
                seen << reader.answer(command).section(' ', -1);
                seen.last() += reader.devices().section('=', -1).trimmed();
            }
            QCOMPARE(pump + seen.join(' '), pump + expected);
        }
    }

    /// The faults that no run of the plug-in shows, or that the next command has to repair.
    void faultChangesOneReadOut()
    {
        // The status and the number of pumps that are listed.
        const QString faults = R"(no-running = BTREAD done IMV-1_0001.xml 0, 3; stale-until=2 = NONE done  0, 3
half-status=45 = BTR   , 3; lower-case-word = btread done IMV-1_0001.xml 0, 3; empty-status =    , 3
folder-status =    , 3; list-missing = BTREAD done IMV-1_0001.xml 0, 0; list-devices=99 = BTREAD done IMV-1_0001.xml 0, 99)";
        for (const auto& [fault, seen] : pairsOf(faults)) {
            const QTemporaryDir folder;
            RunningReader reader(folder, world(fault + "@BTREAD:once"));
            const QString status = reader.answer("BTREAD \"MV-1\"", "done,");
            QCOMPARE(fault + status + ", " + QString::number(reader.devices().count(' ')), fault + seen);
            QCOMPARE(reader.log.filter(" running").isEmpty(), fault == "no-running");
            reader.answer("ABORT ", "ABORT done");
            QCOMPARE(reader.status(), QString("ABORT done  0"));
            QVERIFY(reader.answer("BTREAD \"MV-1\"").startsWith("BTREAD done IMV-1_000"));
            QCOMPARE(reader.devices().count(' '), 3);
        }
        const QTemporaryDir folder;
        RunningReader reader(folder, world("same-header"));
        reader.answer("BTISPAIRED p1");
        const QByteArray status = bytesOf(reader.file("STATUS.TXT"));
        reader.answer("BTISPAIRED p1");
        QCOMPARE(bytesOf(reader.file("STATUS.TXT")), status);
    }

    void vanishedDriveComesBack()
    {
        for (const char* fault : {"vanish=running,50@BTREAD:once", "vanish-folder=done,50@BTREAD:once"}) {
            const QTemporaryDir folder;
            RunningReader reader(folder, world(fault));
            reader.send("BTREAD \"MV-1\"");
            const auto isAway = [&] {
                return !reader.trigger() || !reader.log.filter("took the drive away").isEmpty();
            };
            QTRY_VERIFY(isAway());
            QTRY_COMPARE(reader.log.filter("start 2").size(), 1);
            QCOMPARE(reader.answer("BTISPAIRED p1"), QString("BTISPAIRED done MV-1 0"));
        }
    }

    void pairingsOutliveARestart()
    {
        const QTemporaryDir folder;
        QCOMPARE(RunningReader(folder).answer("BTPUMPREASSIGN \"MV-3\" p1"), QString("BTPUMPREASSIGN done MV-3 0"));
        // A pump that the new world doesn't have stays known, out of range, and its pairing wins over that of a new
        // one; a command from before isn't taken again.
        Scenario other = world("left-running=SEARCH");
        other.pumps.remove(2);
        other.pumps.prepend(other.pumps.first());
        other.pumps.first().serialNumber = "MV-9";
        RunningReader reader(folder, other);
        QCOMPARE(reader.status(), QString("SEARCH running  0"));
        QVERIFY(reader.log.filter("took").isEmpty());
        QCOMPARE(reader.answer("BTISPAIRED p1"), QString("BTISPAIRED done MV-3 0"));
        QCOMPARE(reader.answer("BTREAD \"MV-3\""), QString("BTREAD failed  31"));
        QVERIFY(QDir(reader.path).rename(".merivo-reader.json", "a") && QDir(reader.path).mkdir(".merivo-reader.json"));
        const QString devices = reader.devices();
        reader.answer("BTDELETEADDR  \"MV-3\"", " running");
        QCOMPARE(reader.status(), QString("BTDELETEADDR running  0")); // what can't be kept isn't shown as done
        QCOMPARE(reader.devices(), devices);
    }

    void abortedCommandChangesNothing()
    {
        const QTemporaryDir folder;
        Scenario scenario = world();
        scenario.times = {0, 0, 60000, 0, 60000, 400, 0, 60000, 60000, 0, 60000, 0};
        scenario.pumps[1].user = PumpUser::DoesNothing;
        RunningReader reader(folder, scenario, false);
        for (const QByteArray command : {R"(BTREAD "MV-1")", R"(BTPUMPREASSIGN "MV-1" p2)", R"(BTDELETEADDR  "MV-1")",
                                         "SEARCH 00100", R"(BTPAIR A2 "MV 2" p2)", "BTPAIRCONFIRM 1"}) {
            QVERIFY(command != "BTPAIRCONFIRM 1" || reader.answer(R"(BTPAIR A2 "MV 2" p2)") == "BTPAIR done 4711 0");
            QCOMPARE(reader.answer(command, " running"), command.split(' ').first() + " running  0");
            QCOMPARE(reader.answer("ABORT "), QString("ABORT done  0"));
            QCOMPARE(reader.answer("BTPAIRCONFIRM 1"), QString("BTPAIRCONFIRM failed  20"));
            QCOMPARE(reader.devices(), QString("MV-1=A1=p1 MV-3=A3=p3 MV-4=A4=p4 "));
        }
    }

    void exchangeFileComesFromTheSeed()
    {
        QByteArrayList files;
        for (const quint32 seed : {7, 7, 8}) {
            const QTemporaryDir folder;
            Scenario scenario = world(files.size() == 1 ? "exchange-grows" : QString());
            scenario.seed = seed;
            RunningReader reader(folder, scenario);
            reader.answer("BTREAD \"MV-1\"");
            const QString file = reader.file("IMV-1_0001.xml");
            QCOMPARE(bytesOf(file).endsWith("</pumpHistory>\n"), files.size() != 1);
            QTRY_VERIFY(bytesOf(file).endsWith("</pumpHistory>\n"));
            files << bytesOf(file);
        }
        QVERIFY(files[0].count("<day ") == 3 && files[1] == files[0] && files[2] != files[0]);
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
--check-scenario --scenario bad.json = 1 bad.json: times.reed: unknown field; --log none/log . = 1 log file 'none/log': 
broken = 1 broken/.merivo-reader.json: pumps[0].serialNumber: is missing
--replay bad.jsonl . = 1 bad.jsonl: line 1: file: "../x" isn't a file of the reader)";
        for (const auto& [arguments, end] : pairsOf(calls)) {
            Program program(MERIVO_READER_PROGRAM, arguments.split(' ', Qt::SkipEmptyParts), folder.path());
            const QString told = program.end();
            QVERIFY2(told.startsWith(end.left(2)) && told.contains(end.mid(2)) && told.count('\n') == int(end != "0 "),
                     qPrintable(arguments + told));
        }
        QCOMPARE(bytesOf(dir.filePath("broken/.merivo-reader.json")), memory);
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
