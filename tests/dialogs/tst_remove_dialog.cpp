// SPDX-FileCopyrightText: 2026 The Merivo Connections developers
// SPDX-License-Identifier: MIT
#include "dialogs/DialogRun.h"

class TestRemoveDialog final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void pumpIsRemovedAfterAYes()
    {
        DialogRun run(DialogRun::Remove);
        run.answerNextBox(QMessageBox::No);
        COMPARE_EVENTS(run.click("Remove"), {RemoveBox});
        QCOMPARE(run.shown(), QString("row 0, Remove, Cancel"));
        run.selectRow(0);
        run.answerNextBox(QMessageBox::Yes);
        COMPARE_EVENTS(run.click("Remove"), {RemoveBox, "mcp|<== [Remove Controller] Start removing: snr='PU1234'.",
                                             "command BTDELETEADDR  \"PU1234\"", "poll 20 0 500"});
        COMPARE_EVENTS(run.press(Qt::Key_Escape), QStringList());
        QCOMPARE(run.shown(), QString("row 0, (Remove), (Cancel)"));
        COMPARE_EVENTS(run.readerEnds(CommandStatus::Done),
                       {"mcp|==> [Remove Controller] Removing succeeded: status='2'.", "accepted"});
    }

    void otherButtonsAndEscapeCloseTheDialog()
    {
        COMPARE_EVENTS(DialogRun(DialogRun::Remove).click("Cancel"), {"rejected"});
        COMPARE_EVENTS(DialogRun(DialogRun::Remove).clickForeignButton(QDialogButtonBox::Help), {"rejected"});
        COMPARE_EVENTS(DialogRun(DialogRun::Remove).press(Qt::Key_Escape), {"rejected"});
    }
};

QTEST_MAIN(TestRemoveDialog)

#include "tst_remove_dialog.moc"
