// SPDX-FileCopyrightText: 2026 The Merivo Connections developers
// SPDX-License-Identifier: MIT
#include "dialogs/MainDialog.h"

#include "dialogs/DialogRun.h"
#include "dialogs/PumpReadDialog.h"
#include "plugin/session/PatientSession.h"
#include "reader/StatusFileParser.h"
#include "support/BoxAnswerer.h"
#include "toolkit/LmIcons.h"

#include <QApplication>
#include <QDialogButtonBox>
#include <QElapsedTimer>
#include <QLabel>
#include <QPushButton>
#include <QSignalSpy>
#include <QTest>

namespace {

const QString Silent = QStringLiteral("Something is wrong with the devicereader. Please reconnect it to the PC.");
const QString SilentDisplayed =
    QStringLiteral("The Sanvio Lumo device is not responding. Disconnect the device from the PC and reconnect it.");
const QString Retry = QStringLiteral("<b>Request of patient assigned paired pump failed.</b><br/>"
                                     "Do you want to retry the request?");
constexpr auto YesOrNo = QMessageBox::Yes | QMessageBox::No;

/// A run with the dialog shown in it.
struct OpenDialog : DialogRun
{
    explicit OpenDialog(bool translated = false, const QString& simulation = {})
        : DialogRun(translated)
        , dialog(&testHost().services, &testHost().database, simulation, nullptr)
    {
        dialog.show();
    }
    void answer(bool success, CommandStatus status, const QString& result = {}, int error = 0)
    {
        endRun(&dialog, success, status, result, error);
    }
    QPushButton* button(const char* name) const { return child<QPushButton>(dialog, name); }
    QLabel* label(const char* name) const { return child<QLabel>(dialog, name); }
    QPushButton* close() const
    {
        return child<QDialogButtonBox>(dialog, "m_DialogButtonBox")->button(QDialogButtonBox::Close);
    }

    MainDialog dialog;
};

/// Does @p action once, as soon as a read dialog is open and in the state that is asked for.
class WhenReadDialog final : public QObject
{
public:
    WhenReadDialog(bool reading, const std::function<void(PumpReadDialog*)>& action)
    {
        connect(&m_timer, &QTimer::timeout, this, [this, reading, action] {
            auto* dialog = qobject_cast<PumpReadDialog*>(QApplication::activeModalWidget());
            if (!dialog || dialog->isCancelEnabled() == reading)
                return;
            m_timer.stop();
            action(dialog);
        });
        m_timer.start(5);
    }

private:
    QTimer m_timer;
};

} // namespace

class MainDialogTest final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void showsHeader_data();
    void showsHeader();
    void showsState_data();
    void showsState();
    void staysUntilAnswered_data();
    void staysUntilAnswered();
    void retriesOnceThenAsks_data();
    void retriesOnceThenAsks();
    void endsOnReaderError();
    void endsOnSilenceOfFirstQueryOnly_data();
    void endsOnSilenceOfFirstQueryOnly();
    void abortsOldCommand_data();
    void abortsOldCommand();
    void abortsOldCommandOfRealReader();
    void readOutClosesDialog();
    void leavingReadDialog_data();
    void leavingReadDialog();
};

void MainDialogTest::showsHeader_data()
{
    QTest::addColumn<QStringList>("pids");
    QTest::addColumn<QString>("simulation");
    QTest::addColumn<QString>("line1");
    QTest::addColumn<QString>("line2");
    QTest::newRow("all") << QStringList{"Doe", "Jane", "1970-02-03", "X1"} << ""
                         << "Doe, Jane"
                         << "03.02.1970, X1";
    QTest::newRow("nothing known") << QStringList() << ""
                                   << ""
                                   << "";
    QTest::newRow("simulated") << QStringList{"Doe"} << "/sim"
                               << "Doe"
                               << "";
}

void MainDialogTest::showsHeader()
{
    QFETCH(QStringList, pids);
    QFETCH(QString, simulation);
    QFETCH(QString, line1);
    QFETCH(QString, line2);
    DialogRun run;
    PatientSession::instance()->setPids(pids);
    const MainDialog dialog(&testHost().services, &testHost().database, simulation, nullptr);

    const auto check = [&dialog](const char* name, const QString& text) {
        const auto* label = child<QLabel>(dialog, name);
        QCOMPARE(label->isHidden(), text.isEmpty());
        if (!text.isEmpty())
            QCOMPARE(label->text(), text);
    };
    check("m_PatientLine1", line1);
    check("m_PatientLine2", line2);
    check("m_SimulationLabel", simulation.isEmpty() ? QString() : "SimulationPath: '" + simulation + "'");
    QVERIFY(child<QLabel>(dialog, "m_TitleLabel")->isHidden());
    for (const char* name : {"m_TitleLabel", "m_PatientLine1"})
        QCOMPARE(child<QLabel>(dialog, name)->property("HighlightFont"), QVariant(true));
    QCOMPARE(child<QLabel>(dialog, "m_TitleLabel")->property("BigSizeFont"), QVariant(true));
    QVERIFY(!dialog.windowFlags().testFlag(Qt::WindowContextHelpButtonHint));
    for (const char* name : {"m_GraphicLabel1", "m_GraphicLabel3"})
        QVERIFY(qAbs(child<QLabel>(dialog, name)->pixmap(Qt::ReturnByValue).width() - 100) <= 1);

    QStringList log = testHost().journal.lines.filter("|");
    if (!simulation.isEmpty())
        QCOMPARE(log.takeFirst(), "err|Device reader simulation used.||" + simulation);
    QCOMPARE(log.value(0), QStringLiteral("mcp|=?= <[at rest]: NONE, 2, 0, > status at open.||"));
    QVERIFY(log.value(1).startsWith("mcp|<== <BTISPAIRED P-4711> submitted."));
    QVERIFY(log.value(3).startsWith("mcp|=== Observer start requested (in 500 msec)."));
}

void MainDialogTest::showsState_data()
{
    QTest::addColumn<QString>("result"); // null: no answer yet
    QTest::addColumn<bool>("translated");
    QTest::addColumn<QString>("serialNumber");
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("image");
    const QString plus = QStringLiteral("icon_plus_grey_dark");
    const QString connected = QStringLiteral("icon_connected");
    QTest::newRow("querying") << QString() << false << ""
                              << "" << plus;
    QTest::newRow("no result") << QStringLiteral("") << false << ""
                               << "No pump assigned" << plus;
    QTest::newRow("0 is no pump") << "0" << true << ""
                                  << "No pump assigned" << plus;
    QTest::newRow("two characters are none") << "AB" << false << ""
                                             << "No pump assigned" << plus;
    QTest::newRow("three characters") << "AB1" << false << "AB1"
                                      << "Pump assigned: S/N 'AB1'." << connected;
    QTest::newRow("displayed") << "AB%1" << true << "AB%1"
                               << "Assigned pump: Serial number 'AB%1'." << connected;
}

void MainDialogTest::showsState()
{
    QFETCH(QString, result);
    QFETCH(bool, translated);
    QFETCH(QString, serialNumber);
    QFETCH(QString, text);
    QFETCH(QString, image);
    const bool known = !result.isNull();
    const bool hasPump = !serialNumber.isEmpty();

    OpenDialog open(translated);
    QCOMPARE(open.dialog.windowTitle(),
             translated ? QStringLiteral("Sanvio Merivo Pump Plugin") : QStringLiteral("Merivo Connection Plugin"));
    PatientSession::instance()->setDeviceName(QStringLiteral("stays"));
    if (known)
        open.answer(true, CommandStatus::Done, result);

    QCOMPARE(open.button("m_addPumpButton")->isEnabled(), known && !hasPump);
    QCOMPARE(open.button("m_readPumpButton")->isEnabled(), hasPump);
    QCOMPARE(open.button("m_removePumpButton")->isEnabled(), hasPump);
    QCOMPARE(child<QDialogButtonBox>(open.dialog, "m_DialogButtonBox")->isEnabled(), known);
    QCOMPARE(open.label("m_pumpAssignLabel")->isVisible(), known);
    if (known)
        QCOMPARE(open.label("m_pumpAssignLabel")->text(), text);
    const QPixmap expected = lmIcon(":/img/Images/" + image + ".svg").pixmap(32, 32);
    QVERIFY(!expected.isNull());
    QCOMPARE(open.label("m_GraphicLabel2")->pixmap(Qt::ReturnByValue).toImage(), expected.toImage());
    QCOMPARE(PatientSession::instance()->pumpSerialNumber(), serialNumber);
    QCOMPARE(PatientSession::instance()->deviceName(), QStringLiteral("stays"));
    QCOMPARE(testHost().journal.startingWith("mcp|=== Paired"),
             known
                 ? QStringList("mcp|=== Paired pump query for patient 'P-4711' finished: snr='" + serialNumber + "'.||")
                 : QStringList());
}

void MainDialogTest::staysUntilAnswered_data()
{
    QTest::addColumn<int>("way");
    QTest::newRow("Escape") << 0;
    QTest::newRow("window's close button") << 1;
    QTest::newRow("Close") << 2;
}

void MainDialogTest::staysUntilAnswered()
{
    QFETCH(int, way);
    OpenDialog open;
    const auto leave = [&open, way] {
        if (way == 0)
            QTest::keyClick(&open.dialog, Qt::Key_Escape);
        else if (way == 1)
            open.dialog.close();
        else
            QTest::mouseClick(open.close(), Qt::LeftButton);
    };
    leave();
    QVERIFY(open.dialog.isVisible());
    open.answer(true, CommandStatus::Done, "0");
    QVERIFY(open.dialog.isVisible());
    leave();
    QVERIFY(!open.dialog.isVisible());
    QCOMPARE(open.dialog.result(), int(QDialog::Rejected));
}

void MainDialogTest::retriesOnceThenAsks_data()
{
    QTest::addColumn<int>("answer");
    QTest::addColumn<bool>("translated");
    QTest::newRow("yes") << int(QMessageBox::Yes) << false;
    QTest::newRow("no") << int(QMessageBox::No) << true;
}

void MainDialogTest::retriesOnceThenAsks()
{
    QFETCH(int, answer);
    QFETCH(bool, translated);
    const QString notExecuted =
        QStringLiteral("err|=!= %1. Paired pump query for patient 'P-4711' not executed by device reader.||");
    const auto queries = [] {
        return testHost().journal.startingWith("mcp|<== <BTISPAIRED").size();
    };
    OpenDialog open(translated);
    BoxAnswerer boxes;
    boxes.answerWith({QMessageBox::StandardButton(answer)});

    open.answer(false, CommandStatus::Done, "AB1");
    QCOMPARE(queries(), 2); // at once and unasked
    QVERIFY(boxes.seen.isEmpty());

    PatientSession::instance()->setPump(QStringLiteral("forgotten by the query"), {});
    open.answer(false, CommandStatus::Done, "AB1");
    QCOMPARE(boxes.seen.size(), 1);
    QCOMPARE(boxes.seen[0].icon, QMessageBox::Question);
    QCOMPARE(boxes.seen[0].title,
             translated ? QStringLiteral("Sanvio Merivo Pump Plugin") : QStringLiteral("Merivo Connections"));
    QCOMPARE(boxes.seen[0].text, Retry);
    QCOMPARE(boxes.seen[0].buttons, YesOrNo);
    // Also after a No the command goes out.
    QCOMPARE(queries(), 3);
    QCOMPARE(PatientSession::instance()->pumpSerialNumber(), QString());
    QCOMPARE(open.dialog.isVisible(), answer == QMessageBox::Yes);
    QVERIFY(!open.button("m_addPumpButton")->isEnabled());
    QCOMPARE(open.errors(), (QStringList{notExecuted.arg(1), notExecuted.arg(2)}));

    open.answer(true, CommandStatus::Done, "AB1");
    QVERIFY(open.button("m_readPumpButton")->isEnabled());
}

void MainDialogTest::endsOnReaderError()
{
    OpenDialog open;
    testHost().journal.clear();
    BoxAnswerer boxes(&testHost().journal.lines);
    open.answer(true, CommandStatus::Failed, "xyz", 32);
    QCOMPARE(testHost().journal.lines,
             (QStringList{"err|=!= Paired pump query for patient 'P-4711' failed: <32 : xyz>.||",
                          "err|Error message box: code='32'||",
                          "box|Merivo Connections|<b>Connection lost</b><br/>Maybe the battery is weak, or the pump is "
                          "too far away. Please move it closer and try again to connect.",
                          "mcp|=== Paired pump query for patient 'P-4711' finished: snr='xyz'.||"}));
    QVERIFY(!open.dialog.isVisible());
    QCOMPARE(PatientSession::instance()->pumpSerialNumber(), QStringLiteral("xyz"));
}

void MainDialogTest::endsOnSilenceOfFirstQueryOnly_data()
{
    QTest::addColumn<bool>("answered");
    QTest::addColumn<bool>("success");
    QTest::addColumn<bool>("translated");
    QTest::newRow("source") << false << false << false;
    QTest::newRow("displayed") << false << false << true;
    QTest::newRow("answered") << true << true << false;
    QTest::newRow("retried") << true << false << false;
}

void MainDialogTest::endsOnSilenceOfFirstQueryOnly()
{
    QFETCH(bool, answered);
    QFETCH(bool, success);
    QFETCH(bool, translated);
    OpenDialog open(translated);
    BoxAnswerer boxes;
    if (answered)
        open.answer(success, CommandStatus::Done, "0");
    Q_EMIT StatusFileParser::instance()->timeout();
    QVERIFY(boxes.seen.isEmpty()); // queued
    QCoreApplication::sendPostedEvents(&open.dialog);

    QCOMPARE(open.dialog.isVisible(), answered);
    QCOMPARE(boxes.seen.size(), answered ? 0 : 1);
    if (answered)
        return;
    QCOMPARE(boxes.seen[0].icon, QMessageBox::Warning);
    QCOMPARE(boxes.seen[0].title,
             translated ? QStringLiteral("Sanvio Merivo Pump Plugin") : QStringLiteral("Merivo Connections"));
    QCOMPARE(boxes.seen[0].text, translated ? SilentDisplayed : Silent);
    QCOMPARE(boxes.seen[0].buttons, QMessageBox::Ok);
}

void MainDialogTest::abortsOldCommand_data()
{
    QTest::addColumn<bool>("success");
    QTest::addColumn<int>("status");
    QTest::addColumn<QString>("expected");
    const QString failed = QStringLiteral("err|=!= [Main dialog] Prepare (abort old running) failed: %1.||");
    QTest::newRow("done") << true << 2 << "mcp|==> [Main dialog] Prepare (abort old running) succeeded.||";
    QTest::newRow("failed") << true << 1 << failed.arg("status='1'");
    QTest::newRow("not executed") << false << 2 << failed.arg("not executed");
}

void MainDialogTest::abortsOldCommand()
{
    QFETCH(bool, success);
    QFETCH(int, status);
    QFETCH(QString, expected);
    DialogRun run;
    QVERIFY(run.reader.writeStatus("old", "BTREAD", "running"));
    MainDialog dialog(&testHost().services, &testHost().database, {}, nullptr);
    const Journal& journal = testHost().journal;
    QVERIFY(run.reader.command().endsWith("Command=ABORT "));

    testHost().journal.clear();
    run.endRun(&dialog, success, CommandStatus(status));
    QCOMPARE(journal.lines, QStringList(expected));
    QElapsedTimer pause;
    pause.start();
    QTRY_COMPARE_WITH_TIMEOUT(journal.startingWith("mcp|<== <BTISPAIRED").size(), 1, 6000);
    QVERIFY(pause.elapsed() >= 1900);
    // The answer to the query is for the query alone.
    testHost().journal.clear();
    run.endRun(&dialog, true, CommandStatus::Done, "0");
    QCOMPARE(journal.lines, QStringList("mcp|=== Paired pump query for patient 'P-4711' finished: snr=''.||"));
}

void MainDialogTest::abortsOldCommandOfRealReader()
{
    DialogRun run;
    run.reader.writeStatus("old", "BTREAD", "running");
    run.reader.answer("ABORT", {{50, "done"}});
    run.reader.answer("BTISPAIRED", {{50, "running"}, {300, "done", "PU1234"}});
    MainDialog dialog(&testHost().services, &testHost().database, {}, nullptr);
    dialog.show();
    QTRY_VERIFY_WITH_TIMEOUT(child<QPushButton>(dialog, "m_readPumpButton")->isEnabled(), 10000);
    QCOMPARE(run.reader.commandsSeen, (QStringList{"ABORT ", "BTISPAIRED P-4711"}));
    QCOMPARE(run.errors(), QStringList());
}

void MainDialogTest::readOutClosesDialog()
{
    OpenDialog open;
    open.reader.answer("BTREAD", {{10, "running"}, {300, "done"}});
    open.reader.beforeLastAnswer = [&open](const QString&) {
        open.reader.writeFile("I1.xml", "<data/>");
    };
    open.answer(true, CommandStatus::Done, "PU1234");
    QStringList& lines = testHost().journal.lines;
    connect(&open.dialog, &MainDialog::importDataReady, this,
            [&](const QString& guid) { lines << guid << (open.dialog.isVisible() ? "visible" : "closed"); });

    QTest::mouseClick(open.button("m_readPumpButton"), Qt::LeftButton); // blocks until the read dialog has closed
    QCOMPARE(lines.mid(lines.size() - 3),
             (QStringList{"databaseGuid('/data/open.db')", testHost().database.guid, "visible"}));
    QVERIFY(!open.dialog.isVisible());
    QCOMPARE(PatientSession::instance()->exchangeFilePath(), open.reader.misc() + "/I1.xml");
    QCOMPARE(open.errors(), QStringList());
}

void MainDialogTest::leavingReadDialog_data()
{
    QTest::addColumn<bool>("silent");
    QTest::newRow("cancelled") << false;
    QTest::newRow("reader silent") << true;
}

void MainDialogTest::leavingReadDialog()
{
    QFETCH(bool, silent);
    OpenDialog open;
    open.answer(true, CommandStatus::Done, "PU1234");
    QSignalSpy ready(&open.dialog, &MainDialog::importDataReady);
    BoxAnswerer boxes;
    const WhenReadDialog act(silent, [silent](PumpReadDialog* dialog) {
        // As by a host event in the meantime: the main dialog shows what holds when the read dialog has closed.
        PatientSession::instance()->setPump({}, {});
        if (silent)
            Q_EMIT StatusFileParser::instance()->timeout();
        else
            dialog->reject();
    });
    QTest::mouseClick(open.button("m_readPumpButton"), Qt::LeftButton);
    QVERIFY(open.button("m_addPumpButton")->isEnabled());
    QCoreApplication::processEvents();
    QCOMPARE(boxes.seen.size(), silent ? 1 : 0); // the main dialog doesn't add a box of its own
    QCOMPARE(open.dialog.isVisible(), !silent);
    QCOMPARE(ready.size(), 0);
}

QTEST_MAIN(MainDialogTest)

#include "MainDialogTest.moc"
