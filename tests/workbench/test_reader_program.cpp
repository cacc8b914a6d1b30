// SPDX-FileCopyrightText: 2026 The Merivo Connections developers
// SPDX-License-Identifier: MIT
#include "reader/CommandFileWriter.h"
#include "reader/DeviceList.h"
#include "reader/StatusFileParser.h"
#include "workbench/reader/ReaderCommand.h"
#include "workbench/reader/ReaderDrive.h"
#include "workbench/reader/ReaderFiles.h"
#include "workbench/reader/ReaderSimulator.h"
#include "workbench/reader/Scenario.h"

#include <QDir>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTest>
#include <QXmlStreamReader>

#include <memory>

namespace {

const QByteArray World = R"({
    "times": { "progress": 5 },
    "exchange": { "days": 3 },
    "pumps": [
        { "serialNumber": "MV-1", "address": "A1", "patientId": "p1" },
        { "serialNumber": "MV-2", "address": "A2", "confirmationCode": "4711", "user": { "does": "confirms" } },
        { "serialNumber": "MV-3", "address": "A3", "patientId": "p3", "inRange": false },
        { "serialNumber": "MV-4", "address": "A4", "patientId": "p4", "errors": { "BTREAD": 32, "BTPUMPREASSIGN": 140 } },
        { "serialNumber": "MV-5", "address": "A5", "user": { "does": "declines" } },
        { "serialNumber": "MV-6", "address": "A6", "user": { "does": "walks away" } },
        { "serialNumber": "MV-7", "address": "A7", "inRange": false },
        { "serialNumber": "MV-8", "address": "A8", "errors": { "BTPAIRCONFIRM": 777 } }
    ] })";

Scenario world(const QStringList& faults = {})
{
    QStringList errors;
    Scenario scenario = parseScenario(World, &errors).value();
    QString error;
    for (const QString& fault : faults)
        scenario.faults.add(fault, &error);
    if (!error.isEmpty())
        qFatal("%s", qUtf8Printable(error));
    return scenario;
}

QByteArray contentOf(const QString& path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

/// A reader at work on a folder, and the plug-in's own end of the drive to speak with it.
class Bench
{
public:
    explicit Bench(const Scenario& scenario = world(), bool instant = true)
    {
        startReader(scenario, instant);
        m_writer.reset(CommandFileWriter::create(path()));
        m_parser.reset(StatusFileParser::create(path()));
    }

    void startReader(const Scenario& scenario, bool instant = true)
    {
        m_reader.reset();
        m_drive = std::make_unique<ReaderDrive>(path());
        QString error;
        QVERIFY2(m_drive->open(&error), qPrintable(error));
        m_reader = std::make_unique<ReaderSimulator>(*m_drive, scenario, instant);
        QObject::connect(m_reader.get(), &ReaderSimulator::logged, m_reader.get(),
                         [this](const QString& line) { log.append(line); });
        QObject::connect(m_reader.get(), &ReaderSimulator::failed, m_reader.get(),
                         [](const QString& what) { QFAIL(qPrintable(what)); });
        QVERIFY2(m_reader->start(&error), qPrintable(error));
    }

    QString path() const { return m_folder.path(); }
    QString misc(const QString& name = {}) const { return path() + QStringLiteral("/MISC/") + name; }

    /// Writes the second line's text behind "Command=", byte for byte.
    void send(const QByteArray& command) const
    {
        QFile file(misc(ReaderNames::Command));
        QVERIFY(file.open(QIODevice::WriteOnly));
        file.write("QD17-C RemoteControl File\nCommand=" + command);
    }

    /// The status behind one writing of the trigger, as a word of four parts.
    QString status() const
    {
        QSignalSpy triggered(m_drive.get(), &ReaderDrive::triggered);
        const bool isWritten = m_parser->triggerFileSystemUpdate();
        return isWritten && triggered.wait() ? shown() : QStringLiteral("the trigger was lost");
    }

    /// The status without the trigger.
    QString shown() const
    {
        const QStringList lines = QString::fromUtf8(contentOf(misc(ReaderNames::Status))).split(QLatin1Char('\n'));
        return QStringList{lines.value(1).mid(4), lines.value(2).mid(10), lines.value(3).mid(10),
                           lines.value(4).section(QLatin1Char('-'), -1).chopped(1)}
            .join(QLatin1Char(' '));
    }

    QStringList exchangeFiles() const { return QDir(misc()).entryList({ReaderNames::ExchangeFilter}); }

    StatusFileParser& parser() { return *m_parser; }
    CommandFileWriter& writer() { return *m_writer; }

    QStringList log;

private:
    QTemporaryDir m_folder;
    std::unique_ptr<ReaderDrive> m_drive;
    std::unique_ptr<ReaderSimulator> m_reader;
    std::unique_ptr<CommandFileWriter> m_writer;
    std::unique_ptr<StatusFileParser> m_parser;
};

QByteArray commandFile(const QByteArray& command)
{
    return "QD17-C RemoteControl File\nCommand=" + command;
}

} // namespace

class TestReaderProgram : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void understandsWhatTheWriterWrites();
    void refusesAnyOtherForm_data();
    void refusesAnyOtherForm();
    void writesFilesThatReadersUnderstand();
    void namesTheFieldOfAScenarioError_data();
    void namesTheFieldOfAScenarioError();
    void refusesUnknownFaults_data();
    void refusesUnknownFaults();
    void answers_data();
    void answers();
    void showsNothingNewWithoutTheTrigger();
    void leavesARefusedCommandUnanswered();
    void takesAnEqualCommandAgain();
    void carriesPollingRunsToTheirEnd();
    void keepsPairingsOverARestart();
    void leavesABrokenMemoryAlone();
    void misbehavesAsTold_data();
    void misbehavesAsTold();
    void hasTheFirmwareOfItsLog();
    void makesTheSameExchangeFileFromTheSameSeed();
    void keepsTheOldExchangeFileUntilTheNewOneIsWhole();
};

void TestReaderProgram::understandsWhatTheWriterWrites()
{
    QTemporaryDir folder;
    QVERIFY(QDir(folder.path()).mkdir(QStringLiteral("MISC")));
    const std::unique_ptr<CommandFileWriter> writer(CommandFileWriter::create(folder.path()));
    const auto parsed = [&](bool written) {
        QString fault;
        const auto command =
            parseCommandFile(contentOf(folder.filePath(QStringLiteral("MISC/CommandFile.txt"))), &fault);
        return written && command ? QStringList{command->word, command->address, command->serialNumber,
                                                command->patientId, command->accepted ? "yes" : "no"}
                                        .join(QLatin1Char('|'))
                                  : fault;
    };
    const QString s = QStringLiteral("MV 1");
    const QString p = QStringLiteral("{p 1}");
    QCOMPARE(parsed(writer->search()), QStringLiteral("SEARCH||||no"));
    QCOMPARE(parsed(writer->pair(QStringLiteral("00:1E"), s, p)), QStringLiteral("BTPAIR|00:1E|MV 1|{p 1}|no"));
    QCOMPARE(parsed(writer->pair(QStringLiteral("00:1E"), s, {})), QStringLiteral("BTPAIR|00:1E|MV 1||no"));
    QCOMPARE(parsed(writer->confirmPairing(true)), QStringLiteral("BTPAIRCONFIRM||||yes"));
    QCOMPARE(parsed(writer->confirmPairing(false)), QStringLiteral("BTPAIRCONFIRM||||no"));
    QCOMPARE(parsed(writer->read(s)), QStringLiteral("BTREAD||MV 1||no"));
    QCOMPARE(parsed(writer->isPaired(p)), QStringLiteral("BTISPAIRED|||{p 1}|no"));
    QCOMPARE(parsed(writer->deleteAddress({})), QStringLiteral("BTDELETEADDR||||no"));
    QCOMPARE(parsed(writer->reassign(s, p)), QStringLiteral("BTPUMPREASSIGN||MV 1|{p 1}|no"));
    QCOMPARE(parsed(writer->abort()), QStringLiteral("ABORT||||no"));
}

void TestReaderProgram::refusesAnyOtherForm_data()
{
    QTest::addColumn<QByteArray>("bytes");
    QTest::addColumn<QString>("fault");
    const auto row = [](const char* name, const QByteArray& bytes, const char* fault) {
        QTest::newRow(name) << bytes << QString::fromLatin1(fault);
    };
    row("empty", "", "line 1, column 1: 'Q' expected, but the file ends");
    row("other header", "QD17-D RemoteControl File\nCommand=ABORT ", "line 1, column 6: 'C' expected, found 'D'");
    row("carriage return", "QD17-C RemoteControl File\r\nCommand=ABORT ",
        "line 1, column 26: a line feed expected, found a carriage return");
    row("byte order mark", "\xef\xbb\xbf" + commandFile("ABORT "),
        "line 1, column 1: 'Q' expected, found the byte 0xef");
    row("small word", commandFile("btread \"MV-1\""), "line 2, column 9: unknown command \"btread\"");
    row("abort without its blank", commandFile("ABORT"), "line 2, column 14: a blank expected, but the file ends");
    row("line end", commandFile("ABORT \n"), "line 2, column 15: the file should end here, found a line feed");
    row("line end behind an id", commandFile("BTISPAIRED p1\n"), "line 2, column 22: a line feed inside a value");
    row("two blanks", commandFile("BTISPAIRED  p1"), "line 2, column 20: a blank at an end of the patient id");
    row("no quotes", commandFile("BTREAD MV-1"), "line 2, column 16: '\"' expected, found 'M'");
    row("open quote", commandFile("BTREAD \"MV-1"), "line 2, column 21: '\"' expected, but the file ends");
    row("one blank too few", commandFile("BTDELETEADDR \"MV-1\""), "line 2, column 22: a blank expected, found '\"'");
    row("verdict in words", commandFile("BTPAIRCONFIRM true"), "line 2, column 23: 0 or 1 expected, found \"true\"");
    row("no address", commandFile("BTPAIR  \"MV-1\" p1"), "line 2, column 16: an address expected");
    row("other search", commandFile("SEARCH 00200"), "line 2, column 18: '1' expected, found '2'");
    row("not UTF-8", commandFile("BTISPAIRED p\xe4"), "line 2, column 20: a value that isn't UTF-8");
}

void TestReaderProgram::refusesAnyOtherForm()
{
    QFETCH(QByteArray, bytes);
    QString fault;
    QVERIFY(!parseCommandFile(bytes, &fault));
    QTEST(fault, "fault");
}

void TestReaderProgram::writesFilesThatReadersUnderstand()
{
    QCOMPARE(statusText({QStringLiteral("head"), QStringLiteral("BTREAD"), QStringLiteral("failed"),
                         QStringLiteral("no-thing"), 110}),
             QByteArray("head\nCmd=BTREAD\nStatus  = failed\nResult  = no-thing\nError code -110.\n"));
    QCOMPARE(firmwareLogText(QStringLiteral("3.2.23")).split('\n').value(4), QByteArray("Firmware version 3.2.23"));

    Bench bench;
    const StatusRecord record = bench.parser().readStatus();
    QVERIFY(record.header.startsWith(QStringLiteral("QD17-C RemoteControl File ")));
    QCOMPARE(record.command, QStringLiteral("NONE"));
    QCOMPARE(record.status, CommandStatus::Done);
    QCOMPARE(record.error, 0);

    bench.send("SEARCH 00100");
    QTRY_COMPARE(bench.status(), QStringLiteral("SEARCH done 6 0"));
    QStringList devices;
    const auto list = readDeviceList(bench.misc(), ReaderNames::DeviceList);
    for (const DeviceInfo& device : list)
        devices.append(device.serialNumber + QLatin1Char('=') + device.btAddress + QLatin1Char('=') + device.patientId);
    QCOMPARE(devices.join(QLatin1Char(' ')),
             QStringLiteral("MV-1=A1=p1 MV-2=A2= MV-3=A3=p3 MV-4=A4=p4 MV-5=A5= MV-6=A6= MV-8=A8="));
}

void TestReaderProgram::namesTheFieldOfAScenarioError_data()
{
    QTest::addColumn<QByteArray>("json");
    QTest::addColumn<QString>("error");
    const auto row = [](const char* name, const QByteArray& json, const char* error) {
        QTest::newRow(name) << json << QString::fromLatin1(error);
    };
    row("no JSON", "{\n \"seed\": 1,\n}", "line 3, column ");
    row("list", "[]", "the whole: must be an object");
    row("unknown field", R"({"sead": 1})", "sead: unknown field");
    row("unknown time", R"({"times": {"reed": 1}})", "times.reed: unknown field");
    row("half a millisecond", R"({"times": {"read": 0.5}})", "times.read: must be a whole number from 0 to 3600000");
    row("text for number", R"({"seed": "1"})", "seed: must be a whole number from 0 to 2147483647");
    row("no such day", R"({"exchange": {"lastDay": "2026-02-30"}})",
        "exchange.lastDay: must be a date such as 2026-03-01");
    row("pumps no list", R"({"pumps": {}})", "pumps: must be a list");
    row("no address", R"({"pumps": [{"serialNumber": "MV-1"}]})", "pumps[0].address: is missing");
    row("short serial", R"({"pumps": [{"serialNumber": "12", "address": "A"}]})",
        "pumps[0].serialNumber: must have three characters or more, and no quote");
    row("flag", R"({"pumps": [{"serialNumber": "MV-1", "address": "A", "inRange": 1}]})",
        "pumps[0].inRange: must be true or false");
    row("user", R"({"pumps": [{"serialNumber": "MV-1", "address": "A", "user": {"does": "sleeps"}}]})",
        "pumps[0].user.does: must be \"confirms\", \"declines\" or \"walks away\"");
    row("twins", R"({"pumps": [{"serialNumber": "MV-1", "address": "A"}, {"serialNumber": "MV-1", "address": "B"}]})",
        "pumps[1].serialNumber: \"MV-1\" is that of pumps[0] too");
    row("error of no command", R"({"pumps": [{"serialNumber": "MV-1", "address": "A", "errors": {"SEARCH": 1}}]})",
        "pumps[0].errors.SEARCH: unknown field");
    row("fault", R"({"faults": ["no-start", "no-stop"]})", "faults[1]: fault \"no-stop\": unknown");
}

void TestReaderProgram::namesTheFieldOfAScenarioError()
{
    QFETCH(QByteArray, json);
    QFETCH(QString, error);
    QStringList errors;
    QVERIFY(!parseScenario(json, &errors));
    QCOMPARE(errors.size(), 1);
    QVERIFY2(errors.first().startsWith(error), qPrintable(errors.first()));
}

void TestReaderProgram::refusesUnknownFaults_data()
{
    QTest::addColumn<QString>("fault");
    QTest::newRow("value missing") << "fail";
    QTest::newRow("no number") << "fail=x";
    QTest::newRow("negative") << "slow=-1";
    QTest::newRow("value too many") << "no-end=1";
    QTest::newRow("no command") << "no-end@READ";
    QTest::newRow("not for a command") << "stale-status@BTREAD";
    QTest::newRow("empty") << "";
}

void TestReaderProgram::refusesUnknownFaults()
{
    QFETCH(QString, fault);
    QString error;
    FaultSet faults;
    QVERIFY(!faults.add(fault, &error));
    QVERIFY(error.contains(QStringLiteral("\"%1\"").arg(fault)));
}

void TestReaderProgram::answers_data()
{
    QTest::addColumn<QStringList>("commands");
    QTest::addColumn<QString>("status");
    const auto row = [](const char* name, const QStringList& commands, const char* status) {
        QTest::newRow(name) << commands << QString::fromLatin1(status);
    };
    row("pump of a patient", {"BTISPAIRED p1"}, "BTISPAIRED done MV-1 0");
    row("patient without a pump", {"BTISPAIRED p2"}, "BTISPAIRED done 0 0");
    row("nobody's pump", {"BTISPAIRED "}, "BTISPAIRED done 0 0");
    row("abort of nothing", {"ABORT "}, "ABORT done  0");
    row("read", {"BTREAD \"MV-1\""}, "BTREAD done IMV-1_0001.xml 0");
    row("read twice", {"BTREAD \"MV-1\"", "BTREAD \"MV-1\""}, "BTREAD done IMV-1_0002.xml 0");
    row("read without a pairing", {"BTREAD \"MV-2\""}, "BTREAD failed  31");
    row("read out of range", {"BTREAD \"MV-3\""}, "BTREAD failed  31");
    row("read unknown", {"BTREAD \"\""}, "BTREAD failed  31");
    row("read that loses the pump", {"BTREAD \"MV-4\""}, "BTREAD failed  32");
    row("pair", {"BTPAIR A2 \"MV-2\" p2"}, "BTPAIR done 4711 0");
    row("pair and confirm", {"BTPAIR A2 \"MV-2\" p2", "BTPAIRCONFIRM 1", "BTISPAIRED p2"}, "BTISPAIRED done MV-2 0");
    row("pair and decline", {"BTPAIR A2 \"MV-2\" p2", "BTPAIRCONFIRM 0", "BTISPAIRED p2"}, "BTISPAIRED done 0 0");
    row("confirm nothing", {"BTPAIRCONFIRM 1"}, "BTPAIRCONFIRM failed  20");
    row("confirm twice", {"BTPAIR A2 \"MV-2\" p2", "BTPAIRCONFIRM 1", "BTPAIRCONFIRM 1"}, "BTPAIRCONFIRM failed  20");
    row("confirm after an abort", {"BTPAIR A2 \"MV-2\" p2", "ABORT ", "BTPAIRCONFIRM 1"}, "BTPAIRCONFIRM failed  20");
    row("user declines", {"BTPAIR A5 \"MV-5\" p2", "BTPAIRCONFIRM 1"}, "BTPAIRCONFIRM failed  21");
    row("user walks away", {"BTPAIR A6 \"MV-6\" p2", "BTPAIRCONFIRM 1"}, "BTPAIRCONFIRM failed  22");
    row("pump fails the verdict", {"BTPAIR A8 \"MV-8\" p2", "BTPAIRCONFIRM 1"}, "BTPAIRCONFIRM failed  777");
    row("pair a paired pump", {"BTPAIR A1 \"MV-1\" p2"}, "BTPAIR failed  124");
    row("pair out of range", {"BTPAIR A7 \"MV-7\" p2"}, "BTPAIR failed  31");
    row("pair another address", {"BTPAIR A1 \"MV-2\" p2"}, "BTPAIR failed  31");
    row("a second pump takes the place of the first", {"BTPUMPREASSIGN \"MV-3\" p1", "BTISPAIRED p1"},
        "BTISPAIRED done MV-3 0");
    row("reassigned from", {"BTPUMPREASSIGN \"MV-1\" p2", "BTISPAIRED p1"}, "BTISPAIRED done 0 0");
    row("another reader's pump", {"BTPUMPREASSIGN \"MV-4\" p2"}, "BTPUMPREASSIGN failed  140");
    row("remove", {"BTDELETEADDR  \"MV-3\"", "BTISPAIRED p3"}, "BTISPAIRED done 0 0");
    row("remove unknown", {"BTDELETEADDR  \"MV-9\""}, "BTDELETEADDR failed  31");
}

void TestReaderProgram::answers()
{
    QFETCH(QStringList, commands);
    QFETCH(QString, status);
    Bench bench;
    for (const QString& command : qAsConst(commands)) {
        const int ends = bench.log.filter(QStringLiteral(", result")).size() + 2;
        bench.send(command.toUtf8());
        QTRY_COMPARE(bench.log.filter(QStringLiteral(", result")).size(), ends);
    }
    QTRY_COMPARE(bench.status(), status);
}

void TestReaderProgram::showsNothingNewWithoutTheTrigger()
{
    Bench bench;
    const QByteArray before = contentOf(bench.misc(ReaderNames::Status));
    bench.send("BTISPAIRED p1");
    QTRY_COMPARE(bench.log.filter(QStringLiteral("BTISPAIRED done")).size(), 1);
    QCOMPARE(contentOf(bench.misc(ReaderNames::Status)), before);

    bench.parser().triggerFileSystemUpdate();
    QTRY_COMPARE(bench.shown(), QStringLiteral("BTISPAIRED done MV-1 0"));

    // The status of the next command comes after that trigger, so it has to wait for another one.
    bench.send("BTISPAIRED p2");
    QTRY_COMPARE(bench.log.filter(QStringLiteral("BTISPAIRED done")).size(), 2);
    QCOMPARE(bench.shown(), QStringLiteral("BTISPAIRED done MV-1 0"));
}

void TestReaderProgram::leavesARefusedCommandUnanswered()
{
    Bench bench;
    bench.send("BTISPAIRED  p1");
    QTRY_COMPARE(bench.log.filter(QStringLiteral("refused a command file: line 2, column 20: ")).size(), 1);
    QCOMPARE(bench.status(), QStringLiteral("NONE done  0"));
    QVERIFY(bench.log.filter(QStringLiteral("took")).isEmpty());
}

void TestReaderProgram::takesAnEqualCommandAgain()
{
    Bench bench;
    QStringList headers;
    for (int times = 1; times <= 3; ++times) {
        QVERIFY(bench.writer().isPaired(QStringLiteral("p1")));
        QTRY_COMPARE(bench.log.filter(QStringLiteral("BTISPAIRED done")).size(), times);
        QTRY_COMPARE(bench.status(), QStringLiteral("BTISPAIRED done MV-1 0"));
        QTRY_VERIFY(!headers.contains(bench.parser().readStatus().header));
        headers.append(bench.parser().readStatus().header);
    }
    QCOMPARE(bench.log.filter(QStringLiteral("took")).size(), 3);
}

void TestReaderProgram::carriesPollingRunsToTheirEnd()
{
    Scenario scenario = world();
    scenario.times.pickup = 20;
    scenario.times.read = 300;
    scenario.times.progress = 50;
    Bench bench(scenario, false);
    QStringList ends;
    QObject here;
    QObject::connect(&bench.parser(), &StatusFileParser::finished, &here, [&](bool success) {
        const StatusRecord& last = bench.parser().m_lastStatus;
        ends.append(QStringLiteral("%1 %2 %3").arg(success).arg(static_cast<int>(last.status)).arg(last.result));
    });
    QObject::connect(&bench.parser(), &StatusFileParser::timeout, &here,
                     [&] { ends.append(QStringLiteral("timeout")); });

    QStringList expected;
    for (const char* end : {"1 2 IMV-1_0001.xml", "1 2 IMV-1_0002.xml"}) {
        QVERIFY(bench.writer().read(QStringLiteral("MV-1")));
        bench.parser().start(10, 5, 5);
        expected.append(QString::fromLatin1(end));
        QTRY_COMPARE(ends.size(), expected.size());
        QCOMPARE(ends, expected);
    }
}

void TestReaderProgram::keepsPairingsOverARestart()
{
    Bench bench;
    bench.send("BTPUMPREASSIGN \"MV-2\" p1");
    QTRY_COMPARE(bench.status(), QStringLiteral("BTPUMPREASSIGN done MV-2 0"));

    // A pump that the new world doesn't have stays known, out of range, and its pairing wins over that of a new one; a
    // command from before isn't taken again.
    Scenario other = world();
    other.pumps.remove(1);
    Pump added = other.pumps.first();
    added.serialNumber = QStringLiteral("MV-9");
    other.pumps.prepend(added);
    bench.log.clear();
    bench.startReader(other);
    QCOMPARE(bench.status(), QStringLiteral("NONE done  0"));
    QVERIFY(bench.log.filter(QStringLiteral("took")).isEmpty());
    QVERIFY(contentOf(bench.misc(ReaderNames::DeviceList)).contains("<SERIALNR>MV-2</SERIALNR>"));
    bench.send("BTISPAIRED p1");
    QTRY_COMPARE(bench.status(), QStringLiteral("BTISPAIRED done MV-2 0"));
    bench.send("BTREAD \"MV-2\"");
    QTRY_COMPARE(bench.status(), QStringLiteral("BTREAD failed  31"));
}

void TestReaderProgram::leavesABrokenMemoryAlone()
{
    QTemporaryDir folder;
    QFile memory(folder.filePath(QStringLiteral(".merivo-reader.json")));
    const QByteArray broken = "{ \"pumps\": [ { \"patientId\": \"p1\" } ] }";
    QVERIFY(memory.open(QIODevice::WriteOnly));
    memory.write(broken);
    memory.close();

    QString error;
    ReaderDrive drive(folder.path());
    QVERIFY(drive.open(&error));
    ReaderSimulator reader(drive, world(), true);
    QVERIFY(!reader.start(&error));
    QCOMPARE(error, memory.fileName() + QStringLiteral(": pumps[0].serialNumber: is missing"));
    QCOMPARE(contentOf(memory.fileName()), broken);
}

void TestReaderProgram::misbehavesAsTold_data()
{
    QTest::addColumn<QString>("fault");
    QTest::addColumn<QString>("status");
    QTest::addColumn<QString>("lastLog");
    QTest::addColumn<int>("exchangeFiles");
    const QString done = QStringLiteral("BTREAD done IMV-1_0001.xml 0");
    QTest::newRow("no-start") << "no-start"
                              << "NONE done  0"
                              << "leaves BTREAD unanswered" << 0;
    QTest::newRow("no-end") << "no-end@BTREAD"
                            << "BTREAD running  0"
                            << "BTREAD running" << 0;
    QTest::newRow("other command") << "no-end@ABORT" << done << "BTREAD done" << 1;
    QTest::newRow("fail") << "fail=110"
                          << "BTREAD failed  110"
                          << "BTREAD failed" << 0;
    QTest::newRow("slow") << "slow=30" << done << "BTREAD done" << 1;
    QTest::newRow("word") << "unknown-status-word=Done"
                          << "BTREAD Done IMV-1_0001.xml 0"
                          << "BTREAD Done" << 1;
    QTest::newRow("no file") << "no-exchange-file"
                             << "BTREAD done  0"
                             << "BTREAD done" << 0;
    QTest::newRow("two files") << "two-exchange-files"
                               << "BTREAD done IMV-1_0002.xml 0"
                               << "BTREAD done" << 2;
    QTest::newRow("stale") << "stale-status"
                           << "NONE done  0"
                           << "BTREAD done" << 1;
    QTest::newRow("left running") << "left-running=SEARCH" << done << "BTREAD done" << 1;
}

void TestReaderProgram::misbehavesAsTold()
{
    QFETCH(QString, fault);
    QFETCH(QString, lastLog);
    Bench bench(world({fault}));
    if (fault.startsWith(QStringLiteral("left-running")))
        QCOMPARE(bench.shown(), QStringLiteral("SEARCH running  0"));
    bench.send("BTREAD \"MV-1\"");
    QTRY_VERIFY(bench.log.constLast().startsWith(lastLog));
    QTEST(bench.status(), "status");
    QTEST(bench.exchangeFiles().size(), "exchangeFiles");
    QVERIFY(QDir(bench.misc()).entryList({QStringLiteral("*.new")}).isEmpty());
}

void TestReaderProgram::hasTheFirmwareOfItsLog()
{
    for (const char* fault : {"old-firmware", "old-firmware=2.9", "same-header"}) {
        Bench bench(world({QString::fromLatin1(fault)}));
        const QByteArray line = contentOf(bench.misc(QStringLiteral("VERSION.log"))).split('\n').value(4);
        const bool isOld = qstrncmp(fault, "old", 3) == 0;
        QCOMPARE(line.split(' ').constLast(), QByteArray(!isOld ? "3.2.23" : qstrlen(fault) > 12 ? "2.9" : "3.2.22"));
    }
}

void TestReaderProgram::makesTheSameExchangeFileFromTheSameSeed()
{
    const auto fileOf = [](quint32 seed, bool instant) {
        Scenario scenario = world();
        scenario.seed = seed;
        scenario.times = {};
        scenario.times.read = 100;
        scenario.times.pickup = 0;
        scenario.times.progress = 5;
        scenario.exchange.days = 14;
        Bench bench(scenario, instant);
        bench.send("BTREAD \"MV-1\"");
        [&] {
            QTRY_COMPARE(bench.status(), QStringLiteral("BTREAD done IMV-1_0001.xml 0"));
        }();
        return contentOf(bench.misc(bench.exchangeFiles().value(0)));
    };
    const QByteArray bytes = fileOf(7, true);
    QVERIFY2(bytes.size() > 20000, qPrintable(QString::number(bytes.size())));
    QVERIFY(bytes == fileOf(7, false));
    QVERIFY(bytes != fileOf(8, true));

    QXmlStreamReader xml(bytes);
    int days = 0;
    while (!xml.atEnd()) {
        if (xml.readNext() == QXmlStreamReader::StartElement && xml.name() == QLatin1String("day"))
            ++days;
    }
    QVERIFY2(!xml.hasError(), qPrintable(xml.errorString()));
    QCOMPARE(days, 14);
}

void TestReaderProgram::keepsTheOldExchangeFileUntilTheNewOneIsWhole()
{
    Scenario scenario = world();
    scenario.times.pickup = 0;
    scenario.times.abort = 0;
    scenario.times.read = 600000;
    scenario.exchange.days = 20000;
    Bench bench(scenario, false);
    QFile old(bench.misc(QStringLiteral("IOLD.xml")));
    QVERIFY(old.open(QIODevice::WriteOnly));

    const auto unfinished = [&] {
        return QDir(bench.misc()).entryInfoList({QStringLiteral("*.part")});
    };
    bench.send("BTREAD \"MV-1\"");
    QTRY_VERIFY(!unfinished().isEmpty() && unfinished().first().size() > 20000);
    QCOMPARE(bench.exchangeFiles(), QStringList{QStringLiteral("IOLD.xml")});
    bench.send("ABORT ");
    QTRY_COMPARE(bench.status(), QStringLiteral("ABORT done  0"));
    QVERIFY(unfinished().isEmpty());
    QCOMPARE(bench.exchangeFiles(), QStringList{QStringLiteral("IOLD.xml")});
    QCOMPARE(bench.log.filter(QStringLiteral("dropped BTREAD")).size(), 1);

    scenario.exchange.days = 1;
    bench.startReader(scenario);
    bench.send("BTREAD \"MV-1\"");
    QTRY_COMPARE(bench.status(), QStringLiteral("BTREAD done IMV-1_0001.xml 0"));
    QCOMPARE(bench.exchangeFiles(), QStringList{QStringLiteral("IMV-1_0001.xml")});
}

QTEST_GUILESS_MAIN(TestReaderProgram)

#include "test_reader_program.moc"
