// SPDX-FileCopyrightText: 2026 The Merivo Connections developers
// SPDX-License-Identifier: MIT
#include "dialogs/DialogRun.h"
#include "plugin/session/PatientSession.h"

namespace {

using Run = DialogRun;

/// Opens the dialog from the main one, and performs the steps in it.
QStringList performInMain(Run& run, Run::Kind kind, const Run::Steps& steps)
{
    run.readerEnds(CommandStatus::Done, kind == Run::Add ? "" : "PU1234");
    return run.click(kind == Run::Add ? "Add pump" : kind == Run::Read ? "Read pump" : "Remove pump", steps);
}

} // namespace

/// What ends the work of the pump dialogs before its time, each also within the main dialog.
class TestDialogEnds final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void failureClosesTheDialog_data()
    {
        QTest::addColumn<Run::Kind>("kind");
        QTest::addColumn<Run::Steps>("steps");
        QTest::addColumn<bool>("isExecuted");
        QTest::addColumn<CommandStatus>("status");
        QTest::addColumn<QStringList>("expected");
        const auto rows = [](Run::Kind kind, const Run::Steps& steps, const QString& record, const QString& detail,
                             const QVector<CommandStatus>& ends, const QStringList& before = {},
                             const QStringList& after = {}) {
            const QString start = "err|=!= " + record;
            QTest::addRow("%s not executed", qPrintable(record))
                << kind << steps << false << CommandStatus::Done << QStringList{start + '.', "rejected"};
            for (const CommandStatus status : ends) {
                const QStringList box = status == CommandStatus::Failed ? before + ConnectionLost : QStringList();
                const QString line = start + ": " + QString(detail).replace("%1", QString::number(int(status)));
                QTest::addRow("%s, status %d", qPrintable(record), int(status))
                    << kind << steps << true << status << box + QStringList(line) + after + QStringList("rejected");
            }
        };
        const QVector<CommandStatus> failed{CommandStatus::Failed};
        const QVector<CommandStatus> others{CommandStatus::Canceled, CommandStatus::Unknown};
        const QString status = "status='%1'.";
        const QStringList noPump{"pump none"};
        rows(Run::Add, &Run::startSearch, "[Add Controller] Pairing search failed", status, failed);
        rows(Run::Add, &Run::assign, "[Add Controller] Pairing process start failed", status, failed + others, {},
             noPump);
        // The session has no pump while the message box is open, nor the one that was set meanwhile afterwards.
        rows(Run::Add, &Run::confirmCode, "[Add Controller] Pairing confirm failed", status, failed, noPump, noPump);
        rows(Run::Add, &Run::confirmCode, "[Add Controller] Pairing confirm failed", status, others, {}, noPump);
        rows(Run::Add, &Run::reassign, "[Add Controller] Reassign failed", status, failed, {}, noPump);
        rows(Run::Add, &Run::reassign, "[Add Controller] Reassign failed", status, others);
        rows(Run::Remove, &Run::startRemoving, "[Remove Controller] Removing failed", "error='32'.", failed + others);
        rows(Run::Add, &Run::decline, "[Add Controller] Pairing decline failed", {}, {});
        for (const auto end : {CommandStatus::Done, CommandStatus::Failed}) {
            const QString finished = "mcp|==> [Add Controller] Pairing decline finished: " + status.arg(int(end));
            QTest::addRow("&Run::decline, status %d", int(end))
                << Run::Add << Run::Steps(&Run::decline) << true << end << QStringList{finished, "rejected"};
        }
    }
    void failureClosesTheDialog()
    {
        QFETCH(Run::Kind, kind);
        QFETCH(Run::Steps, steps);
        QFETCH(bool, isExecuted);
        QFETCH(CommandStatus, status);
        QFETCH(QStringList, expected);
        Run run(kind);
        steps(run);
        if (expected.contains(ConnectionLost.last()))
            run.duringNextBox([&run] { run.setPump("LATE"); });
        COMPARE_EVENTS(isExecuted ? run.readerEnds(status, {}, 32) : run.readerDoesNotExecute(status), expected);
        COMPARE_EVENTS(run.report(50) + run.readerEnds(CommandStatus::Done), QStringList()); // nobody waits any more
    }

    void silenceClosesTheDialog_data()
    {
        QTest::addColumn<Run::Kind>("kind");
        QTest::addColumn<Run::Steps>("steps");
        QTest::newRow("list shown") << Run::Add << Run::Steps(&Run::showList);
        QTest::newRow("code shown") << Run::Add << Run::Steps(&Run::receiveCode);
        QTest::newRow("confirmed") << Run::Add << Run::Steps(&Run::confirmCode);
        QTest::newRow("reassign page") << Run::Add << Run::Steps(&Run::openReassignPage);
        QTest::newRow("removing") << Run::Remove << Run::Steps(&Run::startRemoving);
        QTest::newRow("reading") << Run::Read << Run::Steps(&Run::startReading);
    }
    void silenceClosesTheDialog()
    {
        QFETCH(Run::Kind, kind);
        QFETCH(Run::Steps, steps);
        Run run(kind);
        steps(run);
        COMPARE_EVENTS(run.readerStaysSilent(), {ReaderSilentBox, "critical", "rejected"});

        Run main(Run::Main); // closes with the read dialog only
        const QStringList closed(kind == Run::Read ? QStringList("rejected") : QStringList());
        QStringList inDialog;
        const QStringList inMain = performInMain(main, kind, [&](Run& opened) {
            steps(opened);
            return inDialog = opened.readerStaysSilent();
        });
        COMPARE_EVENTS(inDialog + inMain, QStringList(ReaderSilentBox) + closed);
    }

    void endOfTheDiaryClosesTheDialog_data()
    {
        QTest::addColumn<Run::Kind>("kind");
        QTest::addColumn<Run::Steps>("steps");
        QTest::addColumn<bool>("isInQuestion"); // while the question is shown that the button brings
        QTest::addColumn<QString>("button");
        QTest::addColumn<int>("timer");
        QTest::addColumn<QStringList>("expected");
        const auto row = [](const char* name, Run::Kind kind, const Run::Steps& steps, const char* button, int timer,
                            const QStringList& expected = {}, bool isInQuestion = false) {
            QTest::newRow(name) << kind << steps << isInQuestion << button << timer
                                << expected + QStringList("rejected");
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
        row("assign", Run::Add, &Run::showList, "Assign", 0);
        row("confirm", Run::Add, &Run::receiveCode, "Confirm", 0, declined); // not for another patient
        row("decline", Run::Add, &Run::receiveCode, "Decline", 0, declined);
        row("confirmed", Run::Add, &Run::confirmCode, "OK", 0, confirmed);
        row("reassign", Run::Add, &Run::openReassignPage, "OK", 0);
        row("question of reassign", Run::Add, &Run::openReassignPage, "OK", 0, question, true);
        row("reassigned", Run::Add, &Run::reassign, "", 0, reassigned);
        row("remove", Run::Remove, &Run::takeEvents, "Remove", 0);
        row("question of remove", Run::Remove, &Run::takeEvents, "Remove", 0, {RemoveBox}, true);
        row("removed", Run::Remove, &Run::startRemoving, "", 0, removed);
        row("start of the read-out", Run::Read, &Run::takeEvents, "", 2600);
        row("end of the read-out", Run::Read, &Run::startReading, "", 2000, saved);
    }
    void endOfTheDiaryClosesTheDialog()
    {
        QFETCH(Run::Kind, kind);
        QFETCH(Run::Steps, steps);
        QFETCH(bool, isInQuestion);
        QFETCH(QString, button);
        QFETCH(int, timer);
        QFETCH(QStringList, expected);
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
        for (const auto diaryEnd : {Run::OtherDiary, Run::DiaryClosed, Run::DiaryReopened}) {
            Run run(kind);
            run.diaryEnd = diaryEnd;
            COMPARE_EVENTS(perform(run), expected);
            Run main(Run::Main);
            main.diaryEnd = diaryEnd;
            const QStringList events = performInMain(main, kind, perform);
            COMPARE_EVENTS(events.mid(events.size() - 3), DiaryEnded);
            const PatientSession* session = PatientSession::instance(); // of another diary
            QCOMPARE(session->pumpSerialNumber() + session->exchangeFilePath(), QString());
        }
    }
};

QTEST_MAIN(TestDialogEnds)

#include "tst_dialog_ends.moc"
