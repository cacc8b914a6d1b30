// SPDX-FileCopyrightText: 2026 The Merivo Connections developers
// SPDX-License-Identifier: MIT
#include "dialogs/DevicesModel.h"
#include "dialogs/DevicesTable.h"
#include "dialogs/DialogLooks.h"
#include "dialogs/MainDialog.h"
#include "dialogs/PumpAddDialog.h"
#include "dialogs/PumpReadDialog.h"
#include "dialogs/PumpRemoveDialog.h"
#include "plugin/session/Logger.h"
#include "plugin/session/PatientSession.h"
#include "reader/CommandFileWriter.h"
#include "reader/StatusFileParser.h"
#include "support/BoxAnswerer.h"
#include "support/ReaderFolder.h"
#include "support/RecordingHost.h"
#include "toolkit/LmIcons.h"
#include "workflows/AddPumpControl.h"
#include "workflows/ReadoutPumpControl.h"

#include <QAbstractEventDispatcher>
#include <QApplication>
#include <QDialogButtonBox>
#include <QDir>
#include <QElapsedTimer>
#include <QLabel>
#include <QProgressBar>
#include <QPushButton>
#include <QScreen>
#include <QStackedWidget>
#include <QTest>
#include <QTimerEvent>
#include <QTranslator>

#include <algorithm>
#include <functional>
#include <memory>

namespace {

RecordingHost s_host;
const QStringList Patient{"Doe", "Jane", "1970-02-03", "X1"};
const QStringList LongName{"Featherstonehaugh-Cholmondeley", "Maximilian Alexander", "1970-02-03", "Ward 12, Room 4"};
/// Steps that stand for others: a list of pumps is there, a code has come, the user has confirmed it.
const QHash<QString, QString> Shortcuts{
    {"found", "state 2,Search,list S1 S2=P9 S3=P1 S4,end +2,forget"},
    {"coded", "state 2,Search,list S1,end +2,Assign,end +2 4711,forget"},
    {"confirmed", "coded,Confirm,forget"},
    {"reassign", "found,row 1,Reassign"},
    {"pumps", "state 2,m_OverviewButton,list PU-1003456789 PU-1003456790=P9 PU-1003456791=P1 PU-1003456792,end +2"},
    {"stopped", "state 2,Search,report 5,state 1,Stop"},
};

template <typename Widget>
Widget* child(const QWidget& window, const QString& name)
{
    auto* found = window.findChild<Widget*>(name);
    if (!found)
        qFatal("There is no %s", qPrintable(name));
    return found;
}

QPushButton* visibleButton(const QWidget& window, const QString& text)
{
    const QList<QPushButton*> buttons = window.findChildren<QPushButton*>();
    const auto isIt = [&](auto* button) {
        return button->isVisible() && (button->text().remove('&') == text || button->objectName() == text);
    };
    const auto found = std::find_if(buttons.cbegin(), buttons.cend(), isIt);
    if (found == buttons.cend())
        qFatal("There is no button %s", qPrintable(text));
    return *found;
}

QPoint cell(DevicesTable& table, int row)
{
    const QModelIndex index = table.model()->index(row, 0);
    table.scrollTo(index);
    return table.visualRect(index).center();
}

/// Lets the youngest single-shot timer of that interval fire now.
void fireTimer(int interval)
{
    const auto* dispatcher = QAbstractEventDispatcher::instance();
    const QObjectList timers = dispatcher->children();
    const auto isIt = [&](QObject* timer) {
        const auto infos = dispatcher->registeredTimers(timer);
        return !infos.isEmpty() && infos[0].interval == interval;
    };
    const auto found = std::find_if(timers.crbegin(), timers.crend(), isIt);
    if (found == timers.crend())
        qFatal("No timer of %d ms is set", interval);
    QTimerEvent event(dispatcher->registeredTimers(*found).constFirst().timerId);
    QCoreApplication::sendEvent(*found, &event);
}

/// One dialog in a run of the plug-in, with a reader at rest, driven step by step. The host's journal tells what
/// happened: log lines, boxes and signals.
struct Story
{
    explicit Story(const QString& kind, bool translated = false, const QString& simulation = {},
                   const QStringList& pids = Patient, const QString& pump = "PU1234");
    ~Story();
    void tell(const QString& steps);
    void perform(const QString& step);
    void endRun(bool success, CommandStatus status, const QString& result, const QString& error);
    void writeList(const QStringList& pumps);
    /// The dialog of a pump that the main dialog has opened, or else the story's own.
    QDialog* front() const;
    /// Page, what the user is told, and the visible buttons, those that are off in brackets.
    QString look() const;
    /// The journal without what the reader's classes and the workflows write, but for the commands.
    QStringList happened() const;

    ReaderFolder reader;
    QTranslator translator;
    BoxAnswerer boxes{&s_host.journal.lines};
    std::unique_ptr<QDialog> dialog;

private:
    template <typename Dialog>
    Dialog* make(const QString& simulation)
    {
        dialog.reset(new Dialog(&s_host.services, &s_host.database, simulation, nullptr));
        return static_cast<Dialog*>(dialog.get());
    }
};

Story::Story(const QString& kind, bool translated, const QString& simulation, const QStringList& pids,
             const QString& pump)
{
    if (translated &&
        (!translator.load(":/lang/i18n/mc_en_GB.qm") || !QCoreApplication::installTranslator(&translator)))
        qFatal("The translation can't be loaded");
    reader.writeStatus("at rest", "BTREAD", kind == "old" ? "running" : "done");
    CommandFileWriter::create(reader.drive());
    StatusFileParser::create(reader.drive());
    PatientSession::create(nullptr)->setPatientId("P1");
    PatientSession::instance()->setPids(pids);
    PatientSession::instance()->setPump(pump, "stays");
    s_host.journal.clear();
    QStringList& lines = s_host.journal.lines;
    if (kind == "add")
        make<PumpAddDialog>(simulation);
    else if (kind == "remove")
        make<PumpRemoveDialog>(simulation);
    else if (kind == "read")
        QObject::connect(make<PumpReadDialog>(simulation), &PumpReadDialog::importDataReady, [&] { lines << "data"; });
    else
        QObject::connect(make<MainDialog>(simulation), &MainDialog::importDataReady, [&](QString id) { lines << id; });
    if (auto* pumpDialog = qobject_cast<PumpDialog*>(dialog.get()))
        QObject::connect(pumpDialog, &PumpDialog::deviceReaderCritical, [&] { lines << "critical"; });
    QObject::connect(dialog.get(), &QDialog::finished,
                     [&](int result) { lines << (result == QDialog::Accepted ? "accepted" : "rejected"); });
}

Story::~Story()
{
    dialog.reset();
    delete StatusFileParser::instance();
    delete CommandFileWriter::instance();
}

QDialog* Story::front() const
{
    auto* opened = qobject_cast<PumpDialog*>(QApplication::activeModalWidget());
    return opened ? opened : dialog.get();
}

void Story::endRun(bool success, CommandStatus status, const QString& result, const QString& error)
{
    StatusFileParser::instance()->m_lastStatus = {"h", "X", status, result, error.toInt()};
    Q_EMIT StatusFileParser::instance()->finished(success);
    const QObjectList receivers = front()->children();
    for (QObject* receiver : receivers)
        QCoreApplication::sendPostedEvents(receiver);
}

/// The pumps that the reader knows, some with the key of their patient behind a "=".
void Story::writeList(const QStringList& pumps)
{
    QString xml;
    for (const QString& pump : pumps)
        xml += QString("<DEVICE><SERIALNR>%1</SERIALNR><NAME>Cygnara</NAME><INTERFACE><BTADR>B-%1</BTADR>"
                       "<PATIENT_ID>%2</PATIENT_ID></INTERFACE></DEVICE>")
                   .arg(pump.section('=', 0, 0), pump.section('=', 1));
    reader.writeFile("DEVLIST.XML", "<DEVICELIST>" + xml.toUtf8() + "</DEVICELIST>");
}

void Story::tell(const QString& steps)
{
    for (const QString& step : steps.split(',', Qt::SkipEmptyParts)) {
        if (Shortcuts.contains(step)) {
            tell(Shortcuts.value(step));
            continue;
        }
        // What follows a slash happens in the dialog that the first step opens, which blocks until that is closed.
        QStringList parts = step.split('/');
        const QString first = parts.takeFirst();
        QTimer timer;
        QObject::connect(&timer, &QTimer::timeout, [&] {
            if (!parts.isEmpty() && front() != dialog.get())
                tell(parts.takeFirst());
        });
        timer.start(1);
        perform(first);
        if (!parts.isEmpty())
            qFatal("Not reached: %s", qPrintable(parts.join('/')));
    }
}

void Story::perform(const QString& step)
{
    QStringList& lines = s_host.journal.lines;
    const QStringList words = step.split(' ');
    const int number = words.value(1).toInt();
    StatusFileParser* parser = StatusFileParser::instance();
    auto* box = front()->findChild<QDialogButtonBox*>();
    auto* table = front()->findChild<DevicesTable*>();
    const auto replaceSession = [] {
        PatientSession::create(nullptr)->setPatientId("P2");
    };
    const QHash<QString, std::function<void()>> actions{
        {"look",
         [&] {
             lines << look();
         }},
        {"session",
         [&] {
             lines << "pump " + PatientSession::instance()->pumpSerialNumber();
         }},
        {"translated",
         [&] {
             lines << front()->windowTitle();
         }},
        {"nopump",
         [&] {
             PatientSession::instance()->setPump({}, {});
         }},
        {"forget",
         [&] {
             lines.clear();
         }},
        {"silence",
         [&] {
             Q_EMIT parser->timeout();
         }},
        {"answer",
         [&] {
             boxes.answerWith({words[1] == "Yes" ? QMessageBox::Yes : QMessageBox::No});
         }},
        {"Escape",
         [&] {
             QTest::keyClick(front(), Qt::Key_Escape);
         }},
        {"close",
         [&] {
             front()->close();
         }},
        {"diary", replaceSession}, // closed or changed in the host
        {"soon",
         [&] {
             QTimer::singleShot(0, qApp, replaceSession);
         }}, // while the next box is open
        {"after",
         [&] {
             fireTimer(number);
         }},
        {"state",
         [&] {
             parser->m_state = number;
         }},
        {"file",
         [&] {
             reader.writeFile(words[1], "<data/>");
         }},
        {"list",
         [&] {
             writeList(words.mid(1));
         }},
        {"row",
         [&] {
             QTest::mouseClick(table->viewport(), Qt::LeftButton, {}, cell(*table, number));
         }},
        {"down",
         [&] {
             QTest::keyClick(table, Qt::Key_Down);
         }},
        {"end",
         [&] { // +STATUS RESULT ERROR: executed; -STATUS: not executed
             endRun(words[1][0] == '+', CommandStatus(words[1].midRef(1).toInt()), words.value(2), words.value(3));
         }},
        {"press",
         [&] { // a button that no form gives the box
             box->setStandardButtons(QDialogButtonBox::Cancel | QDialogButtonBox::StandardButton(number));
             box->button(QDialogButtonBox::StandardButton(number))->click();
         }},
        {"report",
         [&] {
             if (auto* read = front()->findChild<ReadoutPumpControl*>())
                 Q_EMIT read->readoutProgress(words.value(2, "PU1234"), number);
             else
                 Q_EMIT front()->findChild<AddPumpControl*>()->pairingSearchProgress({}, number);
         }},
        {"limits", [&] { // of the run that follows an abort
             const QStringList wanted{
                 "mcp|=== Observer start requested (in 5 msec).||",
                 "mcp|=== Observer polling started with timeouts of '10' (Start) and '20' (Stop) secs.||"};
             const auto isThere = [&](const QString& line) {
                 return s_host.journal.contains(line);
             };
             if (!QTest::qWaitFor([&] { return std::all_of(wanted.cbegin(), wanted.cend(), isThere); }))
                 lines << "other limits";
         }}};
    if (actions.contains(words[0]))
        actions.value(words[0])();
    else
        QTest::mouseClick(visibleButton(*front(), step), Qt::LeftButton);
    QCoreApplication::sendPostedEvents(front());
}

QString Story::look() const
{
    QStringList parts;
    if (const auto* pages = front()->findChild<QStackedWidget*>())
        parts << QString::number(pages->currentIndex());
    for (const auto* label : front()->findChildren<QLabel*>(
             QRegularExpression("Result|Busy.*Label|m_MessageLabel|PairingCode|Progress|Graphic.*2|pumpAssign"))) {
        if (!label->isVisible() || front()->objectName() == "PumpRemoveDialog")
            continue;
        if (const QMovie* movie = label->movie())
            parts << (movie->currentPixmap().isNull()     ? "nothing"
                      : movie->state() == QMovie::Running ? "busy"
                                                          : "idle");
        else if (!label->pixmap(Qt::ReturnByValue).isNull()) {
            QString shown = label->objectName();
            for (const char* name : {"icon_plus_grey_dark", "icon_connected"}) {
                if (label->pixmap(Qt::ReturnByValue).toImage() ==
                    lmIcon(QStringLiteral(":/img/Images/%1.svg").arg(name)).pixmap(32, 32).toImage())
                    shown = name;
            }
            parts << shown;
        } else
            parts << label->text();
    }
    if (const auto* bar = front()->findChild<QProgressBar*>())
        parts << QString::number(bar->value());
    for (const auto* button : front()->findChildren<QPushButton*>()) {
        if (button->isVisible())
            parts << QString(button->isEnabled() ? "%1" : "(%1)").arg(button->text().remove('&'));
    }
    return parts.join('|');
}

QStringList Story::happened() const
{
    QStringList found;
    for (QString line : qAsConst(s_host.journal.lines)) {
        if (line.startsWith("mcp|<== <"))
            found << line.section('<', 2).section('>', 0, 0);
        else if (!line.contains(QRegularExpression("^mcp|^err.---|Controller\\]|^databaseGuid|^patients|^path")) ||
                 line.contains("dialog]") || line.contains("Paired pump query"))
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
    void destroyedDialogIsNotReached();
    void wholeRun();
    void showsDevices();
    void staysWhole_data();
    void staysWhole();
    void canBeReadAndReached_data();
    void canBeReadAndReached();
};

void DialogsTest::initTestCase()
{
    Logger::instance(nullptr, &s_host.services);
    PatientSession::setHost(&s_host.services, &s_host.database);
    s_host.database.records = {{"1", {"P1", Patient}}, {"9", {"P9", {"%3 <Old", "R&D"}}}};
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
    const QString unknown = "icon_plus_grey_dark|(Add pump)|(Read pump)|(Remove pump)|(Close)";
    const QString none = "icon_plus_grey_dark|No pump assigned|Add pump|(Read pump)|(Remove pump)|Close";
    const QString some = "icon_connected|%1|(Add pump)|Read pump|Remove pump|Close";
    const QString title = "box|Merivo Connections|";
    const QString silence = title + "Something is wrong with the devicereader. Please reconnect it to the PC.";
    const QString retry = title + "<b>Request of patient assigned paired pump failed.</b><br/>Do you want to retry the "
                                  "request?";
    const QString note = title + "<b>NOTE:</b><br/><i>The data recently read from the <b>Sanvio Merivo</b> pump "
                                 "<b>PU1234</b> will be discarded!</i><br/>Do you want to proceed anyway?";

    row("main, until the answer", "look,Escape,close,Close,look", {query, unknown, unknown});
    row("main, no result", "end +2,look", {query, known.arg(""), none});
    row("main, 0 is no pump", "end +2 0,look,Escape", {query, known.arg(""), none, "rejected"});
    row("main, two characters are none", "end +2 AB,look,close", {query, known.arg(""), none, "rejected"});
    row("main, three are a pump", "end +2 AB1,look,Close",
        {query, known.arg("AB1"), some.arg("Pump assigned: S/N 'AB1'."), "rejected"});
    row("main, translated", "translated,end +2 AB1,look,end -4,silence",
        {query, "Sanvio Merivo Pump Plugin", known.arg("AB1"), some.arg("Assigned pump: Serial number 'AB1'.")});
    row("main, translated silence", "translated,silence",
        {query, "Sanvio Merivo Pump Plugin",
         "box|Sanvio Merivo Pump Plugin|The Sanvio Lumo device is not responding. Disconnect the device from the PC "
         "and reconnect it.",
         "rejected"});
    row("main, silence", "silence", {query, silence, "rejected"});
    row("main, silence of the retry goes unnoticed", "end -2 AB1,silence,Escape,look",
        {query, refused.arg(1), query, unknown});
    row("main, retries and asks", "answer Yes,end -4,end -4,look,end +2 AB1",
        {query, refused.arg(1), query, refused.arg(2), retry, query, unknown, known.arg("AB1")});
    row("main, goes on after No", "answer No,end -4,end -4",
        {query, refused.arg(1), query, refused.arg(2), retry, "rejected", query});
    row("main, reader's error", "end +1 xyz 7",
        {query, "err|=!= Paired pump query for patient 'P1' failed: <7 : xyz>.", "err|Error message box: code='7'",
         title + "<b>Unknown error code: 7</b><br/>Please contact the support.", "rejected", known.arg("xyz")});
    const QString aborted = "==> [Main dialog] Prepare (abort old running) succeeded.";
    const QString notAborted = "err|=!= [Main dialog] Prepare (abort old running) failed: %1.";
    row("old command, aborted", "end +2,end +2,look,after 2000", {"ABORT ", aborted, unknown, query});
    row("old command, failed", "end +1", {"ABORT ", notAborted.arg("status='1'")});
    row("old command, not executed", "end -2", {"ABORT ", notAborted.arg("not executed")});

    const QString sent = "BTREAD \"PU1234\"";
    const QString sentNew = "BTREAD \"S1\"";
    row("read, waiting", "look,Escape", {"idle|Looking for pump PU1234||0|Cancel", "rejected"});
    row("read, progress", "after 2600,look,report 42,look",
        {sent, "busy|Read out device pump |Read out running ...|0|(Cancel)",
         "busy|Read out device pump PU1234|Read out running ...|42|(Cancel)"});
    row("read, can't be left", "after 2600,Escape,close,Cancel", {sent});
    row("read, no file, and anew", "after 2600,end +2,look,Read pump,look,Cancel,end +3,Cancel",
        {sent, "idle|Read out device pump PU1234|Read out failed!|100|Read pump|Cancel", sent,
         "busy|Read out device pump PU1234|Read out running ...|0|(Read pump)|(Cancel)", "rejected"});
    row("read, success", "file I1.xml,after 2600,end +2,look,Escape,after 2000",
        {sent, "m_ResultLabel|Read out device pump PU1234|Read out completed!|100|(Cancel)", "data", "accepted"});
    row("read, translated", "translated,look,file I1.xml,after 2600,report 9,look,end -4,look,Read pump,end +2,look",
        {"Sanvio Merivo Pump Plugin - Read pump", "idle|Searching for pump with serial number PU1234||0|Cancel", sent,
         "busy|Downloading data from pump with serial number PU1234|Download in progress...|9|(Cancel)",
         "idle|Downloading data from pump with serial number PU1234|Download failed!|9|Read pump|Cancel", sent,
         "m_ResultLabel|Downloading data from pump with serial number PU1234|Download completed!|100|(Read "
         "pump)|(Cancel)"});
    row("read, silence", "after 2600,silence", {sent, silence, "critical", "rejected"});
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

    // The add dialog: every state, what is open in it, and every event that it knows.
    row("add, ready", "look,Escape", {"0|idle|Search|Cancel", "rejected"});
    row("add, searching", "state 2,Search,look,Escape,report 0,look,report 1,look,report 100,look",
        {"SEARCH 00100", "0|busy|(Search)|(Cancel)", "0|busy|(Search)|(Cancel)", "0|busy|Stop|(Cancel)",
         "0|busy|(Stop)|(Cancel)"});
    row("add, none found", "state 2,Search,report 9,end +2,look",
        {"SEARCH 00100", title + "No device was found.", "0|idle|Search|Cancel"});
    row("add, search failed", "state 2,Search,end -4", {"SEARCH 00100", "rejected"});
    row("add, stopped",
        "stopped,look,Escape,report 9,end +3,look,after 3000,limits,end +2,look,report 7,state 2,Search",
        {"SEARCH 00100", "ABORT ", "0|busy|(Stop)|(Cancel)", "0|busy|(Stop)|(Cancel)", "0|idle|Search|Cancel",
         "SEARCH 00100"});
    row("add, stop not executed", "stopped,end +3,after 3000,end -2,look",
        {"SEARCH 00100", "ABORT ", silence, "0|idle|Search|Cancel"});
    row("add, pumps came before the stop", "stopped,list S1,end +2,after 3000,end +2",
        {"SEARCH 00100", "ABORT ", "rejected"});
    row("add, Search while the last run hangs", "state 1,Search,look", {"ABORT ", "0|idle|(Search)|(Cancel)"});
    row("add, one free pump", "state 2,Search,list S1,end +2,look,Cancel",
        {"SEARCH 00100", "1|Assign|Cancel", "rejected"});
    row("add, one pump of another", "state 2,Search,list S1=P9,end +2,look", {"SEARCH 00100", "1|Reassign|Cancel"});
    row("add, several pumps", "found,look,row 1,look,row 2,look,Escape",
        {"1|(Assign)|Cancel", "1|Reassign|Cancel", "1|Assign|Cancel", "rejected"});
    row("add, by keys alone", "found,down,down,look", {"1|Reassign|Cancel"});
    row("add, fourth row", "found,row 3,Assign", {title + "No device selected.", "rejected"});
    row("add, pairing", "found,row 2,Assign,look,Escape,end -4",
        {"BTPAIR B-S3 \"S3\" P1", "2|busy|(Confirm)|(Decline)|(Cancel)", "rejected"});
    row("add, code", "coded,look,Escape,close", {"2|4711|Confirm|Decline|(Cancel)"});
    row("add, declined", "coded,Decline,look,end +1 x 31",
        {"BTPAIRCONFIRM 0", "2|4711|(Confirm)|(Decline)|(Cancel)", "rejected"});
    row("add, confirmed", "coded,Confirm,look,Escape,end +2,look,OK,session",
        {"BTPAIRCONFIRM 1", "3|busy|(OK)|(Cancel)", "3|OK|Cancel", "accepted", "pump S1"});
    row("add, Cancel after all", "confirmed,end +2,Cancel,session", {"rejected", "pump S1"});
    row("add, confirm failed", "confirmed,end +3,session", {"rejected", "pump "});
    const QString question = title + "Are you sure to reassign the pump <b>S2</b> from patient <b>'%3 &lt;Old, "
                                     "R&amp;D'</b> to patient <b>'Doe, Jane'</b>?<br/><b>Note:</b><br/><i>The data "
                                     "that was downloaded from the pump remains in the patient record.</b>";
    row("add, reassign hint", "reassign,look,Cancel", {"4|Prev|OK|Cancel", "rejected"});
    row("add, No and Prev", "reassign,answer No,OK,look,Escape,OK,Prev,look",
        {question, "4|Prev|(OK)|(Cancel)", "1|(Reassign)|Cancel"});
    row("add, reassigned", "reassign,answer Yes,OK,look,Escape,end +2,session",
        {question, "BTPUMPREASSIGN \"S2\" P1", "4|(Prev)|(OK)|(Cancel)", "accepted", "pump S2"});
    row("add, reassign failed", "reassign,answer Yes,OK,end -4", {question, "BTPUMPREASSIGN \"S2\" P1", "rejected"});
    press("add, any other", QDialogButtonBox::Help, "", {});
    press("add, Abort", QDialogButtonBox::Abort, "", {"ABORT "});
    for (const char* steps : {"found", "coded", "confirmed", "reassign"})
        row(qPrintable(QString("add, silence: ") + steps), qPrintable(steps + QString(",silence")),
            {silence, "critical", "rejected"});
    row("add, translated", "translated,state 2,Search,report 5,look",
        {"Sanvio Merivo Pump Plugin - Add pump", "SEARCH 00100", "0|busy|Abort|(Cancel)"});

    const QString sure =
        title + "Are you sure to remove the pump <b>PU1234</b> from patient <b>Doe, Jane</b>?<br/><b>Note:</b><br/><i> "
                "The data that was downloaded from the pump remains in the patient record.</i>";
    const QString removal = "BTDELETEADDR  \"PU1234\"";
    row("remove, cancelled", "look,Cancel", {"Remove|Cancel", "rejected"});
    row("remove, No", "answer No,Remove,look,Escape", {sure, "Remove|Cancel", "rejected"});
    row("remove, Yes", "row 0,answer Yes,Remove,look,Escape,end +2,session",
        {sure, removal, "(Remove)|(Cancel)", "accepted", "pump PU1234"});
    row("remove, failed", "answer Yes,Remove,end +3", {sure, removal, "rejected"});
    row("remove, silence", "answer Yes,Remove,silence", {sure, removal, silence, "critical", "rejected"});
    press("remove, any other", QDialogButtonBox::Help, "", {"rejected"});

    // What the main dialog makes of the others' ends.
    const QString has = "end +2 PU1234,forget,";
    const QString has1 = "end +2,forget,";
    const QString pump = some.arg("Pump assigned: S/N '%1'.");
    const auto mainRow = [&row](const char* name, const QString& steps, const QStringList& expected) {
        row(name, qPrintable(steps), expected);
    };
    mainRow("main, read cancelled", has + "Read pump/nopump/Cancel,look", {none});
    mainRow("main, silence in the read-out", has + "Read pump/after 2600/silence", {sent, silence, "rejected"});
    mainRow("main, silence while removing", has + "answer Yes,Remove pump/Remove/silence,look",
            {sure, removal, silence, pump.arg("PU1234")});
    mainRow("main, added and read", has1 + "Add pump/confirmed/end +2/OK/look/Cancel,look",
            {"idle|Looking for pump S1||0|Cancel", pump.arg("S1")});
    mainRow("main, added", has1 + "Add pump/confirmed/end +2/Cancel,look", {pump.arg("S1")});
    mainRow("main, removed", has + "answer Yes,Remove pump/Remove/end +2,look", {sure, removal, none});
    mainRow("main, not removed", has + "answer Yes,Remove pump/Remove/end -4,look",
            {sure, removal, pump.arg("PU1234")});

    // A diary that is closed or changed: nothing is sent any more, and the user is told once.
    const QStringList gone{"err|=!= [Main dialog] Diary closed or changed, run ended.",
                           title + "The patient's diary was closed or changed. Nothing was imported. Please open the "
                                   "diary and start the plugin again.",
                           "rejected", "pump "};
    int count = 0;
    for (const QString& steps :
         {QString("forget,diary,end +2 PU1"), has + "diary,Read pump", has + "diary,Remove pump",
          has1 + "diary,Add pump", has1 + "Add pump/found/diary/Cancel", has1 + "Add pump/confirmed/diary/end +2/OK",
          has + "answer Yes,Remove pump/Remove/forget/diary/end +2",
          has + "Read pump/file I1.xml/after 2600/forget/diary/end +2/after 2000"})
        QTest::addRow("main, diary %d", ++count) << steps + ",session" << gone;
    mainRow("main, diary during the retry", "end -4,forget,soon,end -4,session",
            QStringList{refused.arg(2), retry} + gone);
    for (const char* steps :
         {"add|found,diary,row 0,Assign", "add|coded,diary,Confirm", "add|coded,diary,Decline",
          "add|confirmed,diary,end +2,OK", "add|reassign,diary,OK", "add|reassign,answer Yes,OK,forget,diary,end +2",
          "remove|diary,Remove", "remove|answer Yes,Remove,forget,diary,end +2", "read|diary,after 2600",
          "read|after 2600,file I1.xml,end +2,forget,diary,after 2000"})
        QTest::addRow("%s", steps) << QString(steps).section('|', 1) << QStringList("rejected");
    row("add, diary during the question", "reassign,answer Yes,soon,OK", {question, "rejected"});
    row("remove, diary during the question", "answer Yes,soon,Remove", {sure, "rejected"});
}

void DialogsTest::tellsStory()
{
    QFETCH(QString, steps);
    QFETCH(QStringList, expected);
    const QString row = QTest::currentDataTag();
    Story story(row.section(QRegularExpression("[ ,|]"), 0, 0), steps.startsWith("translated"));
    story.dialog->show();
    story.tell(steps);
    QCOMPARE(story.happened().join('\n'), expected.join('\n'));
    for (const BoxAnswerer::Box& box : qAsConst(story.boxes.seen)) {
        const bool isQuestion = box.text.contains('?');
        QCOMPARE(box.icon, isQuestion ? QMessageBox::Question : QMessageBox::Warning);
        QCOMPARE(box.buttons, isQuestion ? QMessageBox::Yes | QMessageBox::No : QMessageBox::Ok);
    }
}

void DialogsTest::showsHeader_data()
{
    QTest::addColumn<QString>("kind");
    QTest::addColumn<QString>("title");
    QTest::addColumn<QString>("pictures");
    QTest::newRow("main") << "main"
                          << "hidden"
                          << "m_GraphicLabel1 100 m_GraphicLabel3 100";
    QTest::newRow("read") << "read"
                          << "Read out pump"
                          << "m_ResultLabel 50";
    QTest::newRow("add") << "add"
                         << "Add new pump"
                         << "";
    QTest::newRow("remove") << "remove"
                            << "Remove Pump"
                            << "";
}

void DialogsTest::showsHeader()
{
    QFETCH(QString, kind);
    QFETCH(QString, title);
    QFETCH(QString, pictures);
    for (const bool isSimulated : {true, false}) {
        const Story story(kind, false, isSimulated ? "/sim" : "", isSimulated ? Patient : QStringList());
        const auto shown = [&story](const char* name) {
            const auto* label = child<QLabel>(*story.dialog, name);
            return label->isHidden() ? "hidden" : label->text();
        };
        QCOMPARE(shown("m_SimulationLabel"), QString(isSimulated ? "SimulationPath: '/sim'" : "hidden"));
        QCOMPARE(shown("m_PatientLine1"), QString(isSimulated ? "Doe, Jane" : "hidden"));
        QCOMPARE(shown("m_PatientLine2"), QString(isSimulated ? "03.02.1970, X1" : "hidden"));
        QCOMPARE(shown("m_TitleLabel"), title);
        QVERIFY(child<QLabel>(*story.dialog, "m_TitleLabel")->property("BigSizeFont").toBool());
        for (const char* name : {"m_TitleLabel", "m_PatientLine1"})
            QVERIFY(child<QLabel>(*story.dialog, name)->property("HighlightFont").toBool());
        const QStringList words = pictures.split(' ', Qt::SkipEmptyParts);
        for (int i = 0; i < words.size(); i += 2) {
            const auto* label = child<QLabel>(*story.dialog, words[i]);
            QVERIFY(qAbs(label->pixmap(Qt::ReturnByValue).width() - words[i + 1].toInt()) <= 1);
        }
        QVERIFY(!story.dialog->windowFlags().testFlag(Qt::WindowContextHelpButtonHint));
        const bool isMain = kind == "main";
        QCOMPARE(s_host.journal.contains("err|Device reader simulation used.||/sim"), isMain && isSimulated);
        QCOMPARE(s_host.journal.contains("mcp|=?= <[at rest]: BTREAD, 2, 0, > status at open.||"), isMain);
    }
}

void DialogsTest::destroyedDialogIsNotReached()
{
    Story story("read");
    story.dialog.reset();
    fireTimer(2600);
    QCOMPARE(story.happened(), QStringList());
}

void DialogsTest::wholeRun()
{
    Story story("old");
    story.reader.answer("ABORT", {{50, "done"}});
    story.reader.answer("BTISPAIRED", {{50, "running"}, {300, "done", "0"}});
    story.reader.answer("SEARCH", {{10, "running"}, {300, "done"}});
    story.reader.answer("BTPAIR", {{10, "done", "4711"}});
    story.reader.answer("BTPAIRCONFIRM", {{10, "done"}});
    story.reader.answer("BTREAD", {{10, "running"}, {300, "done"}});
    story.reader.beforeLastAnswer = [&story](const QString& word) {
        story.perform(word == "BTREAD" ? "file I1.xml" : "list S1");
    };
    // What the host does with its diary once it has the data is no failure of the run.
    QString file;
    connect(static_cast<MainDialog*>(story.dialog.get()), &MainDialog::importDataReady, this, [&file] {
        file = PatientSession::instance()->exchangeFilePath();
        PatientSession::create(nullptr);
    });
    story.dialog->show();
    QElapsedTimer clock;
    clock.start();
    auto* add = child<QPushButton>(*story.dialog, "m_addPumpButton");
    QTRY_VERIFY_WITH_TIMEOUT(add->isEnabled(), 10000);
    QVERIFY(clock.restart() > 2000); // the pause after an abort
    QStringList clicks{"Search", "Assign", "Confirm", "OK"};
    QTimer user;
    connect(&user, &QTimer::timeout, this, [&] {
        if (!clicks.isEmpty() && story.front() != story.dialog.get() &&
            story.look().contains(QRegularExpression("\\b" + clicks[0] + "(\\||$)")))
            story.perform(clicks.takeFirst());
    });
    user.start(5);
    story.perform("Add pump");       // blocks until the read dialog has closed
    QVERIFY(clock.elapsed() > 4600); // that one's pause at the begin, and its result
    QCOMPARE(story.happened(), (QStringList{"ABORT ", "==> [Main dialog] Prepare (abort old running) succeeded.",
                                            "BTISPAIRED P1", "=== Paired pump query for patient 'P1' finished: snr=''.",
                                            "SEARCH 00100", "BTPAIR B-S1 \"S1\" P1", "BTPAIRCONFIRM 1", "BTREAD \"S1\"",
                                            s_host.database.guid, "rejected"}));
    QCOMPARE(file, story.reader.misc() + "/I1.xml");
}

void DialogsTest::showsDevices()
{
    const Story story("main"); // the open patient is P1
    const DevicesModel model({{"B", "S1", "Name", "", false},
                              {"B", "S2", "", "P9", true},
                              {"B", "S3", "", "P1", true},
                              {"B", "S4", "", "P7", false}},
                             nullptr);
    QStringList cells;
    for (int row = -1; row <= 4; ++row) {
        for (int column = 0; column < 4; ++column)
            cells << model.data(row < 0 || column > 2 ? QModelIndex() : model.index(row, column)).toString();
        cells << model.data(model.index(row, 1), Qt::ToolTipRole).toString() << model.deviceAt(row).serialNumber
              << (model.isAssignedToOther(row) ? "other" : "");
    }
    QCOMPARE(cells.join('|'),
             QString("|||||||S1||Name|||S1||S2|P9|||%3 <Old, R&D|S2|other|S3|P1|||Doe, Jane|S3||S4|P7||||S4||||||||"));
    const qreal size = QFont().pointSizeF();
    const QModelIndex first = model.index(0, 0);
    QCOMPARE(first.data(Qt::FontRole).value<QFont>().pointSizeF(), size * 1.1);
    QCOMPARE(model.headerData(5, Qt::Horizontal, Qt::FontRole).value<QFont>().pointSizeF(), size * 1.2);
    QCOMPARE(first.data(Qt::TextAlignmentRole), QVariant(1));
    QVERIFY(!first.data(Qt::DecorationRole).isValid() &&
            !model.headerData(3, Qt::Horizontal, Qt::TextAlignmentRole).isValid());
    QVERIFY(first.data(Qt::ToolTipRole).isValid());
    QCOMPARE(model.headerData(0, Qt::Vertical), QVariant(1)); // the framework's own
}

void DialogsTest::staysWhole_data()
{
    QTest::addColumn<QString>("kind");
    QTest::addColumn<QString>("text");
    for (const char* kind : {"main", "read", "add", "remove"}) {
        QTest::addRow("%s, nothing", kind) << kind << "";
        QTest::addRow("%s, one word", kind) << kind << QString(10000, 'W');
        QTest::addRow("%s, odd words", kind) << kind << QString("<i>\xC3\xA4 \"%1' &amp; %L2</b>\n").repeated(500);
    }
}

/// Whatever stands in the reader's files, a dialog keeps its size, a box fits on the screen, and nothing takes long.
void DialogsTest::staysWhole()
{
    QFETCH(QString, kind);
    QFETCH(QString, text);
    Story story(kind, false, {}, {text, text, text, text}, text);
    const QSize size = story.dialog->size();
    QElapsedTimer clock;
    clock.start();
    story.dialog->show();
    if (kind == "main") {
        story.endRun(true, CommandStatus::Done, text, {});
    } else if (kind == "read") {
        Q_EMIT story.dialog->findChild<ReadoutPumpControl*>()->readoutProgress(text, 5);
    } else if (kind == "add") {
        story.tell("state 2,Search");
        story.writeList(QStringList{text.toHtmlEscaped() + "=P9"} + QVector<QString>(9999, "S").toList());
        story.tell("end +2,row 0,Reassign,answer No,OK,Prev,row 1,Assign");
        story.endRun(true, CommandStatus::Done, text, {});
        QCOMPARE(child<QLabel>(*story.dialog, "m_AssignPairingCode")->text(), text);
    } else {
        story.tell("answer No,Remove");
    }
    QVERIFY(QTest::qWaitForWindowExposed(story.dialog.get()));
    QCoreApplication::processEvents();
    QCOMPARE(story.dialog->size(), size);
    QCOMPARE(story.boxes.seen.size(), kind == "add" || kind == "remove" ? 1 : 0);
    for (const BoxAnswerer::Box& box : qAsConst(story.boxes.seen))
        QVERIFY(box.size.boundedTo(QGuiApplication::primaryScreen()->size()) == box.size);
    QVERIFY(clock.elapsed() < 5000);
}

void DialogsTest::canBeReadAndReached_data()
{
    QTest::addColumn<QString>("steps");
    const QStringList states{"main-querying",
                             "main-no-pump,end +2",
                             "main-pump,end +2 PU-1003456789",
                             "main-simulation,end +2 PU-1003456789",
                             "read-waiting",
                             "read-reading,after 2600,report 42 PU-1003456789",
                             "read-completed,file I1.xml,after 2600,end +2",
                             "read-simulation,report 42 PU-1003456789",
                             "read-failed,after 2600,report 42 PU-1003456789,end -4",
                             "add-ready",
                             "add-searching,state 2,m_OverviewButton,report 30",
                             "add-stopping,state 2,m_OverviewButton,report 30,state 1,m_OverviewButton",
                             "add-simulation,pumps",
                             "add-choosing,pumps,row 1",
                             "add-one-pump,state 2,m_OverviewButton,list PU-1003456789,end +2",
                             "add-pairing,pumps,row 0,m_AssignButton",
                             "add-code,pumps,row 0,m_AssignButton,end +2 847213",
                             "add-declining,pumps,row 0,m_AssignButton,end +2 847213,m_DeclineButton",
                             "add-confirming,pumps,row 0,m_AssignButton,end +2 847213,m_ConfirmButton",
                             "add-finished,pumps,row 0,m_AssignButton,end +2 847213,m_ConfirmButton,end +2",
                             "add-reassign,pumps,row 1,m_AssignButton",
                             "add-answered-no,pumps,row 1,m_AssignButton,answer No,OK",
                             "add-reassigning,pumps,row 1,m_AssignButton,answer Yes,OK",
                             "remove-asking",
                             "remove-simulation",
                             "remove-removing,answer Yes,Remove"};
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
    const QString kind = row.section('-', 0, 0);
    // As a host's style sheet may have it; the dialogs must have room for it.
    qApp->setStyleSheet(
        "*[BigSizeFont=\"true\"] { font-size: 14pt; } *[HighlightFont=\"true\"] { font-weight: bold; }");
    Story story(kind, row.endsWith("displayed"),
                row.contains("simulation") ? "/home/clinic/Documents/Simulated reader/Test drive 2" : "",
                row.contains("simulation") ? LongName : Patient, "PU-1003456789");
    story.dialog->show();
    story.tell(steps);
    story.dialog->activateWindow(); // a box may have been in front
    QVERIFY(QTest::qWaitForWindowActive(story.dialog.get()));
    QCoreApplication::processEvents();
    const QString folder = qEnvironmentVariable("MERIVO_PICTURES");
    if (!folder.isEmpty())
        QVERIFY(story.dialog->grab().save(QDir(folder).filePath(row + ".png")));
    QCOMPARE(cutTexts(*story.dialog).join("; "), QString());
    QCOMPARE(namelessWidgets(*story.dialog).join("; "), QString());
    QCOMPARE(tabOrder(*story.dialog).join("; "), readingOrder(*story.dialog).join("; "));
    const QHash<QString, QRect> sizes{{"main", {700, 400, 640, 360}},
                                      {"read", {QWIDGETSIZE_MAX, 380, 640, 380}},
                                      {"add", {QWIDGETSIZE_MAX, 440, 640, 430}},
                                      {"remove", {QWIDGETSIZE_MAX, 380, 640, 360}}};
    QCOMPARE(QRect({story.dialog->maximumWidth(), story.dialog->maximumHeight()}, story.dialog->size()), sizes[kind]);
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
