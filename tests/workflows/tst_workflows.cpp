// SPDX-FileCopyrightText: 2026 The Merivo Connections developers
// SPDX-License-Identifier: MIT
#include "dialogs/DialogRun.h"
#include "workflows/AddPumpControl.h"
#include "workflows/ReadoutPumpControl.h"
#include "workflows/RemovePumpControl.h"

#include <QDir>
#include <QSignalSpy>

/// What the dialogs, whose tests run the workflows too, neither use nor show. The workflows are children of a dialog
/// that waits for its user.
class TestWorkflows final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void statusIsPassedOn()
    {
        DialogRun run(DialogRun::Remove);
        AddPumpControl add(&DialogRun::host.services, &DialogRun::host.database, run.dialog.get());
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

    void pairingTakesTheRowsOfItsOwnList()
    {
        DialogRun run(DialogRun::Remove);
        AddPumpControl add(&DialogRun::host.services, &DialogRun::host.database, run.dialog.get());
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
        QVERIFY(QDir(run.reader.misc()).removeRecursively()); // a command that can't be written is awaited all the same
        add.startPairingSearch();
        COMPARE_EVENTS(run.takeEvents().filter("poll"), {"poll 120 0 500"});
        QCOMPARE(progress, (QList<QVariantList>{{"", 0}, {"", 100}, {"S1", 0}})); // of the latest pairing
    }

    void onlyAFoundPumpIsRead()
    {
        DialogRun run(DialogRun::Remove);
        ReadoutPumpControl read(run.dialog.get());
        connect(&read, &ReadoutPumpControl::searchingFinished, this,
                [](CommandStatus status) { DialogRun::host.journal.add(QString("finished %1").arg(int(status))); });
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

QTEST_MAIN(TestWorkflows)

#include "tst_workflows.moc"
