// SPDX-FileCopyrightText: 2026 The Merivo Connections developers
// SPDX-License-Identifier: MIT
#include "dialogs/DialogLooks.h"
#include "dialogs/MainDialog.h"
#include "dialogs/PumpReadDialog.h"
#include "plugin/session/Logger.h"
#include "plugin/session/PatientSession.h"
#include "reader/CommandFileWriter.h"
#include "reader/StatusFileParser.h"
#include "support/BoxAnswerer.h"
#include "support/ReaderFolder.h"
#include "support/RecordingHost.h"
#include "toolkit/LmIcons.h"
#include "workflows/ReadoutPumpControl.h"

#include <QApplication>
#include <QDialogButtonBox>
#include <QDir>
#include <QElapsedTimer>
#include <QLabel>
#include <QProgressBar>
#include <QPushButton>
#include <QTest>
#include <QTranslator>

#include <memory>

namespace {

RecordingHost s_host;
const QStringList Patient{"Doe", "Jane", "1970-02-03", "X1"};
const QStringList LongName{"Featherstonehaugh-Cholmondeley", "Maximilian Alexander", "1970-02-03", "Ward 12, Room 4"};

template <typename Widget>
Widget* child(const QWidget& window, const QString& name)
{
    auto* found = window.findChild<Widget*>(name);
    if (!found)
        qFatal("There is no %s", qPrintable(name));
    return found;
}

/// One dialog in a run of the plug-in, with a reader at rest, driven step by step. The host's journal tells what
/// happened: log lines, boxes and signals.
struct Story
{
    Story(bool isMain, bool translated, const QString& simulation = {}, const QString& status = "done",
          const QStringList& pids = Patient);
    ~Story();
    void perform(const QString& step);
    void endRun(bool success, CommandStatus status, const QString& result, int error);
    QString look() const;
    /// The journal without what the reader's own classes write, but for the commands.
    QStringList happened() const;

    ReaderFolder reader;
    QTranslator translator;
    BoxAnswerer boxes{&s_host.journal.lines};
    std::unique_ptr<QDialog> dialog;
};

Story::Story(bool isMain, bool translated, const QString& simulation, const QString& status, const QStringList& pids)
{
    if (translated &&
        (!translator.load(":/lang/i18n/mc_en_GB.qm") || !QCoreApplication::installTranslator(&translator)))
        qFatal("The translation can't be loaded");
    reader.writeStatus("at rest", "BTREAD", status);
    CommandFileWriter::create(reader.drive());
    StatusFileParser::create(reader.drive());
    PatientSession::create(nullptr)->setPatientId("P1");
    PatientSession::instance()->setPids(pids);
    PatientSession::instance()->setPump("PU1234", "stays");
    s_host.journal.clear();
    QStringList& lines = s_host.journal.lines;
    if (isMain) {
        auto main = std::make_unique<MainDialog>(&s_host.services, &s_host.database, simulation, nullptr);
        QObject::connect(main.get(), &MainDialog::importDataReady, main.get(), [&](QString guid) { lines << guid; });
        dialog = std::move(main);
    } else {
        auto read = std::make_unique<PumpReadDialog>(&s_host.services, &s_host.database, simulation, nullptr);
        QObject::connect(read.get(), &PumpReadDialog::importDataReady, read.get(), [&] { lines << "data"; });
        QObject::connect(read.get(), &PumpDialog::deviceReaderCritical, read.get(), [&] { lines << "critical"; });
        dialog = std::move(read);
    }
    QObject::connect(dialog.get(), &QDialog::finished, dialog.get(),
                     [&](int result) { lines << (result == QDialog::Accepted ? "accepted" : "rejected"); });
}

Story::~Story()
{
    dialog.reset();
    delete StatusFileParser::instance();
    delete CommandFileWriter::instance();
}

void Story::endRun(bool success, CommandStatus status, const QString& result, int error)
{
    StatusFileParser::instance()->m_lastStatus = {"h", "X", status, result, error};
    Q_EMIT StatusFileParser::instance()->finished(success);
    if (auto* control = dialog->findChild<ReadoutPumpControl*>())
        QCoreApplication::sendPostedEvents(control);
}

void Story::perform(const QString& step)
{
    const QStringList words = step.split(' ');
    auto* box = child<QDialogButtonBox>(*dialog, "m_DialogButtonBox");
    if (step == "look")
        s_host.journal.lines << look();
    else if (step == "translated")
        s_host.journal.lines << dialog->windowTitle();
    else if (step == "silence")
        Q_EMIT StatusFileParser::instance()->timeout();
    else if (step == "answer No")
        boxes.answerWith({QMessageBox::No});
    else if (step == "answer Yes")
        boxes.answerWith({QMessageBox::Yes});
    else if (step == "Escape")
        QTest::keyClick(dialog.get(), Qt::Key_Escape);
    else if (step == "close")
        dialog->close();
    else if (step == "leave")
        QTest::mouseClick(box->buttons().constFirst(), Qt::LeftButton);
    else if (words[0] == "press") { // the button of a box that has more buttons than the form
        box->setStandardButtons(QDialogButtonBox::Cancel | QDialogButtonBox::StandardButton(words[1].toInt()));
        box->button(QDialogButtonBox::StandardButton(words[1].toInt()))->click();
    } else if (words[0] == "report")
        Q_EMIT dialog->findChild<ReadoutPumpControl*>()->readoutProgress(words.value(2, "PU1234"), words[1].toInt());
    else if (words[0] == "state")
        StatusFileParser::instance()->m_state = words[1].toInt();
    else if (words[0] == "file")
        reader.writeFile(words[1], "<data/>");
    else if (words[0] == "end") // end +STATUS RESULT ERROR: executed; end -STATUS: not executed
        endRun(words[1][0] == '+', CommandStatus(words[1].mid(1).toInt()), words.value(2), words.value(3).toInt());
    else // a button by its name
        child<QPushButton>(*dialog, words[0])->click();
    QCoreApplication::sendPostedEvents(dialog.get());
}

QString Story::look() const
{
    QStringList parts;
    const auto isShown = [this](const char* name) {
        return child<QWidget>(*dialog, name)->isVisible();
    };
    if (qobject_cast<MainDialog*>(dialog.get())) {
        for (const char* name : {"add", "read", "remove"}) {
            if (child<QPushButton>(*dialog, QStringLiteral("m_%1PumpButton").arg(name))->isEnabled())
                parts << name;
        }
        if (isShown("m_pumpAssignLabel"))
            parts << child<QLabel>(*dialog, "m_pumpAssignLabel")->text();
        const QImage image = child<QLabel>(*dialog, "m_GraphicLabel2")->pixmap(Qt::ReturnByValue).toImage();
        for (const char* name : {"icon_plus_grey_dark", "icon_connected"}) {
            if (image == lmIcon(QStringLiteral(":/img/Images/%1.svg").arg(name)).pixmap(32, 32).toImage())
                parts << name;
        }
    } else {
        if (isShown("m_ResultLabel"))
            parts << "result";
        const QMovie* movie = child<QLabel>(*dialog, "m_BusyLabel")->movie();
        if (isShown("m_BusyLabel") && !movie->currentPixmap().isNull())
            parts << (movie->state() == QMovie::Running ? "busy" : "idle");
        parts << child<QLabel>(*dialog, "m_MessageLabel")->text()
              << QString::number(child<QProgressBar>(*dialog, "m_ProgressBar")->value())
              << child<QLabel>(*dialog, "m_ProgressLabel")->text();
        if (isShown("m_ReadButton"))
            parts << (child<QPushButton>(*dialog, "m_ReadButton")->isEnabled() ? "read" : "read off");
    }
    const auto* box = child<QDialogButtonBox>(*dialog, "m_DialogButtonBox");
    return parts.join('|') + (box->buttons().constFirst()->isEnabled() ? "|leave" : "|stay");
}

QStringList Story::happened() const
{
    QStringList found;
    for (QString line : qAsConst(s_host.journal.lines)) {
        if (line.startsWith("mcp|<== <"))
            found << line.section('<', 2).section('>', 0, 0);
        else if (!line.startsWith("mcp|") || line.contains("dialog]") || line.contains("Paired pump query"))
            found << line.remove("mcp|").remove(QRegularExpression("\\|\\|$"));
    }
    return found;
}

} // namespace

class DialogsTest final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void tellsStory_data();
    void tellsStory();
    void showsHeader_data();
    void showsHeader();
    void nothingReachesClosedDialog();
    void wholeRun();
    void leavingReadDialog_data();
    void leavingReadDialog();
    void canBeReadAndReached_data();
    void canBeReadAndReached();
};

void DialogsTest::initTestCase()
{
    Logger::instance(nullptr, &s_host.services);
    PatientSession::setHost(&s_host.services, &s_host.database);
}

void DialogsTest::tellsStory_data()
{
    QTest::addColumn<QString>("steps");
    QTest::addColumn<QStringList>("expected");
    const auto row = [](const char* name, const char* steps, const QStringList& expected) {
        QTest::newRow(name) << steps << expected;
    };
    const QString query = "BTISPAIRED P1";
    const QString known = "=== Paired pump query for patient 'P1' finished: snr='%1'.";
    const QString refused = "err|=!= %1. Paired pump query for patient 'P1' not executed by device reader.";
    const QString none = "add|No pump assigned|icon_plus_grey_dark|leave";
    const QString silence = "box|Merivo Connections|Something is wrong with the devicereader. Please reconnect it to "
                            "the PC.";
    const QString retry = "box|Merivo Connections|<b>Request of patient assigned paired pump failed.</b><br/>Do you "
                          "want to retry the request?";
    const QString note = "box|Merivo Connections|<b>NOTE:</b><br/><i>The data recently read from the <b>Sanvio "
                         "Merivo</b> pump <b>PU1234</b> will be discarded!</i><br/>Do you want to proceed anyway?";

    row("main, until the answer", "look,Escape,close,leave,look",
        {query, "icon_plus_grey_dark|stay", "icon_plus_grey_dark|stay"});
    row("main, no result", "end +2,look", {query, known.arg(""), none});
    row("main, 0 is no pump", "end +2 0,look,Escape", {query, known.arg(""), none, "rejected"});
    row("main, two characters are none", "end +2 AB,look,close", {query, known.arg(""), none, "rejected"});
    row("main, three are a pump", "end +2 AB1,look,leave",
        {query, known.arg("AB1"), "read|remove|Pump assigned: S/N 'AB1'.|icon_connected|leave", "rejected"});
    row("main, translated", "translated,end +2 AB1,look,end -4,silence",
        {query, "Sanvio Merivo Pump Plugin", known.arg("AB1"),
         "read|remove|Assigned pump: Serial number 'AB1'.|icon_connected|leave"});
    row("main, translated silence", "translated,silence",
        {query, "Sanvio Merivo Pump Plugin",
         "box|Sanvio Merivo Pump Plugin|The Sanvio Lumo device is not responding. Disconnect the device from the PC "
         "and reconnect it.",
         "rejected"});
    row("main, silence", "silence", {query, silence, "rejected"});
    row("main, silence of the retry goes unnoticed", "end -2 AB1,silence,Escape,look",
        {query, refused.arg(1), query, "icon_plus_grey_dark|stay"});
    row("main, retries and asks", "answer Yes,end -4,end -4,look,end +2 AB1",
        {query, refused.arg(1), query, refused.arg(2), retry, query, "icon_plus_grey_dark|stay", known.arg("AB1")});
    row("main, goes on after No", "answer No,end -4,end -4",
        {query, refused.arg(1), query, refused.arg(2), retry, "rejected", query});
    row("main, reader's error", "end +1 xyz 7",
        {query, "err|=!= Paired pump query for patient 'P1' failed: <7 : xyz>.", "err|Error message box: code='7'",
         "box|Merivo Connections|<b>Unknown error code: 7</b><br/>Please contact the support.", "rejected",
         known.arg("xyz")});
    const QString aborted = "==> [Main dialog] Prepare (abort old running) succeeded.";
    const QString notAborted = "err|=!= [Main dialog] Prepare (abort old running) failed: %1.";
    row("old command, aborted", "end +2,end +2,look", {"ABORT ", aborted, "icon_plus_grey_dark|stay"});
    row("old command, failed", "end +1", {"ABORT ", notAborted.arg("status='1'")});
    row("old command, not executed", "end -2", {"ABORT ", notAborted.arg("not executed")});

    const QString sent = "BTREAD \"PU1234\"";
    row("read, waiting", "look,Escape", {"idle|Looking for pump PU1234|0||leave", "rejected"});
    row("read, progress", "m_ReadButton,look,report 42,look",
        {sent, "busy|Read out device pump |0|Read out running ...|stay",
         "busy|Read out device pump PU1234|42|Read out running ...|stay"});
    row("read, can't be left", "m_ReadButton,Escape,close,leave", {sent});
    row("read, no file, and anew", "m_ReadButton,end +2,look,m_ReadButton,look,leave,end +3,leave",
        {sent, "err|=!= [Read Controller] Readout failed: missing exchange file.",
         "idle|Read out device pump PU1234|100|Read out failed!|read|leave", sent,
         "busy|Read out device pump PU1234|0|Read out running ...|read off|stay",
         "err|=!= [Read Controller] Readout canceled: error='0'.", "rejected"});
    row("read, success", "file I1.xml,m_ReadButton,end +2,look,Escape",
        {sent, "result|Read out device pump PU1234|100|Read out completed!|stay"});
    row("read, translated",
        "translated,look,file I1.xml,m_ReadButton,report 9,look,end -4,look,m_ReadButton,end +2,look",
        {"Sanvio Merivo Pump Plugin - Read pump", "idle|Searching for pump with serial number PU1234|0||leave", sent,
         "busy|Downloading data from pump with serial number PU1234|9|Download in progress...|stay",
         "err|=!= [Read Controller] Readout failed.",
         "idle|Downloading data from pump with serial number PU1234|9|Download failed!|read|leave", sent,
         "result|Downloading data from pump with serial number PU1234|100|Download completed!|read off|stay"});
    row("read, silence", "m_ReadButton,silence", {sent, silence, "critical", "rejected"});
    const auto press = [&row](const char* name, QDialogButtonBox::StandardButton button, const QString& before,
                              const QStringList& expected) {
        row(name, qPrintable(QStringLiteral("%1press %2").arg(before).arg(int(button))), expected);
    };
    press("read, Ok", QDialogButtonBox::Ok, "", {"data", "accepted"});
    press("read, Discard", QDialogButtonBox::Discard, "", {"rejected"});
    press("read, any other", QDialogButtonBox::Help, "", {"rejected"});
    press("read, Abort when ended", QDialogButtonBox::Abort, "state 2,", {"rejected"});
    press("read, Abort and yes", QDialogButtonBox::Abort, "answer Yes,", {note, "rejected"});
    press("read, Abort and no", QDialogButtonBox::Abort, "state 1,answer No,", {note});
}

void DialogsTest::tellsStory()
{
    QFETCH(QString, steps);
    QFETCH(QStringList, expected);
    const QString row = QTest::currentDataTag();
    Story story(!row.startsWith("read"), steps.startsWith("translated"), {},
                row.startsWith("old") ? "running" : "done");
    story.dialog->show();
    for (const QString& step : steps.split(','))
        story.perform(step);
    QCOMPARE(story.happened().join('\n'), expected.join('\n'));
    for (const BoxAnswerer::Box& box : qAsConst(story.boxes.seen)) {
        const bool isQuestion = box.text.contains('?');
        QCOMPARE(box.icon, isQuestion ? QMessageBox::Question : QMessageBox::Warning);
        QCOMPARE(box.buttons, isQuestion ? QMessageBox::Yes | QMessageBox::No : QMessageBox::Ok);
    }
    QCOMPARE(PatientSession::instance()->deviceName(), row.startsWith("main") ? "Sanvio Merivo" : "stays");
    // After a success the dialog is seen for a while, and closes.
    if (!expected.isEmpty() && expected.last().startsWith("result"))
        QTRY_COMPARE_WITH_TIMEOUT(story.happened().mid(expected.size()), (QStringList{"data", "accepted"}), 4000);
}

void DialogsTest::showsHeader_data()
{
    QTest::addColumn<bool>("isMain");
    QTest::addColumn<QString>("simulation");
    for (const bool isMain : {true, false}) {
        QTest::addRow("simulated %d", isMain) << isMain << "/sim";
        QTest::addRow("nothing known %d", isMain) << isMain << "";
    }
}

void DialogsTest::showsHeader()
{
    QFETCH(bool, isMain);
    QFETCH(QString, simulation);
    const bool isSimulated = !simulation.isEmpty();
    const Story story(isMain, false, simulation, "done", isSimulated ? Patient : QStringList());
    const auto label = [&story](const char* name) {
        return child<QLabel>(*story.dialog, name);
    };
    const auto shown = [&label](const char* name) {
        return label(name)->isHidden() ? "hidden" : label(name)->text();
    };
    QCOMPARE(shown("m_SimulationLabel"), QString(isSimulated ? "SimulationPath: '/sim'" : "hidden"));
    QCOMPARE(shown("m_PatientLine1"), QString(isSimulated ? "Doe, Jane" : "hidden"));
    QCOMPARE(shown("m_PatientLine2"), QString(isSimulated ? "03.02.1970, X1" : "hidden"));
    QCOMPARE(shown("m_TitleLabel"), QString(isMain ? "hidden" : "Read out pump"));
    QVERIFY(label("m_TitleLabel")->property("BigSizeFont").toBool());
    for (const char* name : {"m_TitleLabel", "m_PatientLine1", isMain ? "m_PatientLine1" : "m_MessageLabel"})
        QVERIFY(label(name)->property("HighlightFont").toBool());
    for (const char* name :
         {isMain ? "m_GraphicLabel1" : "m_ResultLabel", isMain ? "m_GraphicLabel3" : "m_ResultLabel"})
        QVERIFY(qAbs(label(name)->pixmap(Qt::ReturnByValue).width() - (isMain ? 100 : 50)) <= 1);
    QVERIFY(!story.dialog->windowFlags().testFlag(Qt::WindowContextHelpButtonHint));
    QCOMPARE(s_host.journal.contains("err|Device reader simulation used.||/sim"), isMain && isSimulated);
    QCOMPARE(s_host.journal.contains("mcp|=?= <[at rest]: BTREAD, 2, 0, > status at open.||"), isMain);
}

void DialogsTest::nothingReachesClosedDialog()
{
    Story story(false, false);
    story.dialog->show();
    story.perform("leave");
    story.dialog.reset();
    QTest::qWait(2800); // past the moment when it would have begun by itself
    QCOMPARE(story.happened(), QStringList("rejected"));
}

void DialogsTest::wholeRun()
{
    Story story(true, false, {}, "running");
    story.reader.answer("ABORT", {{50, "done"}});
    story.reader.answer("BTISPAIRED", {{50, "running"}, {300, "done", "PU1234"}});
    story.reader.answer("BTREAD", {{10, "running"}, {300, "done"}});
    story.reader.beforeLastAnswer = [&story](const QString& word) {
        if (word == "BTREAD")
            story.perform("file I1.xml");
    };
    story.dialog->show();
    QElapsedTimer clock;
    clock.start();
    auto* read = child<QPushButton>(*story.dialog, "m_readPumpButton");
    QTRY_VERIFY_WITH_TIMEOUT(read->isEnabled(), 10000);
    QVERIFY(clock.restart() > 2000);         // the pause after an abort
    QTest::mouseClick(read, Qt::LeftButton); // blocks until the read dialog has closed
    QVERIFY(clock.elapsed() > 4600);         // its pause at the begin, and its result
    QCOMPARE(story.happened(),
             (QStringList{"ABORT ", "==> [Main dialog] Prepare (abort old running) succeeded.", "BTISPAIRED P1",
                          "=== Paired pump query for patient 'P1' finished: snr='PU1234'.", "BTREAD \"PU1234\"",
                          "databaseGuid('/data/open.db')", s_host.database.guid, "rejected"}));
    QCOMPARE(PatientSession::instance()->exchangeFilePath(), story.reader.misc() + "/I1.xml");
}

void DialogsTest::leavingReadDialog_data()
{
    QTest::addColumn<bool>("silent");
    QTest::newRow("cancelled") << false;
    QTest::newRow("reader silent") << true;
}

void DialogsTest::leavingReadDialog()
{
    QFETCH(bool, silent);
    Story story(true, false);
    story.dialog->show();
    story.perform("end +2 PU1234");
    QTimer watch;
    connect(&watch, &QTimer::timeout, this, [&watch, silent] {
        auto* dialog = qobject_cast<PumpReadDialog*>(QApplication::activeModalWidget());
        if (!dialog)
            return;
        watch.stop();
        // The main dialog shows what holds when the read dialog has closed.
        PatientSession::instance()->setPump({}, {});
        if (silent)
            Q_EMIT StatusFileParser::instance()->timeout();
        else
            dialog->reject();
    });
    watch.start(5);
    QTest::mouseClick(child<QPushButton>(*story.dialog, "m_readPumpButton"), Qt::LeftButton);
    story.perform("look");
    const QStringList closing = silent ? QStringList("rejected") : QStringList();
    QCOMPARE(story.happened().mid(2).filter(QRegularExpression("^(?!box)")),
             QStringList("add|No pump assigned|icon_plus_grey_dark|leave") + closing);
    QCOMPARE(story.boxes.seen.size(), silent ? 1 : 0); // the main dialog doesn't add a box of its own
}

void DialogsTest::canBeReadAndReached_data()
{
    QTest::addColumn<QString>("steps");
    const QStringList states{"main-querying,",
                             "main-no-pump,end +2",
                             "main-pump,end +2 PU-1003456789",
                             "main-simulation,end +2 PU-1003456789",
                             "read-waiting,",
                             "read-reading,m_ReadButton,report 42 PU-1003456789",
                             "read-completed,file I1.xml,m_ReadButton,end +2",
                             "read-simulation,report 42 PU-1003456789",
                             "read-failed,m_ReadButton,report 42 PU-1003456789,end -4"};
    for (const QString& state : states) {
        for (const char* language : {"source", "displayed"})
            QTest::addRow("%s-%s", qPrintable(state.section(',', 0, 0)), language) << state.section(',', 1);
    }
}

/// With a folder in the environment variable MERIVO_PICTURES each state is saved there as a PNG.
void DialogsTest::canBeReadAndReached()
{
    QFETCH(QString, steps);
    const QString row = QTest::currentDataTag();
    const bool isMain = row.startsWith("main");
    // As a host's style sheet may have it; the dialogs must have room for it.
    qApp->setStyleSheet(
        "*[BigSizeFont=\"true\"] { font-size: 14pt; } *[HighlightFont=\"true\"] { font-weight: bold; }");
    Story story(isMain, row.endsWith("displayed"),
                row.contains("simulation") ? "/home/clinic/Documents/Simulated reader/Test drive 2" : "", "done",
                row.contains("simulation") ? LongName : Patient);
    story.dialog->show();
    for (const QString& step : steps.split(',', Qt::SkipEmptyParts))
        story.perform(step);
    QVERIFY(QTest::qWaitForWindowActive(story.dialog.get()));
    QCoreApplication::processEvents();
    const QString folder = qEnvironmentVariable("MERIVO_PICTURES");
    if (!folder.isEmpty())
        QVERIFY(story.dialog->grab().save(QDir(folder).filePath(row + ".png")));
    QCOMPARE(cutTexts(*story.dialog).join("; "), QString());
    QCOMPARE(namelessWidgets(*story.dialog).join("; "), QString());
    QCOMPARE(tabOrder(*story.dialog).join("; "), readingOrder(*story.dialog).join("; "));
    QCOMPARE(story.dialog->maximumSize(), isMain ? QSize(700, 400) : QSize(QWIDGETSIZE_MAX, 380));
    QCOMPARE(story.dialog->size(), isMain ? QSize(640, 360) : QSize(640, 380));
    qApp->setStyleSheet({});
}

int main(int argc, char** argv)
{
    QApplication::setAttribute(Qt::AA_UseHighDpiPixmaps);
    QApplication application(argc, argv);
    DialogsTest test;
    return QTest::qExec(&test, argc, argv);
}

#include "DialogsTest.moc"
