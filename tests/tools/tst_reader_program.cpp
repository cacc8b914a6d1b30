// SPDX-FileCopyrightText: 2026 The Merivo Connections developers
// SPDX-License-Identifier: MIT
#include "readerlink/DeviceList.h"
#include "tools/Programs.h"
#include "tools/reader/ReaderDrive.h"
#include "tools/reader/ReaderFiles.h"
#include "tools/reader/ReaderSimulator.h"
#include "tools/reader/Scenario.h"
#include "tools/traffic/ReaderCommand.h"

#include <QDir>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTextCodec>

#include <memory>

namespace {

const QByteArray Head = "QD17-C RemoteControl File\nCommand=";
const QByteArray Pumps = R"({ "times": { "progress": 5 }, "exchange": { "days": 3 }, "pumps": [
    { "serialNumber": "MV-1", "address": "A1", "patientId": "p1" },
    { "serialNumber": "MV 2", "address": "A2", "confirmationCode": "4711", "user": { "does": "confirms" } },
    { "serialNumber": "MV-3", "address": "A3", "patientId": "p3", "inRange": false },
    { "serialNumber": "MV-4", "address": "A4", "patientId": "p4", "errors": { "BTREAD": 32, "BTPUMPREASSIGN": 140 } },
    { "serialNumber": "MV-5", "address": "A5", "confirmationCode": "555", "user": { "does": "does nothing" } },
    { "serialNumber": "MV-6", "address": "A6", "linkHoldsMs": 1999 } ] })";

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
    QFile file(path);
    return file.open(QIODevice::WriteOnly) && file.write(bytes) == bytes.size() && file.flush() &&
           file.setFileTime(QDateTime::fromSecsSinceEpoch(1700000000), QFile::FileModificationTime);
}

/// A reader at work on a folder, and the plug-in's side of its drive.
struct RunningReader
{
    explicit RunningReader(const QTemporaryDir& folder, const Scenario& scenario = world())
        : path(folder.path())
        , end(path)
        , simulator(end, scenario, true)
    {
        QString error;
        QObject::connect(&simulator, &ReaderSimulator::logged, &simulator,
                         [this](const QString& line) { log << line; });
        QVERIFY2(end.open(&error) && simulator.start(&error), qPrintable(error));
    }
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
    /// Returns the status that the next trigger shows.
    QString status()
    {
        QSignalSpy triggered(&end, &ReaderDrive::triggered);
        return trigger() && triggered.wait() ? shown() : "the trigger was lost";
    }
    /// Returns the status after a command, once the log has its ending.
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

    QString path;
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
        };
        QString fault;
        QTextCodec::setCodecForLocale(QTextCodec::codecForName("UTF-8"));
        for (const auto& [bytes, expected] : files)
            QVERIFY2(!parseCommandFile(bytes, &fault) && fault.contains(expected), qPrintable(fault));
        // Both directions use the codec of the locale.
        QTextCodec::setCodecForLocale(QTextCodec::codecForName("windows-1252"));
        QCOMPARE(parseCommandFile(Head + "BTREAD \"\xc4\x80\"", &fault)->serialNumber, QString("Ä€"));
        QVERIFY(statusText({{}, {}, {}, "Ä€", 0}).contains(" = \xc4\x80\n"));
        QTextCodec::setCodecForLocale(nullptr);
    }

    void scenarioErrorNamesItsField()
    {
        const std::pair<QByteArray, const char*> scenarios[] = {
            {"{\n \"seed\": 1,\n}", "line 3, column "},
            {R"({"times": {"read": 0.5}})", "times.read: must be a whole number from 0 to 3600000"},
            {QByteArray(Pumps).replace("confirms", "sleeps"), "pumps[1].user.does: must be \"confirms\""},
            {QByteArray(Pumps).replace("MV-6", "MV-1"), "pumps[5].serialNumber: \"MV-1\" is also that of pumps[0]"},
            {R"({"faults": ["no-start", "no-stop"]})", "faults[1]: fault \"no-stop\": unknown"},
            {R"({"faults": ["vanish=now"]})", "faults[0]: fault \"vanish=now\": the value must be command,"},
        };
        for (const auto& [json, error] : scenarios) {
            QStringList errors;
            QVERIFY2(!parseScenario(json, &errors) && errors.size() == 1, json);
            QVERIFY2(errors.first().startsWith(error), qPrintable(errors.first()));
        }
    }

    /// All rows use one reader, so each command affects the following ones.
    void commandsAreAnswered()
    {
        const QTemporaryDir folder;
        RunningReader reader(folder);
        QCOMPARE(reader.shown(), QString("NONE done  0"));
        QCOMPARE(bytesOf(reader.file("VERSION.log")).split('\n').value(4), QByteArray("Firmware version 3.2.23"));
        const QString exchanges = R"(SEARCH 00100 = done 5 0; ABORT  = done  0; BTISPAIRED {p 2} = done 0 0
BTISPAIRED p1 = done MV-1 0; BTISPAIRED  = done 0 0; BTREAD "" = failed  31; BTDELETEADDR  "" = failed  31
BTREAD "MV-1" = done IMV-1_0001.xml 0; BTREAD "MV-1" = done IMV-1_0002.xml 0; BTPAIR A2 "" p2 = failed  31
BTREAD "MV 2" = failed  31; BTREAD "MV-3" = failed  31; BTREAD "MV-4" = failed  32; BTPAIR A2 "MV 2"  = failed  25
BTPAIRCONFIRM 1 = failed  20; BTPAIR A2 "MV 2" p2 = done 4711 0; ABORT  = done  0; BTPAIRCONFIRM 1 = failed  20
BTPAIR A2 "MV 2" p2 = done 4711 0; BTISPAIRED p2 = done 0 0; BTPAIRCONFIRM 1 = failed  20
BTPAIR A2 "MV 2" p2 = done 4711 0; BTPAIRCONFIRM 0 = done  0; BTISPAIRED p2 = done 0 0; BTPAIR A1 "MV 2" p2 = failed  31
BTPAIR A2 "MV 2" {p 2} = done 4711 0; BTPAIRCONFIRM 1 = done MV 2 0; BTISPAIRED {p 2} = done MV 2 0
BTPUMPREASSIGN "MV-3" p1 = done MV-3 0; BTISPAIRED p1 = done MV-3 0; BTISPAIRED p3 = done 0 0
BTPUMPREASSIGN "MV-4" p2 = failed  140; BTPUMPREASSIGN "MV-9" p2 = failed  31; BTPUMPREASSIGN "MV-3" 0 = failed  25
BTPAIR A5 "MV-5" p2 = done 555 0; BTPAIRCONFIRM 1 = failed  22; BTPAIR A6 "MV-6" p2 = failed  32
BTPAIR A3 "MV-3" p2 = failed  124; BTPUMPREASSIGN "MV-5" p2 = failed  24
BTDELETEADDR  "MV-3" = done MV-3 0; BTISPAIRED p1 = done 0 0; BTDELETEADDR  "MV-9" = failed  31)";
        for (const auto& [command, answer] : pairsOf(exchanges))
            QCOMPARE(reader.answer(command.toUtf8()), command.section(' ', 0, 0) + ' ' + answer);
        const QByteArray before = bytesOf(reader.file("STATUS.TXT"));
        reader.answer("BTDELETEADDR  \"MV-9\""); // an equal command counts again; the header tells its answer apart
        QVERIFY(bytesOf(reader.file("STATUS.TXT")) != before);
        QCOMPARE(reader.answer("BTISPAIRED  p1"), QString("BTDELETEADDR failed  31")); // refused, so not answered
        QCOMPARE(QDir(reader.file({})).entryList({"I*"}), QStringList("IMV-1_0002.xml"));
        QCOMPARE(reader.devices(), QString("MV-1=A1= MV 2=A2={p 2} MV-4=A4=p4 MV-5=A5= MV-6=A6= "));
        const QByteArray status = "\nCmd=BTDELETEADDR\nStatus  = failed\nResult  = \nError code -31.\n";
        QVERIFY(before.startsWith("QD17-C RemoteControl File ") && before.endsWith(status));
    }

    /// The faults that no run of the plug-in shows.
    void faultChangesOneReadOut()
    {
        // The status and the number of pumps that are listed.
        const QString faults = R"(no-running = BTREAD done IMV-1_0001.xml 0, 3; stale-until=2 = NONE done  0, 3
half-status=45 = BTR   , 3; lower-case-word = btread done IMV-1_0001.xml 0, 3
list-devices=99 = BTREAD done IMV-1_0001.xml 0, 99; exchange-grows = BTREAD done IMV-1_0001.xml 0, 3)";
        for (const auto& [fault, seen] : pairsOf(faults)) {
            const QTemporaryDir folder;
            RunningReader reader(folder, world(fault + "@BTREAD:once"));
            const QString status = reader.answer("BTREAD \"MV-1\"", "done,");
            QCOMPARE(fault + status + ", " + QString::number(reader.devices().count(' ')), fault + seen);
            QCOMPARE(reader.log.filter(" running").isEmpty(), fault == "no-running");
            QCOMPARE(bytesOf(reader.file("IMV-1_0001.xml")).endsWith("</pumpHistory>\n"), fault != "exchange-grows");
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
            QTRY_VERIFY(!reader.trigger() || !reader.log.filter("drive removed").isEmpty());
            QTRY_COMPARE(reader.log.filter("start 2").size(), 1);
            QCOMPARE(reader.answer("BTISPAIRED p1"), QString("BTISPAIRED done MV-1 0"));
        }
    }

    void pairingsOutliveARestart()
    {
        const QTemporaryDir folder;
        auto first = std::make_unique<RunningReader>(folder);
        QString error;
        QVERIFY(!ReaderDrive(folder.path()).open(&error) && error.contains("another reader serves this drive"));
        QCOMPARE(first->answer("BTPUMPREASSIGN \"MV-3\" p1"), QString("BTPUMPREASSIGN done MV-3 0"));
        first.reset();
        // A pump that the new world doesn't have stays known, out of range, and its pairing wins over that of a new
        // one; a command from before isn't taken again.
        Scenario other = world("left-running=SEARCH");
        other.pumps.remove(2);
        other.pumps.prepend(other.pumps.first());
        other.pumps.first().serialNumber = "MV-9";
        RunningReader reader(folder, other);
        QCOMPARE(reader.status(), QString("SEARCH running  0"));
        QVERIFY(!QTest::qWaitFor([&] { return !reader.log.filter("received").isEmpty(); }, 100));
        QCOMPARE(reader.answer("BTISPAIRED p1"), QString("BTISPAIRED done MV-3 0"));
        QCOMPARE(reader.answer("BTREAD \"MV-3\""), QString("BTREAD failed  31"));
        QVERIFY(QDir(reader.path).rename(".merivo-reader.json", "a") && QDir(reader.path).mkdir(".merivo-reader.json"));
        const QString devices = reader.devices();
        reader.answer("BTDELETEADDR  \"MV-3\"", " running");
        QCOMPARE(reader.status(), QString("BTDELETEADDR running  0")); // what can't be kept isn't shown as done
        QCOMPARE(reader.devices(), devices);
    }

    void programEndsWithItsStatus()
    {
        const QTemporaryDir folder;
        const QDir dir(folder.path());
        const QByteArray memory = "{ \"pumps\": [ { \"patientId\": \"p1\" } ] }";
        QVERIFY(dir.mkdir("broken") && write(dir.filePath("broken/.merivo-reader.json"), memory));
        QVERIFY(write(dir.filePath("bad.json"), R"({"times": {"reed": 1}})"));
        QVERIFY(write(dir.filePath("bad.jsonl"), "{\"ms\":0,\"file\":\"../x\",\"text\":\"\"}\n"));
        const QString calls = R"(--list-faults = 0 ; --fault no-stop . = 2 --fault: fault "no-stop": unknown
 = 2 exactly one DRIVE expected; --seed x . = 2 --seed: 'x' isn't a whole number; none = 1 none: there is no such folder
--pair MV . = 2 --pair: "MV" isn't SERIAL=PATIENT; --replay x --seed 1 . = 2 --replay: excludes --scenario
--check-scenario --scenario bad.json = 1 bad.json: times.reed: unknown field
broken = 1 broken/.merivo-reader.json: pumps[0].serialNumber: is missing
--replay bad.jsonl . = 1 bad.jsonl: line 1: file: "../x" isn't a file of the reader)";
        for (const auto& [arguments, end] : pairsOf(calls)) {
            Program program(MERIVO_READER_PROGRAM, arguments.split(' ', Qt::SkipEmptyParts), folder.path());
            const QString output = program.end();
            QVERIFY2(output.startsWith(end.left(2)) && output.contains(end.mid(2)) &&
                         output.count('\n') == int(end != "0 "),
                     qPrintable(arguments + output));
        }
        QCOMPARE(bytesOf(dir.filePath("broken/.merivo-reader.json")), memory);
    }
};

QTEST_GUILESS_MAIN(TestReaderProgram)

#include "tst_reader_program.moc"
