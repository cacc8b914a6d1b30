// SPDX-FileCopyrightText: 2026 The Merivo Connections developers
// SPDX-License-Identifier: MIT
#include "plugin/session/Logger.h"
#include "reader/CommandFileWriter.h"
#include "reader/DeviceList.h"
#include "reader/ErrorHandler.h"
#include "reader/StatusFileParser.h"
#include "reader/UsbDeviceAdapter.h"
#include "support/MessageCapture.h"
#include "support/ModalUser.h"
#include "support/ReaderFolder.h"
#include "support/RecordingHost.h"

#include <QCursor>
#include <QElapsedTimer>
#include <QGuiApplication>
#include <QRegularExpression>
#include <QTest>
#include <QWindow>

#include <utility>

using Submit = bool (*)(CommandFileWriter&);
Q_DECLARE_METATYPE(Submit)

namespace {

const QByteArray StatusText = "Reader 7\r\nCmd BTREAD\r\nStatus  = done\r\nResult  = A1B2C3\r\nError   -110.\r\n";
const QByteArray Devices = "<?xml version=\"1.0\"?><DEVICELIST>"
                           "<DEVICE><NAME>Cygnara</NAME><SERIALNR>S1</SERIALNR><INTERFACE><BTADR>B1</BTADR>"
                           "<PATIENT_ID>P1</PATIENT_ID></INTERFACE></DEVICE>"
                           "<DEVICE><SERIALNR>S2</SERIALNR><NAME>Second</NAME></DEVICE></DEVICELIST>";

QStringList shown(const QList<DeviceInfo>& devices)
{
    QStringList lines;
    for (const DeviceInfo& d : devices)
        lines.append(
            QStringList{d.btAddress, d.serialNumber, d.deviceName, d.patientId, d.paired ? "paired" : "free"}.join(
                QLatin1Char('|')));
    return lines;
}

} // namespace

class TestReaderFiles : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { Logger::instance(nullptr, &m_host.services); }

    void init()
    {
        m_messages = std::make_unique<MessageCapture>();
        m_folder = std::make_unique<ReaderFolder>();
        m_writer = CommandFileWriter::create(m_folder->drive());
        m_parser = StatusFileParser::create(m_folder->drive());
        m_host.journal.clear();
        m_messages->clear();
    }

    void cleanup()
    {
        m_host.services.beforeLogLine = {};
        delete m_parser;
        delete m_writer;
        QCOMPARE(m_messages->texts(QtWarningMsg).join("#"), QString());
    }

    void commandFileHasTheWireText_data()
    {
        using W = CommandFileWriter;
        QTest::addColumn<Submit>("submit");
        const auto row = [](const char* command, Submit submit) {
            QTest::newRow(command) << submit;
        };
        row("SEARCH 00100", [](W& w) { return w.search(); });
        row("BTPAIR B \"S\" P", [](W& w) { return w.pair("B", "S", "P"); });
        row("BTPAIR B \"S\" ", [](W& w) { return w.pair("B", "S", ""); });
        row("BTPAIR %3%2 \"a\"b %1\" \n", [](W& w) { return w.pair("%3%2", "a\"b %1", "\n"); });
        row("BTPAIRCONFIRM 1", [](W& w) { return w.confirmPairing(true); });
        row("BTPAIRCONFIRM 0", [](W& w) { return w.confirmPairing(false); });
        row("BTREAD \"\xC3\x84 \xE2\x82\xAC\"", [](W& w) { return w.read(QString::fromUtf8("Ä €")); });
        row("BTISPAIRED P", [](W& w) { return w.isPaired("P"); });
        row("BTDELETEADDR  \"S\"", [](W& w) { return w.deleteAddress("S"); });
        row("BTPUMPREASSIGN \"S\" P", [](W& w) { return w.reassign("S", "P"); });
        row("ABORT ", [](W& w) { return w.abort(); });
    }
    void commandFileHasTheWireText()
    {
        QFETCH(Submit, submit);
        const QByteArray command = QTest::currentDataTag();
        QVERIFY(m_folder->writeFile("CommandFile.txt", QByteArray(500, 'x'))); // of an earlier, longer command
        QStringList words;                                                     // as a tick may see them at that moment
        m_host.services.beforeLogLine = [&](const QString&) {
            words << m_writer->m_lastCommand;
        };
        QVERIFY(submit(*m_writer));
        QCOMPARE(m_folder->command(), "QD17-C RemoteControl File\nCommand=" + command);

        // A folder in the file's place: the failure is logged, and the word forgotten.
        m_writer->m_lastCommand = "EARLIER";
        const QString file = m_folder->misc() + "/CommandFile.txt";
        QVERIFY(QFile::remove(file) && QDir().mkdir(file) && !submit(*m_writer));
        const QString word = command.left(command.indexOf(' '));
        QCOMPARE(words << m_writer->m_lastCommand, QStringList({word, word, QString()}));
        const QString text = '<' + QString::fromUtf8(command) + '>';
        QCOMPARE(m_host.journal.lines,
                 QStringList({"mcp|<== " + text + " submitted.||" + file, "err|=!= " + text + " failed.||" + file}));
    }

    void oneWriterAndOneParserAtATime()
    {
        m_writer = CommandFileWriter::create("/gone"); // no folder is made for it
        m_parser = StatusFileParser::create("/gone");
        QVERIFY(!m_writer->search() && !QFile::exists("/gone"));
        QCOMPARE(CommandFileWriter::instance(), m_writer);
        QCOMPARE(StatusFileParser::instance(), m_parser);
        delete std::exchange(m_parser, nullptr);
        delete std::exchange(m_writer, nullptr);
        QVERIFY(!CommandFileWriter::instance() && !StatusFileParser::instance());
        QCOMPARE(m_host.journal.lines.join('\n'),
                 QString("mcp|Command file writer finished.||%1\nmcp|Command file writer initialized.||/gone/MISC\n"
                         "mcp|Status file parser finishing.||%1\nmcp|Status file parser finished.||%1\n"
                         "mcp|Status file parser initialized.||/gone/MISC\n"
                         "err|=!= <SEARCH 00100> failed.||/gone/MISC/CommandFile.txt\n"
                         "mcp|Status file parser finishing.||/gone/MISC\n"
                         "mcp|Status file parser finished.||/gone/MISC\n"
                         "mcp|Command file writer finished.||/gone/MISC")
                     .arg(m_folder->misc()));
    }

    void statusFile_data()
    {
        QTest::addColumn<QByteArray>("bytes");
        QTest::addColumn<QString>("record");
        const auto row = [](const char* name, const QByteArray& bytes, const QString& record) {
            QTest::newRow(name) << bytes << record;
        };
        const QByteArray head = "H\n1234CMD\n1234567890done\n1234567890R\n";
        row("CRLF", StatusText, "[Reader 7]: BTREAD, 2, 110, A1B2C3");
        row("lines after the fifth", head + "-12.\n-99.\n", "[H]: CMD, 2, 12, R");
        row("placeholders in the values", "%4\nabcd%1\n\nabcdefghij%3\n-5.", "[%4]: %1, 4, 5, %3");
        row("hyphen in the text only", head + "no-thing 7.", "[H]: CMD, 2, 0, R");
        row("no hyphen", head + "42.", "[H]: CMD, 2, 42, R");
        row("hyphen at the end", head + "code 12-", "[H]: CMD, 2, 0, R");
        row("not ASCII", "\xC3\x84\n\xC3\x84\xE2\x82\xAC 4\xC3\x96\n", QString::fromUtf8("[Ä]: Ö, 4, 0, "));
        row("empty first line", "\n1234CMD\n", "[]: CMD, 4, 0, ");
        // Garbage without line ends is cut, so that it can't fill the memory.
        row("huge", QByteArray(4 << 20, 'h'),
            QStringLiteral("[%1]: %2, 4, 0, %3").arg(QString(65536, 'h'), QString(65532, 'h'), QString(65526, 'h')));
    }
    void statusFile()
    {
        QFETCH(QByteArray, bytes);
        QFETCH(QString, record);
        QVERIFY(m_folder->writeFile("STATUS.TXT", bytes));
        const StatusRecord read = m_parser->readStatus();
        QCOMPARE(read.toLogText(), record);
        QCOMPARE(m_host.journal.lines, QStringList());
        const QString line =
            QStringLiteral("StatusFile: '%1' # %2, Status: %3, Error: %4")
                .arg(read.header, read.command, QString::number(int(read.status)), QString::number(read.error));
        QCOMPARE(m_messages->texts(QtDebugMsg, "default"), QStringList(line));
    }

    void aChangeInAnyFieldIsNew()
    {
        const StatusRecord old{"h", "c", CommandStatus::Done, "r", 1};
        QCOMPARE(old, (StatusRecord{"h", "c", CommandStatus::Done, "r", 1}));
        for (const StatusRecord& now : {StatusRecord{"H", "c", CommandStatus::Done, "r", 1},
                                        {"h", "C", CommandStatus::Done, "r", 1},
                                        {"h", "c", CommandStatus::Failed, "r", 1},
                                        {"h", "c", CommandStatus::Done, "R", 1},
                                        {"h", "c", CommandStatus::Done, "r", 2}})
            QVERIFY2(now != old, qPrintable(now.toLogText()));
    }

    void statusFileUnreadable()
    {
        const QString misc = m_folder->misc();
        const QString status = misc + "/STATUS.TXT";
        QVERIFY(QDir().mkdir(misc + "NoCommand.txt") && m_folder->writeFile("STATUS.TXT", StatusText));
        QCOMPARE(m_parser->readStatus(), StatusRecord());
        // The trigger precedes the read: if it is a link to the status file, it empties that.
        QVERIFY(QDir().rmdir(misc + "NoCommand.txt") && QFile::link(status, misc + "NoCommand.txt"));
        m_parser->readStatus();
        QVERIFY(QFile::remove(misc + "NoCommand.txt") && QFile::remove(status) && QDir().mkdir(status));
        QCOMPARE(m_parser->readStatus(), StatusRecord());
        QVERIFY(QDir(misc).removeRecursively());
        QCOMPARE(m_parser->readStatus(), StatusRecord());
        const QString unopened = "err|=!= Status file open failed on device reader.||" + status;
        QCOMPARE(
            m_host.journal.lines,
            QStringList({"err|=!= Trigger file system update failed on device reader.||" + misc, unopened, unopened}));
        QCOMPARE(m_messages->texts(QtDebugMsg, "default"),
                 QStringList({"Could not write NoCommand.txt to device reader within " + misc,
                              "StatusFile: '' # , Status: 4, Error: 0"}));
    }

    void triggerFileLiesBesideTheFolder()
    {
        QVERIFY(m_folder->writeFile("../MISCNoCommand.txt", "old"));
        QVERIFY(m_parser->triggerFileSystemUpdate());
        QCOMPARE(QDir(m_folder->drive()).entryList(QDir::Files), QStringList("MISCNoCommand.txt"));
        QCOMPARE(m_folder->readFile("../MISCNoCommand.txt"), QByteArray());
        QCOMPARE(QDir(m_folder->misc()).entryList(QDir::Files), QStringList());
        // Changes are debug messages only; those of the file, if it was there before the parser.
        QTRY_VERIFY(m_folder->writeFile("STATUS.TXT", StatusText) &&
                    m_messages->texts(QtDebugMsg).contains("Directory '" + m_folder->misc() + "' has changed."));
        m_parser = StatusFileParser::create(m_folder->drive());
        m_host.journal.clear();
        QTRY_VERIFY(m_folder->writeFile("STATUS.TXT", StatusText) &&
                    m_messages->texts(QtDebugMsg).contains("File '" + m_folder->misc() + "/STATUS.TXT' has changed."));
        QCOMPARE(m_host.journal.lines, QStringList());
    }

    void deviceList_data()
    {
        QTest::addColumn<QByteArray>("xml");
        QTest::addColumn<QStringList>("devices");
        const auto row = [](const char* name, const QByteArray& inside, const QStringList& devices) {
            QTest::newRow(name) << "<DEVICELIST><DEVICE>" + inside + "</DEVICE></DEVICELIST>" << devices;
        };
        QTest::newRow("two") << Devices << QStringList({"B1|S1|Sanvio Merivo|P1|paired", "|S2|Second||free"});
        const int end = Devices.indexOf("P1") + 2;
        QTest::newRow("cut in an id") << Devices.left(end - 1) << QStringList("B1|S1|Sanvio Merivo||free");
        QTest::newRow("cut after an id") << Devices.left(end + 1) << QStringList("B1|S1|Sanvio Merivo|P1|paired");
        QTest::newRow("missing") << QByteArray() << QStringList();
        QTest::newRow("other root") << QByteArray("<DEVICES><DEVICE/></DEVICES>") << QStringList();
        row("two zeros", "<INTERFACE><PATIENT_ID>00</PATIENT_ID></INTERFACE>", {"|||00|paired"});
        row("last one counts", "<INTERFACE><BTADR>a</BTADR><BTADR>b</BTADR></INTERFACE>", {"b||||free"});
        row("element in a text ends the list", "<SERIALNR>S<X/></SERIALNR><NAME>n</NAME></DEVICE><DEVICE>",
            {"|S|||free"});
        // A part of an id isn't an id.
        const QByteArray id = "<INTERFACE><BTADR>B</BTADR><PATIENT_ID>0</PATIENT_ID><PATIENT_ID>P";
        row("zero byte in an id", id + '\0' + "1</PATIENT_ID>", {"B||||paired"});
        row("entity in an id", id + "&a;1</PATIENT_ID>", {"B||||paired"});
        row("many", QByteArray("</DEVICE><DEVICE>").repeated(9999), QVector<QString>(10000, "||||free").toList());
        // Deeper than the stack of a recursive parser.
        const QByteArray deep = QByteArray("<X>").repeated(1000000);
        row("deep", deep + QByteArray("</X>").repeated(1000000) + "<INTERFACE>" + deep, {"||||free"});
        // What would keep the XML reader busy for minutes ends the list.
        const QByteArray next = "<NAME>n</NAME></DEVICE><DEVICE";
        QByteArray attributes;
        for (int i = 0; i < 200; ++i)
            attributes += " a" + QByteArray::number(i) + "=''";
        row("attributes", next + attributes + '>', {"||n||free"});
        row("attributes in an id", id + "<a" + attributes + "/>1</PATIENT_ID>", {"B||||paired"});
        const QByteArray spaces = QByteArray("<a xmlns='c'/>").repeated(300);
        row("name spaces", next + '>' + spaces + "<NAME>m", {"||n||free", "||||free"});
        row("too long", id + QByteArray(8 << 20, ' ') + "</PATIENT_ID>", {"B||||paired"});
        const QByteArray harmless = attributes + spaces + "<!ENTITY \"";
        row("harmless",
            "<!--" + harmless + "--><![CDATA[" + harmless + "]]><?a " + harmless + "?><X/>" + attributes + next + '>',
            {"||n||free", "||||free"});
        QTest::newRow("declarations") << "<!DOCTYPE D [<!ENTITY a 'b'>]>" + Devices.mid(21) << QStringList();
        row("text as it stands", "<SERIALNR> \xC3\x84&amp;1 </SERIALNR>", {QString::fromUtf8("| Ä&1 |||free")});
    }
    void deviceList()
    {
        QFETCH(QByteArray, xml);
        QFETCH(QStringList, devices);
        QVERIFY(xml.isEmpty() || m_folder->writeFile("DEVLIST.XML", xml));
        QCOMPARE(shown(readDeviceList(m_writer->m_path, "DEVLIST.XML")), devices);
        const QString line = "mcp|==> Number of pumps within device reader DB: %1||%2/DEVLIST.XML";
        QCOMPARE(m_host.journal.lines, QStringList(line.arg(devices.size()).arg(m_folder->misc())));
    }

    void errorHasItsText()
    {
        // The beginning of each text, as far as it differs.
        const QMap<int, QString> texts{{31, "<b>Connection Error</b><br/>Maybe"},
                                       {32, "<b>Connection lost</b><br/>Maybe"},
                                       {110, "<b>Unable to pair with this device</b>"},
                                       {124, "<b>Connection Error</b><br/>This pump"},
                                       {140, "<b>Connection Error</b><br/>The pump"},
                                       {-1, "<b>Unknown error code: -1</b><br/>Please contact the support."}};
        for (const int code : texts.keys()) {
            const BoxAnswerer boxes;
            ErrorHandler::showError(code);
            QVERIFY2(boxes.seen.first().text.startsWith(texts[code]), qPrintable(boxes.seen.first().text));
        }
    }

    void adapterHoldsTheReader_data()
    {
        QTest::addColumn<bool>("hasDevice");
        QTest::addColumn<bool>("holdChanges");
        QTest::addColumn<QString>("calls");
        const QString held =
            "acquireDevice(1, '') setDeviceHold(1) %1drivePath setDeviceHold(%2) 135 turns device deleted";
        QTest::newRow("no device") << false << false << "acquireDevice(1, '')";
        QTest::newRow("hold unchanged") << true << false << held.arg("").arg(1);
        QTest::newRow("hold changed") << true << true << held.arg("60 turns ").arg(0);
    }
    void adapterHoldsTheReader()
    {
        QFETCH(bool, hasDevice);
        QFETCH(bool, holdChanges);
        m_host.deviceAdmin.hasDevice = hasDevice;
        m_host.deviceAdmin.holdChanges = holdChanges;
        m_host.deviceAdmin.drivePath = m_folder->drive();
        // Counts the turns of the event loop within a pause, one each 20 ms.
        QStringList& calls = m_host.journal.lines;
        QTimer turns;
        connect(&turns, &QTimer::timeout, this, [&calls] {
            if (!QGuiApplication::overrideCursor())
                return;
            const int before = calls.last().endsWith(" turns") ? calls.takeLast().section(' ', 0, 0).toInt() : 0;
            calls.append(QStringLiteral("%1 turns").arg(before + 1));
        });
        turns.start(0);
        QElapsedTimer timer;
        timer.start();
        {
            const UsbDeviceAdapter adapter(&m_host.deviceAdmin);
            QCOMPARE(adapter.m_drivePath, hasDevice ? m_folder->drive() : QString());
        }
        QTEST(calls.join(' '), "calls");
        QVERIFY(timer.elapsed() >= (hasDevice ? 2700 : 0) + (holdChanges ? 1200 : 0));
    }

    void waitTakesTheUsersInput()
    {
        struct : QWindow
        {
            void mouseMoveEvent(QMouseEvent*) override { hasMoved = true; }
            bool hasMoved = false;
        } window;
        window.setGeometry(100, 100, 200, 200);
        window.show();
        QVERIFY(QTest::qWaitForWindowExposed(&window));
        QCursor::setPos(150, 150); // queued, unlike the events of QTest
        QVERIFY(!window.hasMoved);
        UsbDeviceAdapter::wait(20);
        QVERIFY(window.hasMoved);
    }

    void waitWithoutTime()
    {
        QVERIFY(UsbDeviceAdapter(nullptr).m_drivePath.isEmpty());
        QVERIFY(m_messages->messages().isEmpty());
        QVERIFY(UsbDeviceAdapter::wait(0) && UsbDeviceAdapter::wait(-20) && !QGuiApplication::overrideCursor());
        const QRegularExpression trace("^(static bool UsbDeviceAdapter::wait\\(int\\) >>> (Start|Stopp) waiting: at "
                                       "\\d\\d:\\d\\d:\\d\\d\\.\\d{3}\n?){4}$");
        QVERIFY(trace.match(m_messages->texts(QtDebugMsg, "default").join('\n')).hasMatch());
    }

private:
    RecordingHost m_host;
    std::unique_ptr<MessageCapture> m_messages;
    std::unique_ptr<ReaderFolder> m_folder;
    CommandFileWriter* m_writer = nullptr;
    StatusFileParser* m_parser = nullptr;
};

QTEST_MAIN(TestReaderFiles)
#include "tst_reader_files.moc"
