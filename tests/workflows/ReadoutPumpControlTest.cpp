// SPDX-FileCopyrightText: 2026 The Merivo Connections developers
// SPDX-License-Identifier: MIT
#include "workflows/ReadoutPumpControl.h"

#include "plugin/session/Logger.h"
#include "plugin/session/PatientSession.h"
#include "reader/CommandFileWriter.h"
#include "reader/StatusFileParser.h"
#include "support/BoxAnswerer.h"
#include "support/ReaderFolder.h"
#include "support/RecordingHost.h"

#include <QDir>
#include <QTest>

#include <algorithm>
#include <memory>

namespace {

const QByteArray Devices = "<DEVICELIST><DEVICE><SERIALNR>PU1</SERIALNR></DEVICE>"
                           "<DEVICE><SERIALNR>PU12</SERIALNR></DEVICE></DEVICELIST>";
const QString LookUpError = QStringLiteral("err|=!= [Read Controller] Readout failed: %1.||");

} // namespace

/// What happens stands in one journal: log lines, boxes and signals in their order.
class ReadoutPumpControlTest final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { Logger::instance(nullptr, &m_host.services); }
    void init();
    void cleanup();
    void endOfReadout_data();
    void endOfReadout();
    void endOfSearch_data();
    void endOfSearch();
    void startsAnewAfterFailure();
    void searchThenReadout();

private:
    /// Ends the run that is under way as the reader would.
    void endRun(bool success, CommandStatus status, int error = 0);
    QStringList journal() const;

    RecordingHost m_host;
    std::unique_ptr<ReaderFolder> m_reader;
    std::unique_ptr<ReadoutPumpControl> m_control;
};

void ReadoutPumpControlTest::init()
{
    m_reader = std::make_unique<ReaderFolder>();
    QVERIFY(m_reader->writeStatus(QStringLiteral("idle"), QStringLiteral("NONE"), QStringLiteral("done")));
    CommandFileWriter::create(m_reader->drive());
    StatusFileParser::create(m_reader->drive());
    PatientSession::create(nullptr)->setExchangeFilePath(QStringLiteral("before"));
    m_control = std::make_unique<ReadoutPumpControl>();

    QStringList& lines = m_host.journal.lines;
    const ReadoutPumpControl* control = m_control.get();
    connect(control, &ReadoutPumpControl::searchingFinished, this,
            [&lines](CommandStatus status) { lines.append(QStringLiteral("searchingFinished %1").arg(int(status))); });
    connect(control, &ReadoutPumpControl::readoutSucceeded, this, [&lines] { lines.append("readoutSucceeded"); });
    connect(control, &ReadoutPumpControl::readoutFinished, this,
            [&lines](CommandStatus status) { lines.append(QStringLiteral("readoutFinished %1").arg(int(status))); });
    connect(control, &ReadoutPumpControl::readoutProgress, this, [&lines](const QString& serial, int percentage) {
        lines.append(QStringLiteral("progress '%1' %2").arg(serial).arg(percentage));
    });
    m_host.journal.clear();
}

void ReadoutPumpControlTest::cleanup()
{
    m_control.reset();
    delete StatusFileParser::instance();
    delete CommandFileWriter::instance();
}

void ReadoutPumpControlTest::endRun(bool success, CommandStatus status, int error)
{
    StatusFileParser* parser = StatusFileParser::instance();
    parser->m_lastStatus = {QStringLiteral("h"), QStringLiteral("X"), status, {}, error};
    Q_EMIT parser->finished(success);
    const int before = m_host.journal.lines.size();
    QCoreApplication::sendPostedEvents(m_control.get());
    QVERIFY(m_host.journal.lines.size() > before);
}

/// The journal without the lines of the reader's own classes.
QStringList ReadoutPumpControlTest::journal() const
{
    QStringList own = m_host.journal.lines;
    own.erase(std::remove_if(own.begin(), own.end(),
                             [](const QString& line) {
                                 return line.startsWith("mcp|") && !line.contains("[Read Controller]") &&
                                        !line.contains("Number of pumps");
                             }),
              own.end());
    return own;
}

void ReadoutPumpControlTest::endOfReadout_data()
{
    QTest::addColumn<bool>("success");
    QTest::addColumn<int>("status");
    QTest::addColumn<int>("error");
    QTest::addColumn<QStringList>("files"); // a name that ends in "/" is a folder
    QTest::addColumn<QString>("found");     // the one that counts
    QTest::addColumn<QStringList>("expected");

    const QString full = QStringLiteral("progress 'PU12' 100");
    const QString notExecuted = QStringLiteral("readoutFinished 4");
    const QStringList none;
    const auto lookUp = [&](const QString& reason) {
        return QStringList{full, LookUpError.arg(reason), notExecuted};
    };
    const auto success = [&](int status) {
        return QStringList{full,
                           QStringLiteral("mcp|==> [Read Controller] Readout succeeded: status='%1'.||@").arg(status),
                           QStringLiteral("readoutSucceeded")};
    };
    const QStringList canceled{"err|=!= [Read Controller] Readout canceled: error='7'.||", "readoutFinished 3"};

    QTest::newRow("one file") << true << 2 << 0 << QStringList{"I1.xml", "J1.xml", "I1.txt"} << "I1.xml" << success(2);
    QTest::newRow("other letter case") << true << 2 << 0 << QStringList{"i1.XML"} << "i1.XML" << success(2);
    QTest::newRow("a folder counts") << true << 2 << 0 << QStringList{"Ix.xml/"} << "Ix.xml" << success(2);
    QTest::newRow("status not known") << true << 4 << 0 << QStringList{"I1.xml"} << "I1.xml" << success(4);
    QTest::newRow("no file") << true << 2 << 0 << none << "" << lookUp("missing exchange file");
    QTest::newRow("two files") << true << 2 << 0 << QStringList{"I1.xml", "I2.xml"} << ""
                               << lookUp("To many (=2) exchange files found");
    QTest::newRow("file and folder") << true << 2 << 0 << QStringList{"I1.xml", "i2.xml/", "I3.xml"} << ""
                                     << lookUp("To many (=3) exchange files found");
    QTest::newRow("canceled") << true << 3 << 7 << QStringList{"I1.xml"} << "" << canceled;
    QTest::newRow("canceled and not executed") << false << 3 << 7 << QStringList{"I1.xml"} << "" << canceled;
    QTest::newRow("not executed") << false << 1 << 31 << QStringList{"I1.xml"} << ""
                                  << QStringList{"err|=!= [Read Controller] Readout failed.||", notExecuted};
    QTest::newRow("failed") << true << 1 << 32 << QStringList{"I1.xml"} << ""
                            << QStringList{"err|Error message box: code='32'||",
                                           "box|Merivo Connections|<b>Connection lost</b>",
                                           "err|=!= [Read Controller] Readout failed: error='32'.||",
                                           "readoutFinished 1"};
}

void ReadoutPumpControlTest::endOfReadout()
{
    QFETCH(bool, success);
    QFETCH(int, status);
    QFETCH(int, error);
    QFETCH(QStringList, files);
    QFETCH(QString, found);
    QFETCH(QStringList, expected);
    for (const QString& file : qAsConst(files))
        QVERIFY(file.endsWith('/') ? QDir(m_reader->misc()).mkdir(file.chopped(1)) : m_reader->writeFile(file, "<x/>"));
    const QString path = m_reader->misc() + QLatin1Char('/') + found;

    m_control->startReadout(QStringLiteral("PU12"));
    // The first report comes before the serial number is known.
    QCOMPARE(journal(), (QStringList{"progress '' 0", "mcp|<== [Read Controller] Start readout: snr='PU12'.||"}));
    QCOMPARE(m_reader->command(), QByteArray("QD17-C RemoteControl File\nCommand=BTREAD \"PU12\""));
    m_host.journal.clear();

    BoxAnswerer boxes(&m_host.journal.lines);
    endRun(success, CommandStatus(status), error);
    QStringList happened = journal();
    for (QString& line : happened) {
        if (line.startsWith("box|"))
            line = line.section("<br/>", 0, 0);
    }
    QCOMPARE(happened, expected.replaceInStrings("@", path));
    QCOMPARE(PatientSession::instance()->exchangeFilePath(), found.isEmpty() ? QStringLiteral("before") : path);

    // The run is over: what the parser tells from now on is for others.
    m_host.journal.clear();
    Q_EMIT StatusFileParser::instance()->finished(true);
    Q_EMIT StatusFileParser::instance()->progress(50);
    QCoreApplication::sendPostedEvents(m_control.get());
    QCOMPARE(journal(), QStringList());
}

void ReadoutPumpControlTest::endOfSearch_data()
{
    QTest::addColumn<bool>("success");
    QTest::addColumn<int>("status");
    QTest::addColumn<QString>("serialNumber");
    QTest::addColumn<QStringList>("expected");

    const QString canceled = QStringLiteral("err|=!= [Read Controller] Searching canceled: error='140'.||");
    const QString list = QStringLiteral("mcp|==> Number of pumps within device reader DB: 2||@");
    QTest::newRow("canceled") << true << 3 << "PU1" << QStringList{canceled, "searchingFinished 3"};
    QTest::newRow("canceled and not executed") << false << 3 << "PU1" << QStringList{canceled, "searchingFinished 3"};
    QTest::newRow("not executed") << false << 2 << "PU1"
                                  << QStringList{"err|=!= [Read Controller] Searching failed.||",
                                                 "searchingFinished 4"};
    QTest::newRow("failed") << true << 1 << "PU1"
                            << QStringList{"err|=!= [Read Controller] Searching failed: error='140'.||",
                                           "err|Error message box: code='140'||",
                                           "box|Merivo Connections|<b>Connection Error</b><br/>The pump is already "
                                           "paired to a LM2. Remove the LM2 from the pump.",
                                           "searchingFinished 1"};
    for (const auto& [row, serialNumber] : {std::pair{"no such pump", "PU"}, std::pair{"other letter case", "pu1"}})
        QTest::newRow(row) << true << 2 << serialNumber
                           << QStringList{list,
                                          "box|Merivo Connections|The paired device for the patient can't be found.",
                                          QStringLiteral("err|=!= [Read Controller] Searching failed: no paired pump "
                                                         "with snr='%1' for patient found.||")
                                              .arg(serialNumber),
                                          "searchingFinished 2"};
    QTest::newRow("found") << true << 2 << "PU12"
                           << QStringList{list, "mcp|==> [Read Controller] Searching succeeded: status='2'.||",
                                          "progress 'PU12' 0",
                                          "mcp|<== [Read Controller] Start readout: snr='PU12'.||"};
}

void ReadoutPumpControlTest::endOfSearch()
{
    QFETCH(bool, success);
    QFETCH(int, status);
    QFETCH(QString, serialNumber);
    QFETCH(QStringList, expected);
    QVERIFY(m_reader->writeFile("DEVLIST.XML", Devices));

    m_control->startSearching(serialNumber);
    QCOMPARE(journal(),
             QStringList(QStringLiteral("mcp|<== [Read Controller] Start searching: snr='%1'.||").arg(serialNumber)));
    QVERIFY(m_reader->command().endsWith("Command=SEARCH 00100"));
    m_host.journal.clear();

    BoxAnswerer boxes(&m_host.journal.lines);
    endRun(success, CommandStatus(status), 140);
    QCOMPARE(journal(), expected.replaceInStrings("@", m_reader->misc() + "/DEVLIST.XML"));
    for (const BoxAnswerer::Box& box : qAsConst(boxes.seen)) {
        QCOMPARE(box.icon, QMessageBox::Warning);
        QCOMPARE(box.buttons, QMessageBox::Ok);
        QCOMPARE(box.parent, nullptr);
    }
}

void ReadoutPumpControlTest::startsAnewAfterFailure()
{
    m_control->startReadout(QStringLiteral("PU1"));
    endRun(false, CommandStatus::Unknown);
    m_host.journal.clear();

    m_control->startReadout(QStringLiteral("PU2"));
    endRun(false, CommandStatus::Unknown);
    // Once each: no connection of the first attempt is left.
    QCOMPARE(journal(), (QStringList{"progress 'PU1' 0", "mcp|<== [Read Controller] Start readout: snr='PU2'.||",
                                     "err|=!= [Read Controller] Readout failed.||", "readoutFinished 4"}));
}

void ReadoutPumpControlTest::searchThenReadout()
{
    m_reader->answer("SEARCH", {{10, "running"}, {200, "done"}});
    m_reader->answer("BTREAD", {{10, "running"}, {700, "done"}});
    m_reader->beforeLastAnswer = [this](const QString& word) {
        if (word == "SEARCH")
            m_reader->writeFile("DEVLIST.XML", Devices);
        else
            m_reader->writeFile("I20260101.xml", "<data/>");
    };
    m_control->startSearching(QStringLiteral("PU1"));
    QTRY_VERIFY_WITH_TIMEOUT(m_host.journal.contains("readoutSucceeded"), 10000);

    QCOMPARE(m_reader->commandsSeen, (QStringList{"SEARCH 00100", "BTREAD \"PU1\""}));
    QCOMPARE(m_host.journal.startingWith("mcp|=== Observer polling started"),
             (QStringList{"mcp|=== Observer polling started with timeout of '20'secs.||",
                          "mcp|=== Observer polling started with timeouts of '20' (Start) and '440' (Stop) secs.||"}));
    const QStringList reports = m_host.journal.startingWith("progress 'PU1'");
    QVERIFY(reports.size() > 3); // the opening one, the poll's own and the last
    QCOMPARE(reports.last(), QStringLiteral("progress 'PU1' 100"));
    QCOMPARE(PatientSession::instance()->exchangeFilePath(), m_reader->misc() + "/I20260101.xml");
    QCOMPARE(m_host.journal.lines.filter("err|"), QStringList());
}

QTEST_MAIN(ReadoutPumpControlTest)

#include "ReadoutPumpControlTest.moc"
