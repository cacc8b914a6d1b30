// SPDX-FileCopyrightText: 2026 The Merivo Connections developers
// SPDX-License-Identifier: MIT
#include "dialogs/PumpReadDialog.h"

#include "dialogs/DialogRun.h"
#include "plugin/session/PatientSession.h"
#include "reader/StatusFileParser.h"
#include "support/BoxAnswerer.h"
#include "workflows/ReadoutPumpControl.h"

#include <QDialogButtonBox>
#include <QElapsedTimer>
#include <QLabel>
#include <QProgressBar>
#include <QPushButton>
#include <QTest>

namespace {

/// A run with the dialog shown in it, and what came of it in the order in which it came.
struct OpenDialog : DialogRun
{
    explicit OpenDialog(bool translated = false)
        : DialogRun(translated)
    {
        PatientSession::instance()->setPump(QStringLiteral("PU1234"), {});
        dialog = std::make_unique<PumpReadDialog>(&testHost().services, &testHost().database, QString(), nullptr);
        QObject::connect(dialog.get(), &PumpReadDialog::importDataReady, dialog.get(), [this] { events << "data"; });
        QObject::connect(dialog.get(), &PumpReadDialog::deviceReaderCritical, dialog.get(),
                         [this] { events << "critical"; });
        QObject::connect(dialog.get(), &QDialog::finished, dialog.get(),
                         [this](int result) { events << (result == QDialog::Accepted ? "accepted" : "rejected"); });
        dialog->show();
    }
    /// Without the pause at the begin.
    void startReading() { child<QPushButton>(*dialog, "m_ReadButton")->click(); }
    void process() const { QCoreApplication::sendPostedEvents(dialog.get()); }
    void endReading(bool success, CommandStatus status)
    {
        endRun(dialog->findChild<ReadoutPumpControl*>(), success, status);
        process();
    }
    QDialogButtonBox* box() const { return child<QDialogButtonBox>(*dialog, "m_DialogButtonBox"); }
    QPushButton* readButton() const { return child<QPushButton>(*dialog, "m_ReadButton"); }
    QString text(const char* name) const { return child<QLabel>(*dialog, name)->text(); }
    int progress() const { return child<QProgressBar>(*dialog, "m_ProgressBar")->value(); }
    bool isBusy() const { return child<QLabel>(*dialog, "m_BusyLabel")->movie()->state() == QMovie::Running; }
    /// What is to be seen, as one text.
    QString look() const
    {
        QStringList parts;
        for (const char* name : {"m_ResultLabel", "m_BusyLabel"}) {
            if (child<QLabel>(*dialog, name)->isVisible())
                parts << name;
        }
        if (isBusy())
            parts << "busy";
        parts << text("m_MessageLabel") << QString::number(progress()) << text("m_ProgressLabel");
        if (readButton()->isVisible())
            parts << (readButton()->isEnabled() ? "Read" : "Read off");
        parts << (dialog->isCancelEnabled() ? "Cancel" : "Cancel off");
        return parts.join(QLatin1Char('|'));
    }

    QStringList events;
    std::unique_ptr<PumpReadDialog> dialog;
};

void leave(QDialog* dialog, int way)
{
    if (way == 0)
        QTest::keyClick(dialog, Qt::Key_Escape);
    else if (way == 1)
        dialog->close();
    else
        QTest::mouseClick(child<QDialogButtonBox>(*dialog, "m_DialogButtonBox")->button(QDialogButtonBox::Cancel),
                          Qt::LeftButton);
}

} // namespace

class PumpReadDialogTest final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void showsEachState_data();
    void showsEachState();
    void failsAndReadsAnew();
    void canOnlyBeLeftWhileWaiting_data();
    void canOnlyBeLeftWhileWaiting();
    void nothingIsSentAfterCancel();
    void closesWhenReaderIsSilent();
    void servesEachButton_data();
    void servesEachButton();
    void readsPumpByItself();
};

void PumpReadDialogTest::showsEachState_data()
{
    QTest::addColumn<bool>("translated");
    QTest::addColumn<QStringList>("texts");
    QTest::newRow("source") << false << QStringList{"Merivo Connection - Add pump",
                                                    "Read out pump",
                                                    "Looking for pump PU1234",
                                                    "Read out device pump ",
                                                    "Read out running ...",
                                                    "Read out completed!",
                                                    "Read out failed!"};
    QTest::newRow("displayed") << true
                               << QStringList{"Sanvio Merivo Pump Plugin - Read pump",
                                              "Read pump",
                                              "Searching for pump with serial number PU1234",
                                              "Downloading data from pump with serial number ",
                                              "Download in progress...",
                                              "Download completed!",
                                              "Download failed!"};
}

void PumpReadDialogTest::showsEachState()
{
    QFETCH(bool, translated);
    QFETCH(QStringList, texts);
    OpenDialog open(translated);
    QCOMPARE(open.dialog->windowTitle(), texts[0]);
    QCOMPARE(open.text("m_TitleLabel"), texts[1]);
    for (const char* name : {"m_TitleLabel", "m_PatientLine1", "m_MessageLabel"})
        QCOMPARE(child<QLabel>(*open.dialog, name)->property("HighlightFont"), QVariant(true));
    QCOMPARE(child<QLabel>(*open.dialog, "m_TitleLabel")->property("BigSizeFont"), QVariant(true));
    QVERIFY(child<QLabel>(*open.dialog, "m_SimulationLabel")->isHidden());
    QCOMPARE(child<QLabel>(*open.dialog, "m_ResultLabel")->pixmap(Qt::ReturnByValue).width(), 50);
    QVERIFY(!child<QLabel>(*open.dialog, "m_BusyLabel")->movie()->currentPixmap().isNull()); // the idle picture
    QCOMPARE(open.look(), "m_BusyLabel|" + texts[2] + "|0||Cancel");

    // The first report comes without a serial number.
    open.startReading();
    open.process();
    QCOMPARE(open.look(), "m_BusyLabel|busy|" + texts[3] + "|0|" + texts[4] + "|Cancel off");
    Q_EMIT open.dialog->findChild<ReadoutPumpControl*>()->readoutProgress("PU1234", 42);
    QCOMPARE(open.progress(), 0); // queued
    open.process();
    QCOMPARE(open.look(), "m_BusyLabel|busy|" + texts[3] + "PU1234|42|" + texts[4] + "|Cancel off");

    open.endReading(false, CommandStatus::Unknown);
    QCOMPARE(open.look(), "m_BusyLabel|" + texts[3] + "PU1234|42|" + texts[6] + "|Read|Cancel");

    QVERIFY(open.reader.writeFile("I1.xml", "<data/>"));
    open.startReading();
    open.endReading(true, CommandStatus::Done);
    QCOMPARE(open.look(), "m_ResultLabel|" + texts[3] + "PU1234|100|" + texts[5] + "|Read off|Cancel off");
    QElapsedTimer shown;
    shown.start();
    QTRY_COMPARE_WITH_TIMEOUT(open.events, (QStringList{"data", "accepted"}), 5000);
    QVERIFY(shown.elapsed() >= 1900);
    QCOMPARE(open.errors(), QStringList("err|=!= [Read Controller] Readout failed.||"));
}

void PumpReadDialogTest::failsAndReadsAnew()
{
    OpenDialog open;
    open.startReading();
    open.endReading(true, CommandStatus::Done); // and no exchange file
    QCOMPARE(open.look(), QStringLiteral("m_BusyLabel|Read out device pump PU1234|100|Read out failed!|Read|Cancel"));

    QTest::mouseClick(open.readButton(), Qt::LeftButton);
    // The old value stands until the first report.
    QCOMPARE(open.progress(), 100);
    open.process();
    QCOMPARE(open.look(), QStringLiteral("m_BusyLabel|busy|Read out device pump PU1234|0|Read out running ...|Read off|"
                                         "Cancel off"));
    open.endReading(true, CommandStatus::Canceled);
    QVERIFY(open.readButton()->isEnabled());
    leave(open.dialog.get(), 2);
    QCOMPARE(open.events, QStringList("rejected"));
}

void PumpReadDialogTest::canOnlyBeLeftWhileWaiting_data()
{
    QTest::addColumn<int>("way");
    QTest::newRow("Escape") << 0;
    QTest::newRow("window's close button") << 1;
    QTest::newRow("Cancel") << 2;
}

void PumpReadDialogTest::canOnlyBeLeftWhileWaiting()
{
    QFETCH(int, way);
    {
        OpenDialog open;
        open.startReading();
        leave(open.dialog.get(), way);
        QVERIFY(open.dialog->isVisible());
    }
    OpenDialog open;
    leave(open.dialog.get(), way);
    QCOMPARE(open.events, QStringList("rejected"));
    QVERIFY(open.reader.command().isEmpty());
}

void PumpReadDialogTest::nothingIsSentAfterCancel()
{
    OpenDialog open;
    leave(open.dialog.get(), 2);
    open.dialog.reset();
    QTest::qWait(2800); // past the start by itself
    QVERIFY(open.reader.command().isEmpty());
}

void PumpReadDialogTest::closesWhenReaderIsSilent()
{
    OpenDialog open;
    open.startReading();
    BoxAnswerer boxes(&open.events);
    Q_EMIT StatusFileParser::instance()->timeout();
    QVERIFY(open.events.isEmpty()); // queued
    open.process();
    QCOMPARE(open.events, (QStringList{"box|Merivo Connections|Something is wrong with the devicereader. Please "
                                       "reconnect it to the PC.",
                                       "critical", "rejected"}));
    QCOMPARE(boxes.seen[0].icon, QMessageBox::Warning);
    QCOMPARE(boxes.seen[0].buttons, QMessageBox::Ok);
}

void PumpReadDialogTest::servesEachButton_data()
{
    QTest::addColumn<int>("button");
    QTest::addColumn<int>("state");
    QTest::addColumn<int>("answer"); // NoButton: there is no question
    QTest::addColumn<QStringList>("expected");
    const QStringList rejected{"rejected"};
    const int ended = StatusFileParser::Ended;
    const int noBox = QMessageBox::NoButton;
    QTest::newRow("Ok") << int(QDialogButtonBox::Ok) << 0 << noBox << QStringList{"data", "accepted"};
    QTest::newRow("Discard") << int(QDialogButtonBox::Discard) << 0 << noBox << rejected;
    QTest::newRow("Help") << int(QDialogButtonBox::Help) << 0 << noBox << rejected;
    QTest::newRow("Abort after a run") << int(QDialogButtonBox::Abort) << ended << noBox << rejected;
    for (const int state : {0, 1}) {
        QTest::addRow("Abort in state %d, yes", state)
            << int(QDialogButtonBox::Abort) << state << int(QMessageBox::Yes) << rejected;
        QTest::addRow("Abort in state %d, no", state)
            << int(QDialogButtonBox::Abort) << state << int(QMessageBox::No) << QStringList();
    }
}

void PumpReadDialogTest::servesEachButton()
{
    QFETCH(int, button);
    QFETCH(int, state);
    QFETCH(int, answer);
    QFETCH(QStringList, expected);
    OpenDialog open;
    StatusFileParser::instance()->m_state = state;
    const auto tested = QDialogButtonBox::StandardButton(button);
    open.box()->setStandardButtons(QDialogButtonBox::Cancel | tested);
    BoxAnswerer boxes;
    boxes.answerWith({QMessageBox::StandardButton(answer)});
    open.box()->button(tested)->click();
    QCOMPARE(open.events, expected);
    QCOMPARE(boxes.seen.size(), answer == QMessageBox::NoButton ? 0 : 1);
    if (boxes.seen.isEmpty())
        return;
    QCOMPARE(boxes.seen[0].icon, QMessageBox::Question);
    QCOMPARE(boxes.seen[0].title, QStringLiteral("Merivo Connections"));
    QCOMPARE(boxes.seen[0].text,
             QStringLiteral("<b>NOTE:</b><br/><i>The data recently read from the <b>Sanvio Merivo</b> pump "
                            "<b>PU1234</b> will be discarded!</i><br/>Do you want to proceed anyway?"));
    QCOMPARE(boxes.seen[0].buttons, QMessageBox::Yes | QMessageBox::No);
}

void PumpReadDialogTest::readsPumpByItself()
{
    OpenDialog open;
    open.reader.answer("BTREAD", {{10, "running"}, {500, "done"}});
    open.reader.beforeLastAnswer = [&open](const QString&) {
        open.reader.writeFile("I1.xml", "<data/>");
    };
    QElapsedTimer clock;
    clock.start();
    QTRY_VERIFY_WITH_TIMEOUT(!open.dialog->isCancelEnabled(), 6000);
    QVERIFY(clock.elapsed() >= 2300);
    QTRY_COMPARE_WITH_TIMEOUT(open.events, (QStringList{"data", "accepted"}), 10000);
    QCOMPARE(open.reader.commandsSeen, QStringList("BTREAD \"PU1234\""));
    QCOMPARE(open.errors(), QStringList());
}

QTEST_MAIN(PumpReadDialogTest)

#include "PumpReadDialogTest.moc"
