// SPDX-FileCopyrightText: 2026 The Merivo Connections developers
// SPDX-License-Identifier: MIT
#include "base/PatientSession.h"
#include "dialogs/DialogRun.h"
#include "dialogs/MainDialog.h"

namespace {

const QString NoAnswer = "icon_plus_grey_dark, (Add pump), (Read pump), (Remove pump), (Close)";
const QString NoPump = "icon_plus_grey_dark, No pump assigned, Add pump, (Read pump), (Remove pump), Close";
const QString HasPump = "icon_connected, Pump assigned: S/N '%1'., (Add pump), Read pump, Remove pump, Close";
const QStringList Query{"command BTISPAIRED P1", "poll 20 0 500"};
const QString NotExecuted = "err|=!= %1. Paired pump query for patient 'P1' not executed by device reader.";
const QString QueryFinished = "mcp|=== Paired pump query for patient 'P1' finished: snr='%1'.";
const QString RetryBox = box("<b>Request of patient assigned paired pump failed.</b><br/>Do you want to retry the "
                             "request?");
const QStringList ReaderError{"err|=!= Paired pump query for patient 'P1' failed: <7 : xyz>.",
                              "err|Error message box: code='7'",
                              box("<b>Unknown error code: 7</b><br/>Please contact the support.")};

} // namespace

class TestMainDialog final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void nothingWorksBeforeTheFirstAnswer()
    {
        DialogRun run(DialogRun::Main);
        COMPARE_EVENTS(run.takeEvents(), QStringList("pump none") + Query);
        COMPARE_EVENTS(run.press(Qt::Key_Escape) + run.closeWindow() + run.click("Close"), QStringList());
        QCOMPARE(run.shown(), NoAnswer);
        COMPARE_EVENTS(run.readerStaysSilent(), {ReaderSilentBox, "rejected"});
    }

    void firstAnswerDecidesWhetherThereIsAPump()
    {
        for (const QString result : {"", "0", "AB", "AB1"}) {
            DialogRun run(DialogRun::Main);
            const bool hasPump = result == "AB1";
            const QString finished = QueryFinished.arg(hasPump ? result : "");
            COMPARE_EVENTS(run.readerEnds(CommandStatus::Done, result),
                           hasPump ? QStringList{"pump AB1", finished} : QStringList{finished});
            QCOMPARE(run.shown(), hasPump ? HasPump.arg(result) : NoPump);
            COMPARE_EVENTS(run.readerDoesNotExecute() + run.readerStaysSilent(), QStringList()); // too late
            COMPARE_EVENTS(result.isEmpty() ? run.press(Qt::Key_Escape)
                           : hasPump        ? run.click("Close")
                                            : run.closeWindow(),
                           {"rejected"});
        }
    }

    void secondQueryNotExecutedIsReportedAndRepeated()
    {
        DialogRun run(DialogRun::Main);
        COMPARE_EVENTS(run.readerDoesNotExecute(CommandStatus::Done), QStringList(NotExecuted.arg(1)) + Query);
        COMPARE_EVENTS(run.readerStaysSilent() + run.press(Qt::Key_Escape), QStringList());
        run.answerNextBox(QMessageBox::Yes);
        COMPARE_EVENTS(run.readerDoesNotExecute(), QStringList{NotExecuted.arg(2), RetryBox} + Query);
        QCOMPARE(run.shown(), NoAnswer);
        run.answerNextBox(QMessageBox::No);
        COMPARE_EVENTS(run.readerDoesNotExecute(), QStringList{NotExecuted.arg(3), RetryBox, "rejected"} + Query);
    }

    void errorOfTheReaderIsShownAndClosesTheDialog()
    {
        COMPARE_EVENTS(DialogRun(DialogRun::Main).readerEnds(CommandStatus::Failed, "xyz", 7),
                       ReaderError + QStringList{"rejected", "pump xyz", QueryFinished.arg("xyz")});
    }

    void leftOverCommandIsAbortedFirst()
    {
        const QString failed = "err|=!= [Main dialog] Prepare (abort old running) failed: ";
        DialogRun run(DialogRun::MainAfterLeftOverCommand);
        COMPARE_EVENTS(run.takeEvents(), {"command ABORT", "poll 20 0 500"});
        COMPARE_EVENTS(run.readerEnds(CommandStatus::Done),
                       {"mcp|==> [Main dialog] Prepare (abort old running) succeeded."});
        COMPARE_EVENTS(run.readerEnds(CommandStatus::Done), QStringList()); // of nothing that was asked for
        QCOMPARE(run.shown(), NoAnswer);
        COMPARE_EVENTS(run.fireTimer(2000), QStringList("pump none") + Query);
        COMPARE_EVENTS(DialogRun(DialogRun::MainAfterLeftOverCommand).readerEnds(CommandStatus::Failed),
                       {failed + "status='1'."});
        COMPARE_EVENTS(DialogRun(DialogRun::MainAfterLeftOverCommand).readerDoesNotExecute(),
                       {failed + "not executed."});
    }

    void dataAreHandedOverBeforeTheDialogCloses()
    {
        DialogRun run(DialogRun::Main);
        run.readerEnds(CommandStatus::Done, "PU1234");
        QString file;
        connect(static_cast<MainDialog*>(run.dialog.get()), &MainDialog::importDataReady, this, [&] {
            file = PatientSession::instance()->exchangeFilePath();
            run.endDiary(); // what the host does with its diary then is no failure of the run
        });
        QStringList events;
        const QStringList eventsAfter = run.click("Read pump", [&events](DialogRun& self) {
            self.startReading();
            self.readerEnds(CommandStatus::Done);
            return events = self.fireTimer(2000);
        });
        COMPARE_EVENTS(eventsAfter, QStringList());
        COMPARE_EVENTS(events,
                       {"databaseGuid('/data/open.db')", "import " + DialogRun::host.database.guid, "rejected"});
        QCOMPARE(file, run.reader.misc() + "/I1.xml");
    }

    void endOfTheDiaryEndsTheRun()
    {
        DialogRun answered(DialogRun::Main);
        answered.endDiary();
        COMPARE_EVENTS(answered.readerEnds(CommandStatus::Done, "PU1"), DiaryEnded);
        DialogRun failed(DialogRun::Main);
        failed.duringNextBox([&failed] { failed.endDiary(); });
        COMPARE_EVENTS(failed.readerEnds(CommandStatus::Failed, "xyz", 7), ReaderError + DiaryEnded);
        DialogRun retried(DialogRun::Main);
        retried.readerDoesNotExecute();
        retried.duringNextBox([&retried] { retried.endDiary(); });
        COMPARE_EVENTS(retried.readerDoesNotExecute(), QStringList{NotExecuted.arg(2), RetryBox} + DiaryEnded);
        for (const QString button : {"Add pump", "Read pump", "Remove pump"}) {
            DialogRun run(DialogRun::Main);
            run.readerEnds(CommandStatus::Done, button == "Add pump" ? "" : "PU1234");
            run.endDiary();
            COMPARE_EVENTS(run.click(button), DiaryEnded);
        }
    }
};

QTEST_MAIN(TestMainDialog)

#include "tst_main_dialog.moc"
