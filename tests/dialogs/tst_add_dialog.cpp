// SPDX-FileCopyrightText: 2026 The Merivo Connections developers
// SPDX-License-Identifier: MIT
#include "dialogs/DialogRun.h"

namespace {

const QString Ready = "page 0, idle, Search, Cancel";
const QStringList Stopped{"mcp|=== Observer canceling.", "command ABORT"};
const QString Succeeded = "mcp|==> [Add Controller] Pairing search succeeded: status='2'.";

QStringList stopSearch(DialogRun& run)
{
    run.startSearch();
    run.report(5);
    run.setPolling(StatusFileParser::Started);
    return run.click("Stop");
}

} // namespace

class TestAddDialog final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void searchCanBeStoppedOnceTheReaderReports()
    {
        DialogRun run(DialogRun::Add);
        QCOMPARE(run.shown(), Ready);
        COMPARE_EVENTS(run.startSearch(),
                       {"mcp|<== [Add Controller] Start pairing search.", "command SEARCH 00100", "poll 120 0 500"});
        run.press(Qt::Key_Escape);
        run.report(0);
        QCOMPARE(run.shown(), QString("page 0, busy, (Search), (Cancel)"));
        run.report(1);
        QCOMPARE(run.shown(), QString("page 0, busy, Stop, (Cancel)"));
        run.report(100);
        QCOMPARE(run.shown(), QString("page 0, busy, (Stop), (Cancel)"));
        COMPARE_EVENTS(run.readerEnds(CommandStatus::Unknown), QStringList()); // undecided
    }

    void stopWaitsForTheReader()
    {
        DialogRun run(DialogRun::Add);
        COMPARE_EVENTS(stopSearch(run), Stopped);
        run.press(Qt::Key_Escape);
        run.report(9);
        COMPARE_EVENTS(run.readerEnds(CommandStatus::Canceled),
                       {"mcp|=!= [Add Controller] Pairing search stopped: status='3'."});
        QCOMPARE(run.shown(), QString("page 0, busy, (Stop), (Cancel)"));
        COMPARE_EVENTS(run.fireTimer(3000), {"poll 20 10 5"});
        run.readerEnds(CommandStatus::Done);
        QCOMPARE(run.shown(), Ready);
        run.startSearch();
        run.report(7);
        QCOMPARE(run.shown(), QString("page 0, busy, Stop, (Cancel)"));
    }

    void stopThatIsNotExecutedIsReported()
    {
        DialogRun run(DialogRun::Add);
        stopSearch(run);
        run.readerEnds(CommandStatus::Canceled);
        run.fireTimer(3000);
        COMPARE_EVENTS(run.readerDoesNotExecute(), {ReaderSilentBox});
        QCOMPARE(run.shown(), Ready);
        COMPARE_EVENTS(run.click("Search"), Stopped); // the search is still under way
        QCOMPARE(run.shown(), QString("page 0, idle, (Search), (Cancel)"));
    }

    void stopAfterTheListClosesTheDialog()
    {
        DialogRun run(DialogRun::Add);
        stopSearch(run);
        run.listPumps({"S1"});
        run.readerEnds(CommandStatus::Done);
        run.fireTimer(3000);
        COMPARE_EVENTS(run.readerEnds(CommandStatus::Done), {"rejected"});
    }

    void pumpOfADeletedPatientBecomesFree()
    {
        DialogRun run(DialogRun::Add);
        COMPARE_EVENTS(run.findPumps({"S1=%2", "S2=0", "S3=P1", "S4=p1", "S5=p&x;"}),
                       {"databaseGuid('/data/open.db')", "patients('" + DialogRun::host.database.guid + "')",
                        "mcp|=== [Add Controller] Original devices list: count='5'.", "command BTDELETEADDR  \"S4\"",
                        "mcp|=== [Add Controller] Deprecated pairing info (puid='p1', snr='S4') removed.",
                        "command BTDELETEADDR  \"S1\"",
                        "mcp|=== [Add Controller] Deprecated pairing info (puid='%2', snr='S1') removed.",
                        "mcp|=== [Add Controller] Cleared devices list: count='5'.", Succeeded});
        QCOMPARE(run.shown(), QString("page 1, row -1, (Assign), Cancel"));
        for (const int row : {0, 1, 2, 3, 4}) {
            run.selectRow(row);
            const QString button = row == 4 ? "Reassign" : "Assign"; // the patient of the last pump can't be read
            QCOMPARE(run.shown(), QString("page 1, row %1, %2, Cancel").arg(row).arg(button));
        }
        COMPARE_EVENTS(run.press(Qt::Key_Escape), {"rejected"});
    }

    void pumpIsChosenByMouseOrKeys()
    {
        DialogRun run(DialogRun::Add);
        run.findPumps({"S1", "S2=P9"});
        run.press(Qt::Key_Down);
        run.press(Qt::Key_Down);
        QCOMPARE(run.shown(), QString("page 1, row 1, Reassign, Cancel"));
        DialogRun single(DialogRun::Add);
        single.findPumps({"S1"});
        QCOMPARE(single.shown(), QString("page 1, row 0, Assign, Cancel"));
        COMPARE_EVENTS(single.click("Cancel"), {"rejected"});
    }

    void fourthRowCountsAsNoneSelected()
    {
        DialogRun run(DialogRun::Add);
        run.findPumps({"S1", "S2", "S3", "S4=P9"});
        run.selectRow(3);
        run.click("Reassign");
        COMPARE_EVENTS(run.click("OK"), {box("No device selected."), "rejected"});
    }

    void confirmedPumpIsAssignedBeforeOk()
    {
        DialogRun run(DialogRun::Add);
        run.findPumps({"S1", "S2", "S3"});
        run.selectRow(2);
        COMPARE_EVENTS(run.click("Assign"), {"mcp|<== [Add Controller] Start pairing process: snr='S3'.",
                                             "command BTPAIR B-S3 \"S3\" P1", "poll 120 0 500"});
        run.press(Qt::Key_Escape);
        QCOMPARE(run.shown(), QString("page 2, busy, (Confirm), (Decline), (Cancel)"));
        COMPARE_EVENTS(run.readerEnds(CommandStatus::Done, "4711"),
                       {"mcp|==> [Add Controller] Pairing process start succeeded: status='2'."});
        run.press(Qt::Key_Escape);
        run.closeWindow();
        QCOMPARE(run.shown(), QString("page 2, 4711, Confirm, Decline, (Cancel)"));
        COMPARE_EVENTS(run.click("Confirm"), {"mcp|<== [Add Controller] Start pairing confirm: snr='S3'.",
                                              "command BTPAIRCONFIRM 1", "poll 60 0 500"});
        run.press(Qt::Key_Escape);
        QCOMPARE(run.shown(), QString("page 3, busy, (OK), (Cancel)"));
        COMPARE_EVENTS(run.readerEnds(CommandStatus::Done),
                       {"mcp|==> [Add Controller] Pairing confirm succeeded: status='2'.", "pump S3"});
        QCOMPARE(run.shown(), QString("page 3, OK, Cancel"));
        COMPARE_EVENTS(run.click("OK"), {"accepted"});
    }

    void pumpIsReassignedAfterAYes()
    {
        DialogRun run(DialogRun::Add);
        run.openReassignPage();
        QCOMPARE(run.shown(), QString("page 4, Prev, OK, Cancel"));
        run.answerNextBox(QMessageBox::No);
        COMPARE_EVENTS(run.click("OK").mid(2), {ReassignBox}); // after the query for the other patient's name
        COMPARE_EVENTS(run.click("OK") + run.press(Qt::Key_Escape), QStringList());
        QCOMPARE(run.shown(), QString("page 4, Prev, (OK), (Cancel)"));
        run.click("Prev");
        QCOMPARE(run.shown(), QString("page 1, row -1, (Reassign), Cancel"));
        run.selectRow(1);
        run.click("Reassign");
        run.answerNextBox(QMessageBox::Yes);
        COMPARE_EVENTS(run.click("OK").mid(2),
                       {ReassignBox, "mcp|<== [Add Controller] Start Reassign process: snr='S2'.",
                        "command BTPUMPREASSIGN \"S2\" P1", "poll 30 0 500"});
        run.press(Qt::Key_Escape);
        QCOMPARE(run.shown(), QString("page 4, (Prev), (OK), (Cancel)"));
        COMPARE_EVENTS(run.readerEnds(CommandStatus::Done),
                       {"pump S2", "mcp|==> [Add Controller] Reassign succeeded: status='2'.", "accepted"});
    }

    void cancelClosesTheDialog()
    {
        DialogRun reassigning(DialogRun::Add);
        reassigning.openReassignPage();
        COMPARE_EVENTS(reassigning.click("Cancel"), {"rejected"});
        COMPARE_EVENTS(DialogRun(DialogRun::Add).press(Qt::Key_Escape), {"rejected"});
        COMPARE_EVENTS(DialogRun(DialogRun::Add).clickForeignButton(QDialogButtonBox::Help), QStringList());
        COMPARE_EVENTS(DialogRun(DialogRun::Add).clickForeignButton(QDialogButtonBox::Abort), Stopped);
    }
};

QTEST_MAIN(TestAddDialog)

#include "tst_add_dialog.moc"
