// SPDX-FileCopyrightText: 2026 The Merivo Connections developers
// SPDX-License-Identifier: MIT
#include "dialogs/DialogRun.h"

#include <QDir>

class TestReadDialog final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void readOutBeginsByItselfAndCannotBeLeft()
    {
        DialogRun run(DialogRun::Read);
        QCOMPARE(run.shown(), QString("idle, Looking for pump PU1234, , 0%, Cancel"));
        COMPARE_EVENTS(run.fireTimer(2600), {"mcp|<== [Read Controller] Start readout: snr='PU1234'.",
                                             "command BTREAD \"PU1234\"", "poll 440 20 500"});
        QCOMPARE(run.shown(), QString("busy, Read out device pump , Read out running ..., 0%, (Cancel)"));
        run.report(42);
        run.press(Qt::Key_Escape);
        run.closeWindow();
        run.click("Cancel");
        QCOMPARE(run.shown(), QString("busy, Read out device pump PU1234, Read out running ..., 42%, (Cancel)"));
        COMPARE_EVENTS(DialogRun(DialogRun::Read).press(Qt::Key_Escape), {"rejected"});
    }

    void failedReadOutCanBeRepeatedOrLeft_data()
    {
        QTest::addColumn<QString>("files"); // a name that ends in "/" is a folder
        QTest::addColumn<bool>("isExecuted");
        QTest::addColumn<CommandStatus>("status");
        QTest::addColumn<QStringList>("expected");
        const auto row = [](const char* name, const char* files, bool isExecuted, CommandStatus status,
                            const QString& reason, const QStringList& box = {}) {
            QTest::newRow(name) << files << isExecuted << status
                                << box + QStringList("err|=!= [Read Controller] " + reason);
        };
        const char* tooMany = "Readout failed: To many (=2) exchange files found.";
        row("no file", "J.xml", true, CommandStatus::Done, "Readout failed: missing exchange file.");
        row("two files", "I1.xml I2.xml", true, CommandStatus::Done, tooMany);
        row("file and folder", "I1.xml i2.xml/", true, CommandStatus::Done, tooMany);
        row("cancelled", "I1.xml", true, CommandStatus::Canceled, "Readout canceled: error='32'.");
        row("cancelled, not executed", "I1.xml", false, CommandStatus::Canceled, "Readout canceled: error='0'.");
        row("not executed", "I1.xml", false, CommandStatus::Failed, "Readout failed.");
        row("failed", "I1.xml", true, CommandStatus::Failed, "Readout failed: error='32'.", ConnectionLost);
    }
    void failedReadOutCanBeRepeatedOrLeft()
    {
        QFETCH(QString, files);
        QFETCH(bool, isExecuted);
        QFETCH(CommandStatus, status);
        QFETCH(QStringList, expected);
        DialogRun run(DialogRun::Read);
        writeFiles(run, files);
        run.fireTimer(2600);
        run.report(9);
        COMPARE_EVENTS(isExecuted ? run.readerEnds(status, {}, 32) : run.readerDoesNotExecute(status), expected);
        run.report(50);
        COMPARE_EVENTS(run.readerEnds(CommandStatus::Failed), QStringList()); // of nothing that was asked for
        QCOMPARE(run.shown(), QString("idle, Read out device pump PU1234, Read out failed!, %1%, Read pump, Cancel")
                                  .arg(status == CommandStatus::Done ? 100 : 9));
        run.click("Read pump");
        run.click("Cancel");
        QCOMPARE(run.shown(),
                 QString("busy, Read out device pump PU1234, Read out running ..., 0%, (Read pump), (Cancel)"));
        run.readerEnds(CommandStatus::Canceled);
        COMPARE_EVENTS(run.click("Cancel"), {"rejected"});
    }

    void resultIsShownBeforeTheDataAreHandedOver_data()
    {
        QTest::addColumn<QString>("files");
        QTest::addColumn<QString>("found");
        QTest::newRow("one exchange file among others") << "I1.xml J1.xml I1.txt"
                                                        << "I1.xml";
        QTest::newRow("upper case") << "i1.XML"
                                    << "i1.XML";
        QTest::newRow("folder") << "Ix.xml/"
                                << "Ix.xml";
    }
    void resultIsShownBeforeTheDataAreHandedOver()
    {
        QFETCH(QString, files);
        QFETCH(QString, found);
        DialogRun run(DialogRun::Read);
        writeFiles(run, files);
        run.fireTimer(2600);
        COMPARE_EVENTS(run.readerEnds(CommandStatus::Done),
                       {"file " + found, "mcp|==> [Read Controller] Readout succeeded: status='2'.||" + found});
        run.press(Qt::Key_Escape);
        QCOMPARE(run.shown(),
                 QString("m_ResultLabel, Read out device pump PU1234, Read out completed!, 100%, (Cancel)"));
        COMPARE_EVENTS(run.fireTimer(2000), {"data", "accepted"});
    }

    void buttonsThatTheDialogDoesNotHave()
    {
        const QString discard = box("<b>NOTE:</b><br/><i>The data recently read from the <b>Sanvio Merivo</b> pump "
                                    "<b>PU1234</b> will be discarded!</i><br/>Do you want to proceed anyway?");
        COMPARE_EVENTS(DialogRun(DialogRun::Read).clickForeignButton(QDialogButtonBox::Ok), {"data", "accepted"});
        COMPARE_EVENTS(DialogRun(DialogRun::Read).clickForeignButton(QDialogButtonBox::Help), {"rejected"});
        DialogRun run(DialogRun::Read);
        run.setPolling(StatusFileParser::Started);
        run.answerNextBox(QMessageBox::No);
        COMPARE_EVENTS(run.clickForeignButton(QDialogButtonBox::Abort), {discard});
        run.answerNextBox(QMessageBox::Yes);
        COMPARE_EVENTS(run.clickForeignButton(QDialogButtonBox::Abort), {discard, "rejected"});
        DialogRun ended(DialogRun::Read);
        ended.setPolling(StatusFileParser::Ended);
        COMPARE_EVENTS(ended.clickForeignButton(QDialogButtonBox::Abort), {"rejected"});
    }

private:
    static void writeFiles(const DialogRun& run, const QString& names)
    {
        for (const QString& name : names.split(' '))
            QVERIFY(name.endsWith('/') ? QDir().mkdir(run.reader.misc() + '/' + name)
                                       : run.reader.writeFile(name, "<data/>"));
    }
};

QTEST_MAIN(TestReadDialog)

#include "tst_read_dialog.moc"
