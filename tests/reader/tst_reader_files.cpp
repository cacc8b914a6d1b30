// SPDX-FileCopyrightText: 2026 The Merivo Connections developers
// SPDX-License-Identifier: MIT
#include "plugin/session/Logger.h"
#include "reader/CommandFileWriter.h"
#include "reader/DeviceList.h"
#include "reader/ErrorHandler.h"
#include "reader/StatusFileParser.h"
#include "reader/UsbDeviceAdapter.h"
#include "support/BoxAnswerer.h"
#include "support/MessageCapture.h"
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
        QVERIFY(m_folder->writeFile("CommandFile.txt", QByteArray(500, 'x'))); // a longer one leaves no tail
        QStringList words;                                                     // as a tick may see them at that moment
        m_host.services.beforeLogLine = [&](const QString&) {
            words << m_writer->m_lastCommand;
        };
        QVERIFY(submit(*m_writer));
        QCOMPARE(m_folder->command(), "QD17-C RemoteControl File\nCommand=" + command);

        // A folder in the file's place: told in the log alone, and the word is forgotten.
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
        row("no line end", head + "-12.", "[H]: CMD, 2, 12, R");
        row("lines behind the fifth", head + "-12.\n-99.\n", "[H]: CMD, 2, 12, R");
        row("markers in the values", "%4\nabcd%1\n\nabcdefghij%3\n-5.", "[%4]: %1, 4, 5, %3");
        row("trailing blank", "H\nCmd=a\n1234567890done \n\n-1.", "[H]: a, 4, 1, ");
        row("several hyphens", head + "E-1 - 2-31x", "[H]: CMD, 2, 31, R");
        row("hyphen in text alone", head + "no-thing 7.", "[H]: CMD, 2, 0, R");
        row("no hyphen", head + "42.", "[H]: CMD, 2, 42, R");
        row("hyphen at the end", head + "code 12-", "[H]: CMD, 2, 0, R");
        row("byte order mark", "\xEF\xBB\xBF" + head, "[H]: CMD, 2, 0, R");
        row("beyond ASCII", "\xC3\x84\n\xC3\x84\xE2\x82\xAC 4\xC3\x96\n", QString::fromUtf8("[Ä]: Ö, 4, 0, "));
        row("not the codec's", "a\xFD\xC3(", "[a\xEF\xBF\xBD\xEF\xBF\xBD(]: , 4, 0, ");
        row("empty", "", "[]: , 4, 0, ");
        row("empty first line", "\n1234CMD\n", "[]: CMD, 4, 0, ");
        row("long", QByteArray(60000, 'h') + "\n1234CMD\n", '[' + QString(60000, 'h') + "]: CMD, 4, 0, ");
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

    void statusFileCutAtEveryByte()
    {
        QVERIFY(m_folder->writeFile("STATUS.TXT", StatusText));
        const StatusRecord whole = m_parser->readStatus();
        const int done = StatusText.indexOf("done") + 4;
        for (int size = 0; size < StatusText.size(); ++size) {
            QVERIFY(m_folder->writeFile("STATUS.TXT", StatusText.left(size)));
            const StatusRecord cut = m_parser->readStatus();
            QVERIFY(whole.header.startsWith(cut.header) && cut.header.isEmpty() == (size == 0));
            QVERIFY(whole.command.startsWith(cut.command) && whole.result.startsWith(cut.result));
            QCOMPARE(cut.status, size >= done ? CommandStatus::Done : CommandStatus::Unknown);
        }
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
        // The trigger comes ahead of the read: one that is the status file itself empties it.
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
        // Changes show on the debug stream and nowhere else; those of the file, if it was there before the parser.
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
        QTest::newRow("missing") << QByteArray() << QStringList();
        QTest::newRow("other root") << QByteArray("<DEVICES><DEVICE/></DEVICES>") << QStringList();
        row("others in root", "</DEVICE><X><DEVICE/></X><DEVICE>", {"||||free", "||||free"});
        row("zero", "<INTERFACE><PATIENT_ID>0</PATIENT_ID></INTERFACE>", {"||||free"});
        row("two zeros", "<INTERFACE><PATIENT_ID>00</PATIENT_ID></INTERFACE>", {"|||00|paired"});
        row("later wins",
            "<NAME>a</NAME><INTERFACE><BTADR>a</BTADR><PATIENT_ID>1</PATIENT_ID></INTERFACE><SERIALNR>a</SERIALNR>"
            "<NAME>b</NAME><INTERFACE><BTADR>b</BTADR><PATIENT_ID>0</PATIENT_ID></INTERFACE><SERIALNR>b</SERIALNR>",
            {"b|b|b||free"});
        row("skipped whole", "<X><SERIALNR>S</SERIALNR></X><BTADR/><NAME>cygnara</NAME>", {"||cygnara||free"});
        row("inside", "<INTERFACE><X><BTADR>B</BTADR></X><PATIENT_ID> 0</PATIENT_ID></INTERFACE>", {"||| 0|paired"});
        row("stranger in a text ends all", "<SERIALNR>S<X/></SERIALNR><NAME>n</NAME></DEVICE><DEVICE>", {"|S|||free"});
        // A part of an id is nobody's.
        const QByteArray id = "<INTERFACE><BTADR>B</BTADR><PATIENT_ID>0</PATIENT_ID><PATIENT_ID>P";
        row("zero byte in an id", id + '\0' + "1</PATIENT_ID>", {"B||||paired"});
        row("entity in an id", id + "&a;1</PATIENT_ID>", {"B||||paired"});
        row("many", QByteArray("</DEVICE><DEVICE>").repeated(9999), QVector<QString>(10000, "||||free").toList());
        // As deep as no stack is, for a parser that would call itself.
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

    void deviceListCutAtEveryByte()
    {
        for (int size = 0; size < Devices.size(); ++size) {
            const QByteArray cut = Devices.left(size);
            QVERIFY(m_folder->writeFile("DEVLIST.XML", cut));
            const QStringList devices = shown(readDeviceList(m_writer->m_path, "DEVLIST.XML"));
            QCOMPARE(devices.size(), cut.count("<DEVICE>"));
            const QStringList texts = devices.join('|').split('|');
            for (const QByteArray text : {"B1", "S1", "P1", "S2", "Second"})
                QCOMPARE(texts.contains(text), cut.contains(text + '<'));
            for (const QString& text : texts) // whole or not at all
                QVERIFY(QString("|B1|S1|Sanvio Merivo|P1|paired||S2|Second|free|").contains('|' + text + '|'));
        }
    }

    void errorBox()
    {
        // The beginning of each text: as far as it tells the codes apart.
        QMap<int, QString> boxes{{31, "<b>Connection Error</b><br/>Maybe the battery"},
                                 {32, "<b>Connection lost</b><br/>Maybe the battery"},
                                 {110, "<b>Unable to pair with this device</b><br/>Unfortunately, this version"},
                                 {124, "<b>Connection Error</b><br/>This pump is already"},
                                 {140, "<b>Connection Error</b><br/>The pump is already"}};
        for (const int code : {-1, 0, 30, 33, 111, 125, 141})
            boxes[code] = QString("<b>Unknown error code: %1</b><br/>Please contact the support.").arg(code);
        for (auto it = boxes.cbegin(); it != boxes.cend(); ++it) {
            m_host.journal.clear();
            BoxAnswerer answerer(&m_host.journal.lines);
            ErrorHandler::showError(it.key());
            const QString log = m_host.journal.lines.join(' ');
            const QString start = "err|Error message box: code='%1'|| box|Merivo Connections|%2";
            QVERIFY2(log.startsWith(start.arg(it.key()).arg(it.value())), qPrintable(log));
            const BoxAnswerer::Box box = answerer.seen.at(0);
            QVERIFY(box.icon == QMessageBox::Warning && box.buttons == QMessageBox::Ok && !box.parent);
        }
    }

    void adapter_data()
    {
        QTest::addColumn<int>("stepsIn"); // of 20 ms
        QTest::addColumn<int>("stepsOut");
        QTest::addColumn<QString>("calls");
        QTest::newRow("no device") << 0 << 0 << "acquireDevice(1, '')";
        const QString held = "acquireDevice(1, '') setDeviceHold(1) drivePath setDeviceHold(%1) device deleted";
        QTest::newRow("hold unchanged") << 0 << 135 << held.arg(1);
        QTest::newRow("hold changed") << 60 << 135 << held.arg(0);
    }
    void adapter()
    {
        QFETCH(int, stepsIn);
        QFETCH(int, stepsOut);
        m_host.deviceAdmin.hasDevice = stepsOut > 0;
        m_host.deviceAdmin.holdChanges = stepsIn > 0;
        m_host.deviceAdmin.drivePath = m_folder->drive();
        // Turns with each step, under the wait cursor, and counts those ahead of what the pause is for.
        QTimer turns;
        QString pauseEnd = "drivePath";
        int steps = 0;
        connect(&turns, &QTimer::timeout, this, [this, &pauseEnd, &steps] {
            steps += QGuiApplication::overrideCursor() && !m_host.journal.contains(pauseEnd) ? 1 : 0;
        });
        turns.start(0);
        QElapsedTimer timer;
        timer.start();
        auto held = std::make_unique<UsbDeviceAdapter>(&m_host.deviceAdmin);
        QVERIFY(timer.restart() >= 20LL * stepsIn);
        QCOMPARE(std::exchange(steps, 0), stepsIn);
        QCOMPARE(held->m_drivePath, stepsOut ? m_folder->drive() : QString());
        pauseEnd = "device deleted";
        held.reset();
        QVERIFY(timer.elapsed() >= 20LL * stepsOut);
        QCOMPARE(steps, stepsOut);
        QTEST(m_host.journal.lines.join(' '), "calls");
        // Two lines a pause: there were no others.
        QCOMPARE(m_messages->texts(QtDebugMsg, "default").size(), (stepsIn ? 2 : 0) + (stepsOut ? 2 : 0));
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
        QCursor::setPos(150, 150); // into the queue, unlike QTest's events, which go past it
        QVERIFY(!window.hasMoved);
        UsbDeviceAdapter::wait(20);
        QVERIFY(window.hasMoved);
    }

    void waitWithoutTime()
    {
        QVERIFY(UsbDeviceAdapter(nullptr).m_drivePath.isEmpty());
        QVERIFY(m_messages->messages().isEmpty());
        QVERIFY(UsbDeviceAdapter::wait(0) && UsbDeviceAdapter::wait(-20));
        QVERIFY(!QGuiApplication::overrideCursor());
        const QRegularExpression both("^(static bool UsbDeviceAdapter::wait\\(int\\) >>> (Start|Stopp) waiting: at "
                                      "\\d\\d:\\d\\d:\\d\\d\\.\\d{3}\n){4}$");
        QVERIFY(both.match(m_messages->texts(QtDebugMsg, "default").join('\n') + '\n').hasMatch());
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
