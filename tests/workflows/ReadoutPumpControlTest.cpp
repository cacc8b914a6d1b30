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
#include <QRegularExpression>
#include <QTest>

namespace {

const QByteArray Devices = "<DEVICELIST><DEVICE><SERIALNR>PU1</SERIALNR></DEVICE>"
                           "<DEVICE><SERIALNR>PU12</SERIALNR></DEVICE></DEVICELIST>";
const QByteArray OtherDevices = "<DEVICELIST><DEVICE><SERIALNR>PU1</SERIALNR></DEVICE>"
                                "<DEVICE><SERIALNR>PU123</SERIALNR></DEVICE>"
                                "<DEVICE><SERIALNR>pu12</SERIALNR></DEVICE></DEVICELIST>";

} // namespace

/// What happens stands in the host's journal: log lines, boxes and signals in their order.
class ReadoutPumpControlTest final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { Logger::instance(nullptr, &m_host.services); }
    void endsEachWay_data();
    void endsEachWay();
    void searchThenReadout();

private:
    void prepare(const ReaderFolder& reader, const ReadoutPumpControl& control);
    RecordingHost m_host;
};

void ReadoutPumpControlTest::prepare(const ReaderFolder& reader, const ReadoutPumpControl& control)
{
    QVERIFY(reader.writeStatus("idle", "NONE", "done") && reader.writeFile("DEVLIST.XML", Devices));
    CommandFileWriter::create(reader.drive());
    StatusFileParser::create(reader.drive());
    PatientSession::create(nullptr)->setExchangeFilePath("before");
    QStringList& lines = m_host.journal.lines;
    const auto note = [&lines](const char* name) {
        return [&lines, name](auto s) {
            lines << QString(name).arg(int(s));
        };
    };
    connect(&control, &ReadoutPumpControl::searchingFinished, this, note("searching %1"));
    connect(&control, &ReadoutPumpControl::readoutFinished, this, note("readout %1"));
    connect(&control, &ReadoutPumpControl::readoutSucceeded, this, [&lines] { lines << "succeeded"; });
    connect(&control, &ReadoutPumpControl::readoutProgress, this, [&lines](const QString& serial, int percentage) {
        lines << QString("'%1' %2").arg(serial).arg(percentage);
    });
    m_host.journal.clear();
}

void ReadoutPumpControlTest::endsEachWay_data()
{
    QTest::addColumn<QString>("run");      // R readout or S search, + executed or - not, the status
    QTest::addColumn<QString>("files");    // a name that ends in "/" is a folder
    QTest::addColumn<QString>("found");    // the one that counts
    QTest::addColumn<QString>("expected"); // a line each; [R] stands for the controller's tag
    const auto row = [](const char* name, const char* run, const char* files, const char* found, const char* expected) {
        QTest::newRow(name) << run << files << found << expected;
    };
    const char* success = "'PU12' 100\nmcp|==> [R] Readout succeeded: status='2'.||@\nsucceeded";
    const char* tooMany = "'PU12' 100\nerr|=!= [R] Readout failed: To many (=2) exchange files found.||\nreadout 4";
    const char* canceled = "err|=!= [R] Readout canceled: error='32'.||\nreadout 3";
    const char* lost = "<b>Connection lost</b><br/>Maybe the battery is weak, or the pump is too far away. Please move "
                       "it closer and try again to connect.";
    row("one file", "R+2", "I1.xml J1.xml I1.txt", "I1.xml", success);
    row("other letter case", "R+2", "i1.XML", "i1.XML", success);
    row("a folder counts", "R+2", "Ix.xml/", "Ix.xml", success);
    row("no file", "R+2", "J.xml", "", "'PU12' 100\nerr|=!= [R] Readout failed: missing exchange file.||\nreadout 4");
    row("two files", "R+2", "I1.xml I2.xml", "", tooMany);
    row("file and folder", "R+2", "I1.xml i2.xml/", "", tooMany);
    row("canceled", "R+3", "I1.xml", "", canceled);
    row("canceled and not executed", "R-3", "I1.xml", "", canceled);
    row("not executed", "R-1", "I1.xml", "", "err|=!= [R] Readout failed.||\nreadout 4");
    const QString failed = "err|Error message box: code='32'||\nbox|Merivo Connections|%1\nerr|=!= [R] Readout failed: "
                           "error='32'.||\nreadout 1";
    row("failed", "R+1", "I1.xml", "", qPrintable(failed.arg(lost)));

    const char* searchCanceled = "err|=!= [R] Searching canceled: error='32'.||\nsearching 3";
    row("search canceled", "S+3", "", "", searchCanceled);
    row("search canceled and not executed", "S-3", "", "", searchCanceled);
    row("search not executed", "S-2", "", "", "err|=!= [R] Searching failed.||\nsearching 4");
    // Log line and box the other way round than in a read-out.
    const QString searchFailed = "err|=!= [R] Searching failed: error='32'.||\nerr|Error message box: code='32'||\nbox|"
                                 "Merivo Connections|%1\nsearching 1";
    row("search failed", "S+1", "", "", qPrintable(searchFailed.arg(lost)));
    row("pump found", "S+2", "", "",
        "mcp|==> [R] Searching succeeded: status='2'.||\n'PU12' 0\nmcp|<== [R] Start readout: snr='PU12'.||");
    row("pump not found", "S+2", "DEVLIST.XML", "",
        "box|Merivo Connections|The paired device for the patient can't be found.\nerr|=!= [R] Searching failed: no "
        "paired pump with snr='PU12' for patient found.||\nsearching 2");
}

void ReadoutPumpControlTest::endsEachWay()
{
    QFETCH(QString, run);
    QFETCH(QString, files);
    QFETCH(QString, found);
    QFETCH(QString, expected);
    ReaderFolder reader;
    ReadoutPumpControl control;
    prepare(reader, control);
    for (const QString& file : files.split(' ', Qt::SkipEmptyParts))
        QVERIFY(file.endsWith('/') ? QDir(reader.misc()).mkdir(file.chopped(1)) : reader.writeFile(file, OtherDevices));
    const QString path = found.isEmpty() ? "before" : reader.misc() + '/' + found;
    StatusFileParser* parser = StatusFileParser::instance();
    const auto endRun = [&] {
        m_host.journal.clear();
        parser->m_lastStatus = {"h", "X", CommandStatus(run.mid(2).toInt()), {}, 32};
        Q_EMIT parser->finished(run[1] == '+');
        QCoreApplication::sendPostedEvents(&control);
        return m_host.journal.lines.filter(QRegularExpression("^(?!mcp)|\\[Read Controller\\]")).join('\n');
    };

    BoxAnswerer boxes(&m_host.journal.lines);
    run.startsWith('R') ? control.startReadout("PU12") : control.startSearching("PU12");
    if (run.startsWith('R')) // the first report comes before the serial number is known
        QCOMPARE(m_host.journal.lines.mid(0, 2),
                 (QStringList{"'' 0", "mcp|<== [Read Controller] Start readout: snr='PU12'.||"}));
    QVERIFY(reader.command().endsWith(run.startsWith('R') ? "BTREAD \"PU12\"" : "SEARCH 00100"));
    QCOMPARE(endRun(), expected.replace("[R]", "[Read Controller]").replace('@', path));
    QCOMPARE(PatientSession::instance()->exchangeFilePath(), path);
    for (const BoxAnswerer::Box& box : qAsConst(boxes.seen))
        QVERIFY(box.icon == QMessageBox::Warning && box.buttons == QMessageBox::Ok && !box.parent);
    if (!expected.contains("Start readout")) { // nothing of the ended run is left
        Q_EMIT parser->progress(50);
        QCOMPARE(endRun(), QString());
    }
    delete parser;
    delete CommandFileWriter::instance();
}

void ReadoutPumpControlTest::searchThenReadout()
{
    ReaderFolder reader;
    ReadoutPumpControl control;
    prepare(reader, control);
    reader.answer("SEARCH", {{10, "running"}, {200, "done"}});
    reader.answer("BTREAD", {{10, "running"}, {700, "done"}});
    reader.beforeLastAnswer = [&reader](const QString&) {
        reader.writeFile("I1.xml", "<data/>");
    };
    control.startSearching("PU1");
    QTRY_VERIFY_WITH_TIMEOUT(m_host.journal.contains("succeeded"), 10000);

    QCOMPARE(reader.commandsSeen, (QStringList{"SEARCH 00100", "BTREAD \"PU1\""}));
    QCOMPARE(m_host.journal.startingWith("mcp|=== Observer polling started").join(';'),
             QString("mcp|=== Observer polling started with timeout of '20'secs.||;mcp|=== Observer polling started "
                     "with timeouts of '20' (Start) and '440' (Stop) secs.||"));
    QVERIFY(m_host.journal.startingWith("'PU1' ").size() > 3); // the polls' own reports too
    QCOMPARE(PatientSession::instance()->exchangeFilePath(), reader.misc() + "/I1.xml");
    QCOMPARE(m_host.journal.lines.filter("err|"), QStringList());
    delete StatusFileParser::instance();
    delete CommandFileWriter::instance();
}

QTEST_MAIN(ReadoutPumpControlTest)

#include "ReadoutPumpControlTest.moc"
