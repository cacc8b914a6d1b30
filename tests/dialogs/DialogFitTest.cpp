// SPDX-FileCopyrightText: 2026 The Merivo Connections developers
// SPDX-License-Identifier: MIT
#include "dialogs/DialogLooks.h"
#include "dialogs/DialogRun.h"
#include "dialogs/MainDialog.h"
#include "dialogs/PumpReadDialog.h"
#include "plugin/session/PatientSession.h"
#include "workflows/ReadoutPumpControl.h"

#include <QApplication>
#include <QDir>
#include <QLabel>
#include <QPushButton>
#include <QTest>

#include <memory>

namespace {

const QString SerialNumber = QStringLiteral("PU-1003456789");

/// As a host's style sheet may have it; the dialogs must have room for it.
const QString HostStyle = QStringLiteral("*[BigSizeFont=\"true\"] { font-size: 14pt; } "
                                         "*[HighlightFont=\"true\"] { font-weight: bold; }");

void letReadDialogRun(const PumpReadDialog& dialog, int percentage)
{
    child<QPushButton>(dialog, "m_ReadButton")->click();
    Q_EMIT dialog.findChild<ReadoutPumpControl*>()->readoutProgress(SerialNumber, percentage);
}

} // namespace

/// Looks at every state of the dialogs in the source texts and in the displayed ones. With a folder in the environment
/// variable MERIVO_PICTURES each is saved there as a PNG.
class DialogFitTest final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { qApp->setStyleSheet(HostStyle); }
    void canBeReadAndReached_data();
    void canBeReadAndReached();
};

void DialogFitTest::canBeReadAndReached_data()
{
    QTest::addColumn<QString>("state");
    QTest::addColumn<bool>("translated");
    QTest::addColumn<QSize>("largest");
    QTest::addColumn<QSize>("initial");
    const QStringList states{"main-querying", "main-no-pump",   "main-pump",       "main-simulation", "read-waiting",
                             "read-reading",  "read-completed", "read-simulation", "read-failed"};
    for (const QString& state : states) {
        const bool isMain = state.startsWith("main");
        for (const bool translated : {false, true})
            QTest::addRow("%s-%s", qPrintable(state), translated ? "displayed" : "source")
                << state << translated << (isMain ? QSize(700, 400) : QSize(QWIDGETSIZE_MAX, 380))
                << (isMain ? QSize(640, 360) : QSize(640, 380));
    }
}

void DialogFitTest::canBeReadAndReached()
{
    QFETCH(QString, state);
    QFETCH(bool, translated);
    QFETCH(QSize, largest);
    QFETCH(QSize, initial);
    DialogRun run(translated);
    RecordingHost& host = testHost();
    const QString simulation = state.endsWith("simulation")
                                   ? QStringLiteral("/home/clinic/Documents/Simulated reader/Test drive 2")
                                   : QString();
    if (!simulation.isEmpty())
        PatientSession::instance()->setPids(
            {"Featherstonehaugh-Cholmondeley", "Maximilian Alexander", "1970-02-03", "Ward 12, Room 4"});

    std::unique_ptr<QDialog> dialog;
    if (state.startsWith("main")) {
        dialog = std::make_unique<MainDialog>(&host.services, &host.database, simulation, nullptr);
        if (state != "main-querying")
            run.endRun(dialog.get(), true, CommandStatus::Done, state == "main-no-pump" ? "0" : SerialNumber);
    } else {
        PatientSession::instance()->setPump(SerialNumber, {});
        auto read = std::make_unique<PumpReadDialog>(&host.services, &host.database, simulation, nullptr);
        if (state != "read-waiting")
            letReadDialogRun(*read, state == "read-completed" ? 100 : 42);
        if (state == "read-completed")
            Q_EMIT read->findChild<ReadoutPumpControl*>()->readoutSucceeded();
        else if (state == "read-failed")
            Q_EMIT read->findChild<ReadoutPumpControl*>()->readoutFinished(CommandStatus::Unknown);
        dialog = std::move(read);
    }
    dialog->show();
    QVERIFY(QTest::qWaitForWindowActive(dialog.get()));
    QCoreApplication::processEvents();

    const QString folder = qEnvironmentVariable("MERIVO_PICTURES");
    if (!folder.isEmpty())
        QVERIFY(dialog->grab().save(QDir(folder).filePath(QString::fromLatin1(QTest::currentDataTag()) + ".png")));
    QCOMPARE(cutTexts(*dialog).join("; "), QString());
    QCOMPARE(namelessWidgets(*dialog).join("; "), QString());
    QCOMPARE(tabOrder(*dialog).join("; "), readingOrder(*dialog).join("; "));
    QCOMPARE(dialog->maximumSize(), largest);
    QCOMPARE(dialog->size(), initial);
}

int main(int argc, char** argv)
{
    QApplication::setAttribute(Qt::AA_UseHighDpiPixmaps);
    QApplication application(argc, argv);
    DialogFitTest test;
    return QTest::qExec(&test, argc, argv);
}

#include "DialogFitTest.moc"
