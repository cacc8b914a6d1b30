// SPDX-FileCopyrightText: 2026 The Merivo Connections developers
// SPDX-License-Identifier: MIT
#include "base/PatientSession.h"
#include "dialogs/DevicesTable.h"
#include "dialogs/DialogRun.h"
#include "workflows/AddPumpControl.h"
#include "workflows/ReadoutPumpControl.h"
#include "workflows/RemovePumpControl.h"

#include <QDir>
#include <QLabel>
#include <QSignalSpy>
#include <QTimer>

namespace {

using Run = DialogRun;

const QString Ready = "page 0, idle, Search, Cancel";
const QStringList Stopped{"mcp|=== Observer canceling.", "command ABORT"};

QStringList stopSearch(Run& run)
{
    run.startSearch();
    run.report(5);
    run.setPolling(StatusFileParser::Started);
    return run.click("Stop");
}

/// Opens the dialog from the main one, and performs the steps in it.
QStringList performInMain(Run& run, Run::Kind kind, const Run::Steps& steps)
{
    run.readerEnds(CommandStatus::Done, kind == Run::Add ? "" : "PU1234");
    return run.click(kind == Run::Add ? "Add pump" : kind == Run::Read ? "Read pump" : "Remove pump", steps);
}

} // namespace

/// The dialogs that add, read and remove a pump, each by itself and within the main dialog, and their workflows.
class TestPumpDialogs final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void searchCanBeStoppedOnceTheReaderReports()
    {
        Run run(Run::Add);
        QCOMPARE(run.shown(), Ready);
        COMPARE_EVENTS(run.startSearch(),
                       {"mcp|<== [Add Controller] Start pairing search.", "command SEARCH 00100", "poll 120 0 500"});
        run.press(Qt::Key_Escape);
        run.report(0);
        QCOMPARE(run.shown(), QString("page 0, busy, (Search), (Cancel)"));
        COMPARE_EVENTS(run.report(1), QStringList()); // queued
        QCOMPARE(run.shown(), QString("page 0, busy, Stop, (Cancel)"));
        run.report(100);
        QCOMPARE(run.shown(), QString("page 0, busy, (Stop), (Cancel)"));
        COMPARE_EVENTS(run.readerEnds(CommandStatus::Unknown), QStringList()); // undecided
    }

    void stopWaitsForTheReader()
    {
        Run run(Run::Add);
        COMPARE_EVENTS(stopSearch(run), Stopped);
        run.press(Qt::Key_Escape);
        run.report(9);
        COMPARE_EVENTS(run.readerEnds(CommandStatus::Canceled),
                       {"mcp|=!= [Add Controller] Pairing search stopped: status='3'."});
        QCOMPARE(run.shown(), QString("page 0, busy, (Stop), (Cancel)"));
        COMPARE_EVENTS(run.fireTimer(3000), {"poll 20 10 5"});
        run.readerEnds(CommandStatus::Done);
        QCOMPARE(run.shown(), Ready);
        COMPARE_EVENTS(stopSearch(run), Stopped); // as the first time
        run.readerEnds(CommandStatus::Canceled);
        run.fireTimer(3000);
        COMPARE_EVENTS(run.readerDoesNotExecute(), {ReaderSilentBox});
        QCOMPARE(run.shown(), Ready);
        COMPARE_EVENTS(run.click("Search"), Stopped); // the search is still under way
        QCOMPARE(run.shown(), QString("page 0, idle, (Search), (Cancel)"));
        Run late(Run::Add); // the list is shown before the reader stops
        stopSearch(late);
        late.listPumps({"S1"});
        late.readerEnds(CommandStatus::Done);
        late.fireTimer(3000);
        COMPARE_EVENTS(late.readerEnds(CommandStatus::Done), {"rejected"});
    }

    void pumpOfADeletedPatientBecomesFree()
    {
        Run run(Run::Add);
        COMPARE_EVENTS(run.findPumps({"S1=%2", "S2=0", "S3=P1", "S4=p1", "S5=p&x;"}),
                       {"databaseGuid('/data/open.db')", "patients('" + Run::host.database.guid + "')",
                        "mcp|=== [Add Controller] Original devices list: count='5'.", "command BTDELETEADDR  \"S4\"",
                        "mcp|=== [Add Controller] Deprecated pairing info (puid='p1', snr='S4') removed.",
                        "command BTDELETEADDR  \"S1\"",
                        "mcp|=== [Add Controller] Deprecated pairing info (puid='%2', snr='S1') removed.",
                        "mcp|=== [Add Controller] Cleared devices list: count='5'.",
                        "mcp|==> [Add Controller] Pairing search succeeded: status='2'."});
        QCOMPARE(run.shown(), QString("page 1, row -1, (Assign), Cancel"));
        for (const int row : {0, 1, 2, 3, 4}) {
            run.selectRow(row);
            const QString button = row == 4 ? "Reassign" : "Assign"; // the patient of the last pump can't be read
            QCOMPARE(run.shown(), QString("page 1, row %1, %2, Cancel").arg(row).arg(button));
        }
    }

    void pumpIsChosenByKeysOrBecauseItIsTheOnlyOne()
    {
        Run run(Run::Add);
        run.findPumps({"S1", "S2", "S3", "S4=P9"});
        for (int row = 0; row < 4; ++row)
            QTest::keyClick(run.dialog->findChild<DevicesTable*>(), Qt::Key_Down);
        QCOMPARE(run.shown(), QString("page 1, row 3, Reassign, Cancel"));
        run.click("Reassign");
        COMPARE_EVENTS(run.click("OK"), {box("No device selected."), "rejected"}); // the fourth row counts as none
        Run single(Run::Add);
        single.findPumps({"S1"});
        QCOMPARE(single.shown(), QString("page 1, row 0, Assign, Cancel"));
    }

    void confirmedPumpIsAssignedBeforeOk()
    {
        Run run(Run::Add);
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
        Run run(Run::Add);
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

    void onlyTheReadDialogReportsATimeoutOfTheReadOut()
    {
        Run main(Run::Main);
        QStringList silent;
        const QStringList inMain = performInMain(main, Run::Add, [&](Run& opened) {
            opened.reassign();
            QTimer::singleShot(50, qApp, [&] { silent = opened.readerStaysSilent(); });
            return opened.readerEnds(CommandStatus::Done);
        });
        QCOMPARE((silent + inMain).count(ReaderSilentBox), 1);
    }

    void cancelAndEscapeCloseTheDialog()
    {
        for (const auto kind : {Run::Add, Run::Read, Run::Remove}) {
            COMPARE_EVENTS(Run(kind).click("Cancel"), {"rejected"});
            COMPARE_EVENTS(Run(kind).press(Qt::Key_Escape), {"rejected"});
        }
    }

    void readOutBeginsByItselfAndShowsItsResult()
    {
        Run run(Run::Read);
        for (const char* file : {"i1.XML", "J1.xml", "I1.txt"})
            QVERIFY(run.reader.writeFile(file, "<data/>"));
        QCOMPARE(run.shown(), QString("idle, Looking for pump PU1234, , 0%, Cancel"));
        COMPARE_EVENTS(run.fireTimer(2600), {"mcp|<== [Read Controller] Start readout: snr='PU1234'.",
                                             "command BTREAD \"PU1234\"", "poll 440 20 500"});
        QCOMPARE(run.shown(), QString("busy, Read out device pump , Read out running ..., 0%, (Cancel)"));
        COMPARE_EVENTS(run.report(42), QStringList());
        run.press(Qt::Key_Escape);
        run.closeWindow();
        run.click("Cancel");
        QCOMPARE(run.shown(), QString("busy, Read out device pump PU1234, Read out running ..., 42%, (Cancel)"));
        COMPARE_EVENTS(run.readerEnds(CommandStatus::Done),
                       {"file i1.XML", "mcp|==> [Read Controller] Readout succeeded: status='2'.||i1.XML"});
        run.press(Qt::Key_Escape);
        QCOMPARE(run.shown(),
                 QString("m_ResultLabel, Read out device pump PU1234, Read out completed!, 100%, (Cancel)"));
        QCOMPARE(run.dialog->findChild<QLabel*>("m_ResultLabel")->accessibleName(), QString("Read out completed!"));
        COMPARE_EVENTS(run.fireTimer(2000), {"data", "accepted"});
    }

    void failedReadOutCanBeRepeatedOrLeft()
    {
        const auto check = [](const QStringList& files, bool isExecuted, CommandStatus status, const QString& reason,
                              const QStringList& box = {}) {
            Run run(Run::Read);
            for (const QString& file : files)
                QVERIFY(run.reader.writeFile(file, "<data/>"));
            run.fireTimer(2600);
            run.report(9);
            COMPARE_EVENTS(isExecuted ? run.readerEnds(status, {}, 32) : run.readerDoesNotExecute(status),
                           box + QStringList("err|=!= [Read Controller] " + reason));
            run.report(50);
            COMPARE_EVENTS(run.readerEnds(CommandStatus::Failed), QStringList()); // no command is pending
            QCOMPARE(run.shown(), QString("idle, Read out device pump PU1234, Read out failed!, %1%, Read pump, Cancel")
                                      .arg(status == CommandStatus::Done ? 100 : 9));
            run.click("Read pump");
            run.click("Cancel");
            QCOMPARE(run.shown(),
                     QString("busy, Read out device pump PU1234, Read out running ..., 0%, (Read pump), (Cancel)"));
            run.readerEnds(CommandStatus::Canceled);
            COMPARE_EVENTS(run.click("Cancel"), {"rejected"});
        };
        check({"J.xml"}, true, CommandStatus::Done, "Readout failed: missing exchange file.");
        check({"I1.xml", "i2.XML"}, true, CommandStatus::Done, "Readout failed: To many (=2) exchange files found.");
        check({}, true, CommandStatus::Canceled, "Readout canceled: error='32'.");
        check({}, false, CommandStatus::Canceled, "Readout canceled: error='0'.");
        check({}, false, CommandStatus::Failed, "Readout failed.");
        check({}, true, CommandStatus::Failed, "Readout failed: error='32'.", ConnectionLost);
    }

    void buttonsThatTheDialogsDoNotHave()
    {
        const QString discard = box("<b>NOTE:</b><br/><i>The data recently read from the <b>Sanvio Merivo</b> pump "
                                    "<b>PU1234</b> will be discarded!</i><br/>Do you want to proceed anyway?");
        COMPARE_EVENTS(Run(Run::Add).clickForeignButton(QDialogButtonBox::Help), QStringList());
        COMPARE_EVENTS(Run(Run::Add).clickForeignButton(QDialogButtonBox::Abort), Stopped);
        COMPARE_EVENTS(Run(Run::Remove).clickForeignButton(QDialogButtonBox::Help), {"rejected"});
        COMPARE_EVENTS(Run(Run::Read).clickForeignButton(QDialogButtonBox::Help), {"rejected"});
        COMPARE_EVENTS(Run(Run::Read).clickForeignButton(QDialogButtonBox::Ok), {"data", "accepted"});
        Run run(Run::Read);
        run.setPolling(StatusFileParser::Started);
        run.answerNextBox(QMessageBox::No);
        COMPARE_EVENTS(run.clickForeignButton(QDialogButtonBox::Abort), {discard});
        run.answerNextBox(QMessageBox::Yes);
        COMPARE_EVENTS(run.clickForeignButton(QDialogButtonBox::Abort), {discard, "rejected"});
        Run ended(Run::Read);
        ended.setPolling(StatusFileParser::Ended);
        COMPARE_EVENTS(ended.clickForeignButton(QDialogButtonBox::Abort), {"rejected"});
    }

    void pumpIsRemovedAfterAYes()
    {
        Run run(Run::Remove);
        run.answerNextBox(QMessageBox::No);
        COMPARE_EVENTS(run.click("Remove"), {RemoveBox});
        QCOMPARE(run.shown(), QString("row 0, Remove, Cancel"));
        run.answerNextBox(QMessageBox::Yes);
        COMPARE_EVENTS(run.click("Remove"), {RemoveBox, "mcp|<== [Remove Controller] Start removing: snr='PU1234'.",
                                             "command BTDELETEADDR  \"PU1234\"", "poll 20 0 500"});
        COMPARE_EVENTS(run.press(Qt::Key_Escape), QStringList());
        QCOMPARE(run.shown(), QString("row 0, (Remove), (Cancel)"));
        COMPARE_EVENTS(run.readerEnds(CommandStatus::Done),
                       {"mcp|==> [Remove Controller] Removing succeeded: status='2'.", "accepted"});
    }

    void failureClosesTheDialog()
    {
        const auto check = [](Run::Kind kind, const Run::Steps& steps, const QString& record, const QString& detail,
                              const QVector<CommandStatus>& ends, const QStringList& before = {},
                              const QStringList& after = {}) {
            const QString start = "err|=!= " + record;
            Run notExecuted(kind);
            steps(notExecuted);
            COMPARE_EVENTS(notExecuted.readerDoesNotExecute(CommandStatus::Done), {start + '.', "rejected"});
            COMPARE_EVENTS(notExecuted.report(50) + notExecuted.readerEnds(CommandStatus::Done), {});
            for (const CommandStatus status : ends) {
                Run run(kind);
                steps(run);
                QStringList expected;
                if (status == CommandStatus::Failed) {
                    run.duringNextBox([&run] { run.setPump("LATE"); });
                    expected = before + ConnectionLost;
                }
                expected << start + ": " + QString(detail).replace("%1", QString::number(int(status)));
                COMPARE_EVENTS(run.readerEnds(status, {}, 32), expected + after + QStringList("rejected"));
                COMPARE_EVENTS(run.report(50) + run.readerEnds(CommandStatus::Done), {}); // no command is pending
            }
        };
        const QVector<CommandStatus> failed{CommandStatus::Failed};
        const QVector<CommandStatus> others{CommandStatus::Canceled, CommandStatus::Unknown};
        const QString status = "status='%1'.";
        const QStringList noPump{"pump none"};
        check(Run::Add, &Run::startSearch, "[Add Controller] Pairing search failed", status, failed);
        check(Run::Add, &Run::assign, "[Add Controller] Pairing process start failed", status, failed + others, {},
              noPump);
        // The session has no pump while the message box is open, nor the one that was set meanwhile afterwards.
        check(Run::Add, &Run::confirmCode, "[Add Controller] Pairing confirm failed", status, failed, noPump, noPump);
        check(Run::Add, &Run::confirmCode, "[Add Controller] Pairing confirm failed", status, others, {}, noPump);
        check(Run::Add, &Run::reassign, "[Add Controller] Reassign failed", status, failed, {}, noPump);
        check(Run::Add, &Run::reassign, "[Add Controller] Reassign failed", status, others);
        check(Run::Remove, &Run::startRemoving, "[Remove Controller] Removing failed", "error='32'.", failed + others);
        check(Run::Add, &Run::decline, "[Add Controller] Pairing decline failed", {}, {});
    }

    void timeoutClosesTheDialog()
    {
        const std::pair<Run::Kind, Run::Steps> rows[] = {
            {Run::Add, &Run::receiveCode}, {Run::Remove, &Run::startRemoving}, {Run::Read, &Run::startReading}};
        for (const auto& row : rows) {
            Run run(row.first);
            row.second(run);
            COMPARE_EVENTS(run.readerStaysSilent(), {ReaderSilentBox, "critical", "rejected"});

            Run main(Run::Main); // closes with the read dialog only
            const QStringList closed(row.first == Run::Read ? QStringList("rejected") : QStringList());
            QStringList inDialog;
            const QStringList inMain = performInMain(main, row.first, [&](Run& opened) {
                row.second(opened);
                return inDialog = opened.readerStaysSilent();
            });
            COMPARE_EVENTS(inDialog + inMain, QStringList(ReaderSilentBox) + closed);
        }
    }

    void endOfTheDiaryClosesTheDialog()
    {
        // The name, the steps before the end, the button and the timer after it. If isInQuestion, the diary ends while
        // the question of the button is shown.
        const auto check = [](const QString& name, Run::Kind kind, const Run::Steps& steps, const QString& button,
                              int timer, const QStringList& expected = {}, bool isInQuestion = false) {
            const auto perform = [&](Run& run) {
                steps(run);
                if (isInQuestion) {
                    run.answerNextBox(QMessageBox::Yes);
                    run.duringNextBox([&run] { run.endDiary(); });
                } else {
                    run.endDiary();
                }
                QStringList events = run.readerEnds(CommandStatus::Done);
                if (!button.isEmpty())
                    events += run.click(button);
                if (timer)
                    events += run.fireTimer(timer);
                return events += run.readerEnds(CommandStatus::Done);
            };
            Run run(kind);
            COMPARE_EVENTS(QStringList(name) + perform(run), QStringList(name) + expected + QStringList("rejected"));
            Run main(Run::Main);
            const QStringList events = performInMain(main, kind, perform);
            COMPARE_EVENTS(QStringList(name) + events.mid(events.size() - 3), QStringList(name) + DiaryEnded);
            const PatientSession* session = PatientSession::instance(); // of the other diary
            QCOMPARE(session->pumpSerialNumber() + session->exchangeFilePath(), QString());
        };
        const QStringList declined{"mcp|<== [Add Controller] Start pairing confirm: snr='S1'.",
                                   "command BTPAIRCONFIRM 0", "poll 60 0 500",
                                   "mcp|==> [Add Controller] Pairing decline finished: status='2'."};
        const QStringList reassigned{"pump S2", "mcp|==> [Add Controller] Reassign succeeded: status='2'."};
        const QStringList removed{"mcp|==> [Remove Controller] Removing succeeded: status='2'."};
        const QStringList confirmed{"mcp|==> [Add Controller] Pairing confirm succeeded: status='2'.", "pump S1"};
        const QStringList saved{"file I1.xml", "mcp|==> [Read Controller] Readout succeeded: status='2'.||I1.xml"};
        const QStringList question{"databaseGuid('/data/open.db')", "patients('" + Run::host.database.guid + "')",
                                   ReassignBox};
        check("assign", Run::Add, &Run::showList, "Assign", 0);
        check("confirm", Run::Add, &Run::receiveCode, "Confirm", 0, declined); // not for another patient
        check("decline", Run::Add, &Run::receiveCode, "Decline", 0, declined);
        check("confirmed", Run::Add, &Run::confirmCode, "OK", 0, confirmed);
        check("reassign", Run::Add, &Run::openReassignPage, "OK", 0);
        check("question of reassign", Run::Add, &Run::openReassignPage, "OK", 0, question, true);
        check("reassigned", Run::Add, &Run::reassign, "", 0, reassigned);
        check("remove", Run::Remove, &Run::takeEvents, "Remove", 0);
        check("question of remove", Run::Remove, &Run::takeEvents, "Remove", 0, {RemoveBox}, true);
        check("removed", Run::Remove, &Run::startRemoving, "", 0, removed);
        check("start of the read-out", Run::Read, &Run::takeEvents, "", 2600);
        check("end of the read-out", Run::Read, &Run::startReading, "", 2000, saved);
    }

    // What the dialogs neither use nor show of the workflows, which are children of an idle dialog here.

    void statusIsPassedOn()
    {
        Run run(Run::Remove);
        AddPumpControl add(&Run::host.services, &Run::host.database, run.dialog.get());
        ReadoutPumpControl read(run.dialog.get());
        RemovePumpControl remove(run.dialog.get());
        const auto check = [&run](const QSignalSpy& stopped, const std::function<void()>& begin,
                                  CommandStatus status = CommandStatus::Canceled) {
            begin();
            run.readerEnds(status);
            begin();
            run.readerDoesNotExecute(CommandStatus::Done);
            QCOMPARE(stopped.size(), 2);
            QCOMPARE(stopped.first().first().value<CommandStatus>(), status);
            QCOMPARE(stopped.last().first().value<CommandStatus>(), CommandStatus::Unknown);
        };
        run.listPumps({"S1"});
        add.startPairingSearch();
        run.readerEnds(CommandStatus::Done);
        check(QSignalSpy(&add, &AddPumpControl::pairingProcessStopped), [&] { add.startPairing(0); });
        check(QSignalSpy(&add, &AddPumpControl::pairingConfirmStopped), [&] { add.startPairingConfirm(true); });
        check(QSignalSpy(&add, &AddPumpControl::pairingDeclineFinished), [&] { add.startPairingConfirm(false); });
        check(QSignalSpy(&add, &AddPumpControl::reassignStopped), [&] { add.startReassign(0); });
        check(QSignalSpy(&remove, &RemovePumpControl::removingFinished), [&] { remove.startRemoving(); });
        check(QSignalSpy(&read, &ReadoutPumpControl::readoutFinished), [&] { read.startReadout("PU1"); });
        check(
            QSignalSpy(&add, &AddPumpControl::pairingSearchStopped), [&] { add.startPairingSearch(); },
            CommandStatus::Failed);
    }

    void sessionHasThePumpAtItsAssignment()
    {
        Run run(Run::Remove);
        AddPumpControl add(&Run::host.services, &Run::host.database, run.dialog.get());
        QStringList pumps;
        connect(&add, &AddPumpControl::pumpAssigned, &add,
                [&pumps] { pumps << PatientSession::instance()->pumpSerialNumber(); });
        run.listPumps({"S1", "S2"});
        add.startPairingSearch();
        run.readerEnds(CommandStatus::Done);
        add.startPairing(0);
        run.readerEnds(CommandStatus::Done);
        add.startPairingConfirm(true);
        run.readerEnds(CommandStatus::Done);
        add.startReassign(1);
        run.readerEnds(CommandStatus::Done);
        QCOMPARE(pumps, QStringList({"S1", "S2"}));
    }

    void pairingTakesTheRowsOfItsOwnList()
    {
        Run run(Run::Remove);
        AddPumpControl add(&Run::host.services, &Run::host.database, run.dialog.get());
        QSignalSpy progress(&add, &AddPumpControl::pairingSearchProgress);
        add.startPairing(0); // no list yet
        run.listPumps({"S1"});
        add.startPairingSearch();
        run.readerEnds(CommandStatus::Done);
        for (const int row : {-1, 1}) {
            add.startPairing(row);
            add.startReassign(row);
        }
        COMPARE_EVENTS(run.takeEvents() + run.readerEnds(CommandStatus::Done), QStringList());
        add.startPairing(0);
        run.readerEnds(CommandStatus::Done, "4711");
        QVERIFY(QDir(run.reader.misc()).removeRecursively()); // a command that can't be written is polled for too
        add.startPairingSearch();
        COMPARE_EVENTS(run.takeEvents().filter("poll"), {"poll 120 0 500"});
        QCOMPARE(progress, (QList<QVariantList>{{"", 0}, {"", 100}, {"S1", 0}})); // of the latest pairing
    }

    void onlyAFoundPumpIsRead()
    {
        Run run(Run::Remove);
        ReadoutPumpControl read(run.dialog.get());
        connect(&read, &ReadoutPumpControl::searchingFinished, this,
                [](CommandStatus status) { Run::host.journal.add(QString("finished %1").arg(int(status))); });
        const auto search = [&](bool isExecuted, CommandStatus status) {
            read.startSearching("PU");
            return isExecuted ? run.readerEnds(status, {}, 32) : run.readerDoesNotExecute(status);
        };
        const QString failed = "err|=!= [Read Controller] Searching failed";
        const QString cancelled = "err|=!= [Read Controller] Searching canceled: error='%1'.";
        COMPARE_EVENTS(search(true, CommandStatus::Canceled), {cancelled.arg(32), "finished 3"});
        COMPARE_EVENTS(search(false, CommandStatus::Canceled), {cancelled.arg(0), "finished 3"});
        COMPARE_EVENTS(search(false, CommandStatus::Done), {failed + '.', "finished 4"});
        COMPARE_EVENTS(search(true, CommandStatus::Failed),
                       QStringList(failed + ": error='32'.") + ConnectionLost + QStringList("finished 1"));
        COMPARE_EVENTS(search(true, CommandStatus::Done),
                       {box("The paired device for the patient can't be found."),
                        failed + ": no paired pump with snr='PU' for patient found.", "finished 2"});
        const QSignalSpy succeeded(&read, &ReadoutPumpControl::readoutSucceeded);
        QVERIFY(run.reader.writeFile("I1.xml", "<data/>"));
        run.listPumps({"S1", "PU"});
        read.startSearching("PU");
        COMPARE_EVENTS(run.takeEvents(), {"mcp|<== [Read Controller] Start searching: snr='PU'.",
                                          "command SEARCH 00100", "poll 20 0 500"});
        COMPARE_EVENTS(run.readerEnds(CommandStatus::Done),
                       {"mcp|==> [Read Controller] Searching succeeded: status='2'.",
                        "mcp|<== [Read Controller] Start readout: snr='PU'.", "command BTREAD \"PU\"",
                        "poll 440 20 500"});
        COMPARE_EVENTS(run.readerEnds(CommandStatus::Done),
                       {"file I1.xml", "mcp|==> [Read Controller] Readout succeeded: status='2'.||I1.xml"});
        QCOMPARE(succeeded.size(), 1);
    }
};

QTEST_MAIN(TestPumpDialogs)

#include "tst_pump_dialogs.moc"
