// SPDX-FileCopyrightText: 2026 The Merivo Connections developers
// SPDX-License-Identifier: MIT
#include "dialogs/DevicesModel.h"
#include "dialogs/DevicesTable.h"
#include "dialogs/DialogHeader.h"
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
#include <QLayout>
#include <QMetaEnum>
#include <QProgressBar>
#include <QPushButton>
#include <QScreen>
#include <QStackedWidget>
#include <QTest>
#include <QTimerEvent>
#include <QTranslator>

#include <algorithm>
#include <ctime>
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
    QTimer* youngest = nullptr;
    for (const QWidget* window : QApplication::topLevelWidgets()) {
        for (QTimer* timer : window->findChildren<QTimer*>()) {
            if (timer->isActive() && timer->interval() == interval &&
                (!youngest || timer->remainingTime() > youngest->remainingTime()))
                youngest = timer;
        }
    }
    if (!youngest)
        qFatal("No timer of %d ms is set", interval);
    QTimerEvent event(youngest->timerId());
    QCoreApplication::sendEvent(youngest, &event);
}

/// A host that refreshes.
void reopenDiary()
{
    const QStringList pids = PatientSession::instance()->pids();
    PatientSession::open("P1")->setPids(pids);
}

/// One dialog in a run of the plug-in, with a reader at rest, driven step by step. The host's journal tells what
/// happened: log lines, boxes and signals.
struct Story
{
    explicit Story(const QString& kind, bool translated = false, const QString& simulation = {},
                   const QStringList& pids = Patient, const QString& pump = "PU1234", const QString& events = {});
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

    /// Limits and delay of the last polling run that was asked for. None takes place but in a "whole" run: each ends by
    /// a step, however long that takes.
    QVector<int> askedFor;
    /// How the host ends the diary: by opening another one ("changed"), by closing it ("closed"), or by closing and
    /// opening it ("reopened"). One that is "refreshed" opens it again for its patient at each step and each record.
    QString diaryEvents;
    ReaderFolder reader;
    QTranslator translator;
    BoxAnswerer boxes{&s_host.journal.lines};
    std::unique_ptr<QDialog> dialog;
};

Story::Story(const QString& kind, bool translated, const QString& simulation, const QStringList& pids,
             const QString& pump, const QString& events)
    : diaryEvents(events)
{
    if (translated &&
        (!translator.load(":/lang/i18n/mc_en_GB.qm") || !QCoreApplication::installTranslator(&translator)))
        qFatal("The translation can't be loaded");
    reader.writeStatus("at rest", "BTREAD", kind == "old" || kind == "whole" ? "running" : "done");
    CommandFileWriter::create(reader.drive());
    StatusFileParser* parser = StatusFileParser::create(reader.drive());
    if (kind != "whole")
        QObject::disconnect(parser, &StatusFileParser::pollingRequested, nullptr, nullptr);
    const auto remember = [this](int stop, int start, int delay) {
        askedFor = {stop, start, delay};
    };
    QObject::connect(parser, &StatusFileParser::pollingRequested, parser, remember, Qt::DirectConnection);
    PatientSession::create(nullptr)->setPatientId("P1");
    PatientSession::instance()->setPids(pids);
    PatientSession::instance()->setPump(pump, "stays");
    s_host.journal.clear();
    QStringList& lines = s_host.journal.lines;
    if (events == "refreshed")
        s_host.services.beforeLogLine = [](const QString&) {
            reopenDiary();
        };
    if (kind == "add")
        dialog = std::make_unique<PumpAddDialog>(&s_host.services, &s_host.database, simulation, nullptr);
    else if (kind == "remove")
        dialog = std::make_unique<PumpRemoveDialog>(&s_host.services, &s_host.database, simulation, nullptr);
    else if (kind == "read")
        dialog = std::make_unique<PumpReadDialog>(&s_host.services, &s_host.database, simulation, nullptr);
    else
        dialog = std::make_unique<MainDialog>(&s_host.services, &s_host.database, simulation, nullptr);
    if (auto* main = qobject_cast<MainDialog*>(dialog.get()))
        QObject::connect(main, &MainDialog::importDataReady, main, [&](QString guid) { lines << guid; });
    if (auto* read = qobject_cast<PumpReadDialog*>(dialog.get()))
        QObject::connect(read, &PumpReadDialog::importDataReady, read, [&] { lines << "data"; });
    if (auto* opened = qobject_cast<PumpDialog*>(dialog.get()))
        QObject::connect(opened, &PumpDialog::deviceReaderCritical, opened, [&] { lines << "critical"; });
    QObject::connect(dialog.get(), &QDialog::finished, dialog.get(),
                     [&](int result) { lines << (result == QDialog::Accepted ? "accepted" : "rejected"); });
}

Story::~Story()
{
    s_host.services.beforeLogLine = nullptr;
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
    const QString before = look();
    const QObjectList receivers = front()->children();
    for (QObject* receiver : receivers)
        QCoreApplication::sendPostedEvents(receiver);
    if (front()->findChild<ReadoutPumpControl*>() && look() != before)
        s_host.journal.lines << "told on the thread that emits";
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
        QTimer timer;
        QObject::connect(&timer, &QTimer::timeout, &timer, [&] {
            if (!parts.isEmpty() && front() != dialog.get())
                tell(parts.takeFirst());
        });
        timer.start(1);
        if (diaryEvents == "refreshed")
            reopenDiary();
        perform(parts.takeFirst());
        if (!parts.isEmpty())
            qFatal("Not reached: %s", qPrintable(parts.join('/')));
    }
}

void Story::perform(const QString& step)
{
    QStringList& lines = s_host.journal.lines;
    const QStringList words = step.split(' ');
    const int number = words.value(1).toInt();
    auto* table = front()->findChild<DevicesTable*>();
    const auto endDiary = [this] {
        if (diaryEvents != "changed")
            PatientSession::create(nullptr);
        if (diaryEvents != "closed")
            PatientSession::open(diaryEvents == "changed" ? "P2" : "P1");
    };
    if (step == "look")
        lines << look();
    else if (step == "session")
        lines << "pump " + PatientSession::instance()->pumpSerialNumber() +
                     PatientSession::instance()->exchangeFilePath();
    else if (step == "translated")
        lines << front()->windowTitle();
    else if (step == "nopump")
        PatientSession::instance()->setPump({}, {});
    else if (step == "forget")
        lines.clear();
    else if (step == "silence") {
        const int before = lines.size();
        Q_EMIT StatusFileParser::instance()->timeout();
        if (lines.size() > before)
            lines << "told on the thread that emits";
    } else if (words[0] == "answer")
        boxes.answerWith({words[1] == "Yes" ? QMessageBox::Yes : QMessageBox::No});
    else if (step == "Escape")
        QTest::keyClick(front(), Qt::Key_Escape);
    else if (step == "close")
        front()->close();
    else if (step == "diary")
        endDiary();
    else if (step == "soon") // while the next message box is open
        QTimer::singleShot(0, qApp, endDiary);
    else if (words[0] == "after")
        fireTimer(number);
    else if (words[0] == "state")
        StatusFileParser::instance()->m_state = number;
    else if (words[0] == "file")
        reader.writeFile(words[1], "<data/>");
    else if (words[0] == "list")
        writeList(words.mid(1));
    else if (words[0] == "row")
        QTest::mouseClick(table->viewport(), Qt::LeftButton, {}, cell(*table, number));
    else if (step == "down")
        QTest::keyClick(table, Qt::Key_Down);
    else if (words[0] == "end") // +STATUS RESULT ERROR: executed; -STATUS: not executed
        endRun(words[1][0] == '+', CommandStatus(words[1].midRef(1).toInt()), words.value(2), words.value(3));
    else if (words[0] == "report" && front()->findChild<ReadoutPumpControl*>()) {
        const QString before = look();
        Q_EMIT front()->findChild<ReadoutPumpControl*>()->readoutProgress(words.value(2, "PU1234"), number);
        if (look() != before)
            lines << "told on the thread that emits";
    } else if (words[0] == "report")
        Q_EMIT front()->findChild<AddPumpControl*>()->pairingSearchProgress({}, number);
    else if (words[0] == "press") { // a button that no form gives the box
        auto* box = child<QDialogButtonBox>(*front(), "m_DialogButtonBox");
        const auto all = QMetaEnum::fromType<QDialogButtonBox::StandardButtons>();
        const auto button = QDialogButtonBox::StandardButton(all.keyToValue(words[1].toLatin1()));
        box->setStandardButtons(QDialogButtonBox::Cancel | button);
        box->button(button)->click();
    } else if (step == "limits") { // of the run that follows an abort, and the cancel ahead of that
        const int cancel = lines.indexOf("mcp|=== Observer canceling.||");
        if (!QTest::qWaitFor([&] {
                return askedFor == QVector<int>{20, 10, 5};
            }) ||
            cancel < 0 || cancel > lines.indexOf(QRegularExpression(".*<ABORT >.*")))
            lines << "other limits";
    } else
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
        const QMovie* movie = label->movie();
        const QImage image = label->pixmap(Qt::ReturnByValue).toImage();
        const auto shows = [&image](const char* icon) {
            return image == lmIcon(QStringLiteral(":/img/Images/%1.svg").arg(icon)).pixmap(32, 32).toImage();
        };
        const QString icon = shows("icon_connected") ? "icon_connected" : "icon_plus_grey_dark";
        if (movie && !movie->currentPixmap().isNull()) {
            parts << (movie->state() == QMovie::Running ? "busy" : "idle");
        } else if (!image.isNull()) {
            parts << (shows(qPrintable(icon)) ? icon : label->objectName());
        } else
            parts << label->text();
    }
    if (const auto* bar = front()->findChild<QProgressBar*>())
        parts << QString::number(bar->value());
    if (const auto* table = front()->findChild<DevicesTable*>(); table && table->isVisible())
        parts << QString("row %1").arg(table->selectedIndexes().value(0).row());
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
            found << line.section('<', 2).section('>', 0, 0).trimmed();
        else if (!line.contains(QRegularExpression("^mcp|^err.---|Controller\\]|^databaseGuid|^patients")) ||
                 line.contains("dialog]") || line.contains("Paired pump query"))
            found << line.remove("mcp|").remove(QRegularExpression("\\|\\|$")).remove(reader.misc()).trimmed();
    }
    return found;
}

/// The rows of stories.txt that are marked so.
void readStories(QChar mark)
{
    QTest::addColumn<QString>("steps");
    QTest::addColumn<QStringList>("expected");
    QTest::addColumn<bool>("translated");
    QFile file(MERIVO_STORIES);
    if (!file.open(QIODevice::ReadOnly))
        qFatal("There is no %s", MERIVO_STORIES);
    QStringList blocks = QString::fromUtf8(file.readAll()).split("\n\n");
    const QStringList words = blocks.takeFirst().split('\n');
    for (QString& block : blocks) {
        for (const QString& word : words) {
            if (word.startsWith('{'))
                block.replace(word.section(' ', 0, 0), word.section(' ', 1));
        }
        QStringList lines = block.split('\n', Qt::SkipEmptyParts);
        std::transform(lines.begin(), lines.end(), lines.begin(), [](const QString& line) { return line.trimmed(); });
        const QString name = lines.takeFirst();
        const QString steps = lines.isEmpty() ? QString() : lines.takeFirst();
        if (!name.startsWith(mark))
            continue;
        if (mark == '=')
            QTest::addRow("%s", qPrintable(name.mid(2))) << steps << lines << steps.startsWith("translated");
        else
            for (const char* variant : {"source", "displayed", "source-styled", "displayed-styled"})
                QTest::addRow("%s-%s", qPrintable(name.mid(2)), variant) << steps << lines << (variant[0] == 'd');
    }
}

} // namespace

class DialogsTest final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void tellsStory_data();
    void tellsStory();
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
    readStories('=');
}

void DialogsTest::tellsStory()
{
    QFETCH(QString, steps);
    QFETCH(QStringList, expected);
    const QString row = QTest::currentDataTag();
    const bool isEnded = steps.contains(QRegularExpression("\\b(diary|soon)\\b"));
    for (const QString& events : QString(isEnded ? "changed closed reopened" : "none refreshed").split(' ')) {
        Story story(row.section(QRegularExpression("[ ,]"), 0, 0), steps.startsWith("translated"), {}, Patient,
                    "PU1234", events);
        story.dialog->show();
        story.tell(steps);
        QCOMPARE(events + story.happened().join('\n'), events + expected.join('\n'));
        for (const BoxAnswerer::Box& box : qAsConst(story.boxes.seen)) {
            const bool isQuestion = box.text.contains('?');
            QCOMPARE(box.icon, isQuestion ? QMessageBox::Question : QMessageBox::Warning);
            QCOMPARE(box.buttons, isQuestion ? QMessageBox::Yes | QMessageBox::No : QMessageBox::Ok);
        }
    }
}

void DialogsTest::showsHeader()
{
    const QHash<QString, QString> titles{
        {"main", "hidden"}, {"read", "Read out pump"}, {"add", "Add new pump"}, {"remove", "Remove Pump"}};
    // Of 100, 200 or 50 at 96 dpi; a drawing that keeps its shape can be a pixel narrower.
    const QHash<QString, QVector<int>> pictureWidths{{"m_GraphicLabel1", {99, 125}},
                                                     {"m_GraphicLabel2", {32, 40}},
                                                     {"m_GraphicLabel3", {99, 124}},
                                                     {"m_AssignGraphicLabel", {199, 250}},
                                                     {"m_ConfirmGraphicLabel", {200, 250}},
                                                     {"m_ReassignGraphicLabel", {200, 250}},
                                                     {"m_ResultLabel", {50, 63}}};
    for (const QString& kind : titles.keys()) {
        for (const bool isSimulated : {true, false}) {
            const Story story(kind, false, isSimulated ? "/sim" : "", isSimulated ? Patient : QStringList());
            const auto shown = [&story](const char* name) {
                const auto* label = child<QLabel>(*story.dialog, name);
                return label->isHidden() ? "hidden" : label->text();
            };
            QCOMPARE(shown("m_SimulationLabel"), QString(isSimulated ? "SimulationPath: '/sim'" : "hidden"));
            QCOMPARE(shown("m_PatientLine1"), QString(isSimulated ? "Doe, Jane" : "hidden"));
            QCOMPARE(shown("m_PatientLine2"), QString(isSimulated ? "03.02.1970, X1" : "hidden"));
            QCOMPARE(shown("m_TitleLabel"), titles[kind]);
            QVERIFY(child<QLabel>(*story.dialog, "m_TitleLabel")->property("BigSizeFont").toBool());
            for (const char* name : {"m_TitleLabel", "m_PatientLine1"})
                QVERIFY(child<QLabel>(*story.dialog, name)->property("HighlightFont").toBool());
            for (const auto* label : story.dialog->findChildren<QLabel*>(QRegularExpression("Graphic|Result")))
                QCOMPARE(label->pixmap(Qt::ReturnByValue).width(),
                         pictureWidths[label->objectName()].value(label->logicalDpiY() == 120));
            QVERIFY(!story.dialog->windowFlags().testFlag(Qt::WindowContextHelpButtonHint));
            QCOMPARE(s_host.journal.contains("err|Device reader simulation used.||/sim"),
                     kind == "main" && isSimulated);
            QCOMPARE(PatientSession::instance()->deviceName(), QString(kind == "main" ? "Sanvio Merivo" : "stays"));
            QCOMPARE(s_host.journal.contains("mcp|=?= <[at rest]: BTREAD, 2, 0, > status at open.||"), kind == "main");
        }
    }
}

void DialogsTest::destroyedDialogIsNotReached()
{
    Story story("read");
    story.dialog.reset();
    // What the event dispatcher kept would be freed after the plug-in was unloaded.
    auto* dispatcher = QAbstractEventDispatcher::instance();
    for (QObject* timer : dispatcher->children()) {
        for (const QAbstractEventDispatcher::TimerInfo& info : dispatcher->registeredTimers(timer))
            QVERIFY(info.interval != 2600);
    }
}

void DialogsTest::wholeRun()
{
    Story story("whole", false, {}, Patient, "PU1234", "refreshed");
    for (const char* word : {"ABORT", "SEARCH", "BTPAIR", "BTPAIRCONFIRM", "BTREAD"})
        story.reader.answer(word, {{10, "running"}, {300, "done", "4711"}});
    story.reader.answer("BTISPAIRED", {{50, "running"}, {300, "done", "0"}});
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
    QCOMPARE(story.happened(), (QStringList{"ABORT", "==> [Main dialog] Prepare (abort old running) succeeded.",
                                            "BTISPAIRED P1", "=== Paired pump query for patient 'P1' finished: snr=''.",
                                            "SEARCH 00100", "BTPAIR B-S1 \"S1\" P1", "BTPAIRCONFIRM 1", "BTREAD \"S1\"",
                                            s_host.database.guid, "rejected"}));
    QCOMPARE(file, story.reader.misc() + "/I1.xml");
    // Of the abort and of the query; nothing else has this limit.
    QCOMPARE(s_host.journal.lines.count("mcp|=== Observer polling started with timeout of '20'secs.||"), 2);
}

void DialogsTest::showsDevices()
{
    const Story story("main"); // the open patient is P1
    const DevicesModel model({{"B", "S1", "Name", "", false},
                              {"B", "S2", "", "P9", true},
                              {"B", "S3", "", "P1", true},
                              {"B", "S4", "", "P7", false},
                              {"B", "S5", "", "", true}},
                             nullptr);
    QStringList cells;
    for (int row = -1; row <= 5; ++row) {
        for (int column = 0; column < 4; ++column)
            cells << model.data(row < 0 || column > 2 ? QModelIndex() : model.index(row, column)).toString();
        cells << model.data(model.index(row, 1), Qt::ToolTipRole).toString() << model.deviceAt(row).serialNumber
              << (model.isAssignedToOther(row) ? "other" : "");
    }
    QCOMPARE(cells.join('|'), QString("|||||||S1||Name|||S1||S2|P9|||%3 <Old, R&D|S2|other|S3|P1|||Doe, "
                                      "Jane|S3||S4|P7||||S4||S5|||||S5|other|||||||"));
    const QModelIndex first = model.index(0, 0);
    QCOMPARE(first.data(Qt::FontRole).value<QFont>().pointSizeF(), QFont().pointSizeF() * 1.1);
    QCOMPARE(model.headerData(5, Qt::Horizontal, Qt::FontRole).value<QFont>().pointSizeF(), QFont().pointSizeF() * 1.2);
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
        QTest::addRow("%s, one word", kind) << kind << "W" + QString("\xF0\x9D\x90\x96").repeated(5000);
        QTest::addRow("%s, odd words", kind) << kind << QString("<i>\xC3\xA4 \"%1' &amp; %L2</b>\n").repeated(500);
    }
}

/// Whatever stands in the reader's files, a dialog keeps its size, a box fits on the screen, and nothing takes long.
void DialogsTest::staysWhole()
{
    QFETCH(QString, kind);
    QFETCH(QString, text);
    Story story(kind, false, {}, {text, text, text, text}, text);
    QCOMPARE(story.dialog->size(), QSize(640, kind == "add" ? 430 : kind == "read" ? 380 : 360));
    const QSize size(700, story.dialog->height()); // as the user may have it
    story.dialog->resize(size);
    const std::clock_t start = std::clock(); // of the processor, which others may use too
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
        auto* code = child<QLabel>(*story.dialog, "m_AssignPairingCode");
        QCOMPARE((code->text() == text ? text : plainText(code->toolTip())).simplified(), text.simplified());
    } else {
        story.tell("answer No,Remove");
    }
    QVERIFY(QTest::qWaitForWindowExposed(story.dialog.get()));
    QCoreApplication::processEvents();
    QCOMPARE(story.dialog->size(), size);
    QCOMPARE(story.boxes.seen.size(), kind == "add" || kind == "remove" ? 1 : 0);
    for (const BoxAnswerer::Box& box : qAsConst(story.boxes.seen))
        QVERIFY(box.text.isValidUtf16() && box.size.boundedTo(QGuiApplication::primaryScreen()->size()) == box.size);
    QVERIFY((std::clock() - start) / CLOCKS_PER_SEC < 5);
}

void DialogsTest::canBeReadAndReached_data()
{
    readStories('@');
}

/// With a folder in the environment variable MERIVO_PICTURES each state is saved there as a PNG.
void DialogsTest::canBeReadAndReached()
{
    QFETCH(QString, steps);
    QFETCH(bool, translated);
    const QString row = QTest::currentDataTag();
    const QString kind = row.section('-', 0, 0);
    // As a host's style sheet may have it; the dialogs must have room for it.
    if (row.endsWith("styled"))
        qApp->setStyleSheet(
            "*[BigSizeFont=\"true\"] { font-size: 14pt; } *[HighlightFont=\"true\"] { font-weight: bold; }");
    Story story(kind, translated,
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
    const auto scaled = [&](int pixels) {
        return pixels < QWIDGETSIZE_MAX && story.dialog->logicalDpiY() == 120 ? qRound(pixels * 1.25) : pixels;
    };
    const QRect size = sizes[kind];
    QCOMPARE(story.dialog->maximumSize(), QSize(scaled(size.x()), scaled(size.y())));
    QCOMPARE(story.dialog->size(), QSize(scaled(size.width()), scaled(size.height())));
    QCOMPARE(story.dialog->layout()->contentsMargins(), QMargins() + scaled(24));
    QSet<int> heights; // of the buttons of the footer
    for (const auto* button : story.dialog->findChildren<QPushButton*>()) {
        if (kind == "main" && !button->objectName().isEmpty())
            QCOMPARE(QRect({0, button->height()}, button->iconSize()), QRect(0, scaled(36), scaled(26), scaled(26)));
        else if (button->isVisible())
            heights.insert(button->height());
    }
    QCOMPARE(heights.size(), 1);
    qApp->setStyleSheet({});
}

int main(int argc, char** argv)
{
    QApplication::setAttribute(Qt::AA_UseHighDpiPixmaps);
    QApplication application(argc, argv);
    QApplication::setFont(QFont("DejaVu Sans", 10)); // the largest that the forms are drawn for
    DialogsTest test;
    return QTest::qExec(&test, argc, argv);
}

#include "DialogsTest.moc"
