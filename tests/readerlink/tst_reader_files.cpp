// SPDX-FileCopyrightText: 2026 The Merivo Connections developers
// SPDX-License-Identifier: MIT
#include "base/Logger.h"
#include "readerlink/CommandFileWriter.h"
#include "readerlink/DeviceList.h"
#include "readerlink/StatusFileParser.h"
#include "readerlink/UsbDeviceAdapter.h"
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

#include <filesystem>
#include <utility>

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
        QVERIFY(m_folder->writeFile("STATUS.TXT", StatusText));
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

    void commandFileHasTheWireText()
    {
        using W = CommandFileWriter;
        const auto check = [this](const QString& command, bool (*submit)(W&)) {
            QVERIFY(m_folder->writeFile("CommandFile.txt", QByteArray(500, 'x'))); // of an earlier, longer command
            m_host.journal.clear();
            QVERIFY(submit(*m_writer));
            QCOMPARE(m_folder->command(), "QD17-C RemoteControl File\nCommand=" + command.toLocal8Bit());
            QCOMPARE(m_writer->m_lastCommand, command.section(' ', 0, 0));
            const QString submitted = "mcp|<== <" + command + "> submitted.||";
            QCOMPARE(m_host.journal.lines, QStringList(submitted + m_folder->misc() + "/CommandFile.txt"));
        };
        check("SEARCH 00100", [](W& writer) { return writer.search(); });
        check("BTPAIR B \"S\" P", [](W& writer) { return writer.pair("B", "S", "P"); });
        check("BTPAIR B \"S\" ", [](W& writer) { return writer.pair("B", "S", ""); });
        check("BTPAIR %3%2 \"a\"b %1\" \n", [](W& writer) { return writer.pair("%3%2", "a\"b %1", "\n"); });
        check("BTPAIRCONFIRM 1", [](W& writer) { return writer.confirmPairing(true); });
        check("BTPAIRCONFIRM 0", [](W& writer) { return writer.confirmPairing(false); });
        check("BTREAD \"Ä €\"", [](W& writer) { return writer.read("Ä €"); });
        check("BTISPAIRED P", [](W& writer) { return writer.isPaired("P"); });
        check("BTDELETEADDR  \"S\"", [](W& writer) { return writer.deleteAddress("S"); });
        check("BTPUMPREASSIGN \"S\" P", [](W& writer) { return writer.reassign("S", "P"); });
        check("ABORT ", [](W& writer) { return writer.abort(); });
    }

    void oneWriterAndOneParserAtATime()
    {
        m_writer = CommandFileWriter::create("/gone"); // no folder is made for it
        m_parser = StatusFileParser::create("/gone");
        QCOMPARE(CommandFileWriter::instance(), m_writer);
        QCOMPARE(StatusFileParser::instance(), m_parser);
        QString word; // as a tick may see it while the failure is logged
        m_host.services.beforeLogLine = [&](const QString&) {
            word = m_writer->m_lastCommand;
        };
        QVERIFY(!m_writer->search() && !QFile::exists("/gone"));
        QVERIFY(word == "SEARCH" && QString(m_writer->m_lastCommand).isEmpty());
        m_host.services.beforeLogLine = {};
        delete std::exchange(m_parser, nullptr);
        delete std::exchange(m_writer, nullptr);
        QVERIFY(!CommandFileWriter::instance() && !StatusFileParser::instance());
        const QString lines = "mcp|Command file writer finished.||%1 mcp|Command file writer initialized.||%2 "
                              "mcp|Status file parser finishing.||%1 mcp|Status file parser finished.||%1 "
                              "mcp|Status file parser initialized.||%2 "
                              "err|=!= <SEARCH 00100> failed.||%2/CommandFile.txt "
                              "mcp|Status file parser finishing.||%2 mcp|Status file parser finished.||%2 "
                              "mcp|Command file writer finished.||%2";
        QCOMPARE(m_host.journal.lines.join(' '), lines.arg(m_folder->misc(), "/gone/MISC"));
    }

    void statusFile()
    {
        const std::pair<QByteArray, QString> files[] = {
            {StatusText, "[Reader 7]: BTREAD, 2, 110, A1B2C3"},
            {"%4\nabcd%1\n\nabcdefghij%3\n-7 -5.\n-99.\n", "[%4]: %1, 4, 5, %3"},
            {"H\n1234CMD\n1234567890done\n1234567890R\n42.", "[H]: CMD, 2, 42, R"},
            // Garbage without line ends is cut, so that it can't fill the memory.
            {QByteArray(4 << 20, 'h'),
             QString("[%1]: %2, 4, 0, %3").arg(QString(65536, 'h'), QString(65532, 'h'), QString(65526, 'h'))}};
        for (const auto& [bytes, record] : files) {
            m_messages->clear();
            QVERIFY(m_folder->writeFile("STATUS.TXT", bytes));
            const StatusRecord read = m_parser->readStatus();
            QCOMPARE(read.toLogText(), record);
            const QString line =
                QString("StatusFile: '%1' # %2, Status: %3, Error: %4")
                    .arg(read.header, read.command, QString::number(int(read.status)), QString::number(read.error));
            QCOMPARE(m_messages->texts(QtDebugMsg, "default"), QStringList(line));
        }
        QCOMPARE(m_host.journal.lines, QStringList());
    }

    void aChangeInAnyFieldIsNew()
    {
        const StatusRecord old{"h", "c", CommandStatus::Done, "r", 1};
        QVERIFY(old == (StatusRecord{"h", "c", CommandStatus::Done, "r", 1}));
        QVERIFY(old != (StatusRecord{"H", "c", CommandStatus::Done, "r", 1}));
        QVERIFY(old != (StatusRecord{"h", "C", CommandStatus::Done, "r", 1}));
        QVERIFY(old != (StatusRecord{"h", "c", CommandStatus::Failed, "r", 1}));
        QVERIFY(old != (StatusRecord{"h", "c", CommandStatus::Done, "R", 1}));
        QVERIFY(old != (StatusRecord{"h", "c", CommandStatus::Done, "r", 2}));
    }

    void statusFileUnreadable()
    {
        const QString misc = m_folder->misc();
        const QString status = misc + "/STATUS.TXT";
        QVERIFY(QDir().mkdir(misc + "NoCommand.txt"));
        QCOMPARE(m_parser->readStatus(), StatusRecord());
        // The trigger precedes the read: if it is a link to the status file, it empties that.
        QVERIFY(QDir().rmdir(misc + "NoCommand.txt"));
        std::filesystem::create_hard_link(status.toStdString(), misc.toStdString() + "NoCommand.txt");
        m_parser->readStatus();
        QVERIFY(QFile::remove(misc + "NoCommand.txt") && QFile::remove(status) && QDir().mkdir(status));
        QCOMPARE(m_parser->readStatus(), StatusRecord());
        const QString unopened = "err|=!= Status file open failed on device reader.||" + status;
        QCOMPARE(m_host.journal.lines,
                 QStringList({"err|=!= Trigger file system update failed on device reader.||" + misc, unopened}));
        QCOMPARE(m_messages->texts(QtDebugMsg, "default"),
                 QStringList({"Could not write NoCommand.txt to device reader within " + misc,
                              "StatusFile: '' # , Status: 4, Error: 0"}));
    }

    void triggerFileIsNextToTheFolder()
    {
        QVERIFY(m_folder->writeFile("../MISCNoCommand.txt", "old"));
        QVERIFY(m_parser->triggerFileSystemUpdate());
        QCOMPARE(QDir(m_folder->drive()).entryList(QDir::Files), QStringList("MISCNoCommand.txt"));
        QCOMPARE(m_folder->readFile("../MISCNoCommand.txt"), QByteArray());
        QCOMPARE(QDir(m_folder->misc()).entryList(QDir::Files), QStringList("STATUS.TXT"));
        // Changes are debug messages only.
        QVERIFY(m_folder->writeFile("STATUS.TXT", StatusText));
        QTRY_VERIFY(m_messages->texts(QtDebugMsg).contains("Directory '" + m_folder->misc() + "' has changed."));
        QTRY_VERIFY(m_messages->texts(QtDebugMsg).contains("File '" + m_folder->misc() + "/STATUS.TXT' has changed."));
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
        // A part of an id isn't an id.
        const QByteArray id = "<INTERFACE><BTADR>B</BTADR><PATIENT_ID>0</PATIENT_ID><PATIENT_ID>P";
        row("zero byte in an id", id + '\0' + "1</PATIENT_ID>", {"B||||paired"});
        row("entity in an id", id + "&a;1</PATIENT_ID>", {"B||||paired"});
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
            "<!--" + harmless + "--><![CDATA[" + harmless + "]]><?a " + harmless + "?><X><Y/></X>" + attributes + next +
                '>',
            {"||n||free", "||||free"});
        QTest::newRow("declarations") << "<!DOCTYPE D [<!ENTITY a 'b'>]>" + Devices.mid(21) << QStringList();
        row("text unchanged", "<SERIALNR> \xC3\x84&amp;1 </SERIALNR>", {QString::fromUtf8("| Ä&1 |||free")});
    }
    void deviceList()
    {
        QFETCH(QByteArray, xml);
        QFETCH(QStringList, devices);
        QVERIFY(m_folder->writeFile("DEVLIST.XML", xml));
        QCOMPARE(shown(readDeviceList(m_writer->m_path, "DEVLIST.XML")), devices);
        const QString line = "mcp|==> Number of pumps within device reader DB: %1||%2/DEVLIST.XML";
        QCOMPARE(m_host.journal.lines, QStringList(line.arg(devices.size()).arg(m_folder->misc())));
    }

    void adapterHoldsTheReader()
    {
        QVERIFY(UsbDeviceAdapter(nullptr).m_drivePath.isEmpty());
        m_host.deviceAdmin.drivePath = m_folder->drive();
        struct : QWindow
        {
            void mouseMoveEvent(QMouseEvent*) override { hasMoved = true; }
            bool hasMoved = false;
        } window;
        window.setGeometry(100, 100, 200, 200);
        window.show();
        QVERIFY(QTest::qWaitForWindowExposed(&window));
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
        QElapsedTimer elapsed;
        elapsed.start();
        for (const bool holdChanges : {true, false}) {
            calls.clear();
            m_host.deviceAdmin.holdChanges = holdChanges;
            {
                const UsbDeviceAdapter adapter(&m_host.deviceAdmin);
                QCOMPARE(adapter.m_drivePath, m_folder->drive());
                QCursor::setPos(150, 150); // queued, unlike the events of QTest
                QVERIFY(!holdChanges || !window.hasMoved);
            }
            const QString held = "acquireDevice(1, '') setDeviceHold(1) %1drivePath setDeviceHold(%2) 135 turns "
                                 "device deleted";
            QCOMPARE(calls.join(' '), holdChanges ? held.arg("60 turns ").arg(0) : held.arg("").arg(1));
        }
        QVERIFY(window.hasMoved && elapsed.elapsed() >= 1200 + 2 * 2700);
        const QRegularExpression trace("^(static bool UsbDeviceAdapter::wait\\(int\\) >>> (Start|Stopp) waiting: at "
                                       "\\d\\d:\\d\\d:\\d\\d\\.\\d{3}\n?){6}$");
        QVERIFY(trace.match(m_messages->texts(QtDebugMsg, "default").join('\n')).hasMatch());
        QVERIFY(!QGuiApplication::overrideCursor());
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
