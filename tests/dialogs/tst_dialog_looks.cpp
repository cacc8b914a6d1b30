// SPDX-FileCopyrightText: 2026 The Merivo Connections developers
// SPDX-License-Identifier: MIT
#include "base/PatientSession.h"
#include "dialogs/DevicesModel.h"
#include "dialogs/DialogRun.h"

#include <QAbstractEventDispatcher>
#include <QAccessible>
#include <QDir>
#include <QHeaderView>
#include <QLabel>
#include <QProgressBar>
#include <QTableView>
#include <QTextDocumentFragment>
#include <QTranslator>

#include <algorithm>
#include <ctime>
#include <tuple>

namespace {

using Run = DialogRun;

/// Returns true if a text or picture has less space than it needs, or is partly outside the window.
bool isCut(const QWidget& widget)
{
    if (const auto* table = qobject_cast<const QTableView*>(&widget)) {
        const QAbstractItemView* cells = table; // where the hint is public
        // With large fonts on a screen that isn't scaled only the serial number must be whole.
        for (int i = 0; i < (table->logicalDpiX() > 96 ? 1 : 3); ++i) {
            const int needed = qMax(table->horizontalHeader()->sectionSizeHint(i), cells->sizeHintForColumn(i));
            if (needed > table->columnWidth(i) && !table->isColumnHidden(i))
                return true;
        }
    }
    QSize needed(0, 0);
    if (const auto* label = qobject_cast<const QLabel*>(&widget)) {
        needed = label->minimumSizeHint(); // with word wrap: the widest word
        if (label->wordWrap())
            needed.setHeight(label->heightForWidth(label->width()));
    } else if (qobject_cast<const QPushButton*>(&widget) || qobject_cast<const QProgressBar*>(&widget)) {
        needed = {widget.minimumSizeHint().width(), widget.fontMetrics().height()};
    }
    const QRect place(widget.mapTo(widget.window(), QPoint(0, 0)), widget.size());
    return needed.boundedTo(widget.size()) != needed || !widget.window()->rect().contains(place);
}

/// Returns true if a screen reader has nothing to say about a picture or control.
bool isNameless(QWidget* widget)
{
    const auto* label = qobject_cast<QLabel*>(widget);
    const bool isPicture = label && (label->movie() || !label->pixmap(Qt::ReturnByValue).isNull());
    const bool needsName = isPicture || qobject_cast<QPushButton*>(widget) || qobject_cast<QProgressBar*>(widget) ||
                           qobject_cast<QTableView*>(widget);
    return needsName && QAccessible::queryAccessibleInterface(widget)->text(QAccessible::Name).isEmpty();
}

bool isReadBefore(const QWidget* left, const QWidget* right)
{
    const QRect a(left->mapTo(left->window(), QPoint(0, 0)), left->size());
    const QRect b(right->mapTo(right->window(), QPoint(0, 0)), right->size());
    const bool isSameRow = a.top() <= b.bottom() && b.top() <= a.bottom();
    return isSameRow ? a.left() < b.left() : a.top() < b.top();
}

/// Returns what a user can't read or reach in the active window.
QStringList faultsIn(const QWidget& window)
{
    QStringList faults;
    QList<QWidget*> tabStops;
    const QList<QWidget*> widgets = window.findChildren<QWidget*>();
    for (QWidget* widget : widgets) {
        if (!widget->isVisible())
            continue;
        if (isCut(*widget))
            faults << widget->objectName() + " is cut";
        if (isNameless(widget))
            faults << widget->objectName() + " has no name";
        if (widget->isEnabled() && widget->focusPolicy() & Qt::TabFocus)
            tabStops << widget;
    }
    std::sort(tabStops.begin(), tabStops.end(), isReadBefore);
    if (!tabStops.isEmpty())
        tabStops.constFirst()->setFocus();
    for (const QWidget* expected : tabStops.mid(1)) {
        QTest::keyClick(window.focusWidget(), Qt::Key_Tab);
        if (window.focusWidget() != expected)
            faults << expected->objectName() + " isn't next in the tab order";
    }
    return faults;
}

} // namespace

/// What the dialogs show of any content: complete, reachable, named and in its size.
class TestDialogLooks final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void canBeReadAndReached_data()
    {
        QTest::addColumn<Run::Kind>("kind");
        QTest::addColumn<Run::Steps>("steps");
        const auto row = [](const char* name, Run::Kind kind, const Run::Steps& steps) {
            QTest::newRow(name) << kind << steps;
        };
        const Run::Steps end = [](Run& run) {
            return run.readerEnds(CommandStatus::Done);
        };
        row("main-no-pump", Run::Main, end);
        row("main-pump", Run::Main, [](Run& run) { return run.readerEnds(CommandStatus::Done, "PU-1003456789"); });
        row("read-reading", Run::Read, [](Run& run) { return run.startReading() + run.report(42); });
        row("read-completed", Run::Read, [end](Run& run) { return run.startReading() + end(run); });
        row("read-failed", Run::Read, [](Run& run) { return run.startReading() + run.readerDoesNotExecute(); });
        row("add-searching", Run::Add, [](Run& run) { return run.startSearch() + run.report(42); });
        row("add-choosing", Run::Add, [](Run& run) {
            run.findPumps({"PU-1003456789", "PU-1003456790=P9", "PU-1003456791=P1", "PU-1003456792"});
            return run.selectRow(1);
        });
        row("add-code", Run::Add, &Run::receiveCode);
        row("add-confirming", Run::Add, &Run::confirmCode);
        row("add-reassign", Run::Add, &Run::openReassignPage);
        row("remove-asking", Run::Remove, &Run::takeEvents);
    }

    /// With a folder in the environment variable MERIVO_PICTURES each state is saved there as a PNG.
    void canBeReadAndReached()
    {
        QFETCH(Run::Kind, kind);
        QFETCH(Run::Steps, steps);
        QTranslator translator;
        QVERIFY(translator.load(":/lang/i18n/mc_en_GB.qm") && QCoreApplication::installTranslator(&translator));
        Run run(kind, {"/home/clinic/Documents/Simulated reader/Test drive 2",
                       {"Featherstonehaugh-Cholmondeley", "Maximilian Alexander", "1970-02-03", "Ward 12, Room 4"},
                       "PU-1003456789"});
        steps(run);
        QDialog& dialog = *run.dialog;
        QVERIFY(dialog.windowTitle().startsWith("Sanvio Merivo Pump Plugin"));
        dialog.activateWindow(); // a message box may have been in front
        QVERIFY(QTest::qWaitForWindowActive(&dialog));
        QCoreApplication::processEvents();
        const QString folder = qEnvironmentVariable("MERIVO_PICTURES");
        if (!folder.isEmpty())
            QVERIFY(dialog.grab().save(QDir(folder).filePath(QTest::currentDataTag() + QString(".png"))));
        QCOMPARE(faultsIn(dialog).join("; "), QString());
    }

    void showsHeaderInItsSize()
    {
        const std::tuple<Run::Kind, QString, QSize, QSize> rows[] = {
            {Run::Main, "hidden", {640, 360}, {700, 400}},
            {Run::Read, "Read out pump", {640, 380}, {QWIDGETSIZE_MAX, 380}},
            {Run::Add, "Add new pump", {640, 430}, {QWIDGETSIZE_MAX, 440}},
            {Run::Remove, "Remove Pump", {640, 360}, {QWIDGETSIZE_MAX, 380}},
        };
        for (const auto& [kind, title, size, maximum] : rows) {
            const bool isMain = kind == Run::Main;
            for (const bool isSimulated : {true, false}) {
                const QStringList pids = isSimulated ? DialogSetup().pids : QStringList();
                Run run(kind, {isSimulated ? "/sim" : "", pids});
                const auto label = [&run](const char* name) {
                    return run.dialog->findChild<QLabel*>(name);
                };
                const auto shown = [&label](const char* name) {
                    return label(name)->isHidden() ? "hidden" : label(name)->text();
                };
                QCOMPARE(shown("m_SimulationLabel"), QString(isSimulated ? "SimulationPath: '/sim'" : "hidden"));
                QCOMPARE(shown("m_PatientLine1"), QString(isSimulated ? "Doe, Jane" : "hidden"));
                QCOMPARE(shown("m_PatientLine2"), QString(isSimulated ? "03.02.1970, X1" : "hidden"));
                QCOMPARE(shown("m_TitleLabel"), title);
                QVERIFY(label("m_TitleLabel")->property("BigSizeFont").toBool());
                for (const char* name : {"m_TitleLabel", "m_PatientLine1"})
                    QVERIFY(label(name)->property("HighlightFont").toBool());
                QVERIFY(!run.dialog->windowFlags().testFlag(Qt::WindowContextHelpButtonHint));
                const qreal scale = run.dialog->logicalDpiY() == 120 ? 1.25 : 1;
                QCOMPARE(run.dialog->size(), size * scale);
                QCOMPARE(run.dialog->maximumSize(), (maximum * scale).boundedTo({QWIDGETSIZE_MAX, QWIDGETSIZE_MAX}));
                QCOMPARE(PatientSession::instance()->deviceName(), QString(isMain ? "Sanvio Merivo" : "stays"));
                QCOMPARE(Run::host.journal.contains("mcp|=?= <[at rest]: BTREAD, 2, 0, > status at open.||"), isMain);
                QCOMPARE(run.takeEvents().contains("err|Device reader simulation used.||/sim"), isMain && isSimulated);
            }
        }
    }

    void staysWhole_data()
    {
        QTest::addColumn<Run::Kind>("kind");
        QTest::addColumn<QString>("text");
        for (const auto kind : {Run::Main, Run::Read, Run::Add, Run::Remove}) {
            QTest::addRow("%d, one word", kind) << kind << "W" + QString("\xF0\x9D\x90\x96").repeated(5000);
            QTest::addRow("%d, odd words", kind) << kind << QString("<i>\xC3\xA4 \"%1' &amp; %L2</b>\n").repeated(500);
        }
    }

    /// Whatever the reader's files contain, a dialog keeps its size, a message box fits on the screen, and nothing
    /// takes long.
    void staysWhole()
    {
        QFETCH(Run::Kind, kind);
        QFETCH(QString, text);
        Run run(kind, {{}, {text, text, text, text}, text});
        const QSize size(700, run.dialog->height()); // as set by the user
        run.dialog->resize(size);
        const std::clock_t start = std::clock(); // of the processor, which others may use too
        QStringList boxes;
        if (kind == Run::Main) {
            run.readerEnds(CommandStatus::Done, text);
        } else if (kind == Run::Read) {
            run.fireTimer(2600);
            run.report(5);
        } else if (kind == Run::Add) {
            run.findPumps(QStringList{text.toHtmlEscaped() + "=P9"} + QVector<QString>(9999, "S").toList());
            run.selectRow(0);
            run.click("Reassign");
            run.answerNextBox(QMessageBox::No);
            boxes = run.click("OK").filter("box");
            run.click("Prev");
            run.selectRow(1);
            run.click("Assign");
            run.readerEnds(CommandStatus::Done, text);
            const QString toolTip = run.dialog->findChild<QLabel*>("m_AssignPairingCode")->toolTip();
            QCOMPARE(QTextDocumentFragment::fromHtml(toolTip).toPlainText().simplified(), text.simplified());
        } else {
            run.answerNextBox(QMessageBox::No);
            boxes = run.click("Remove").filter("box");
        }
        QVERIFY(QTest::qWaitForWindowExposed(run.dialog.get()));
        QCoreApplication::processEvents();
        QCOMPARE(run.dialog->size(), size);
        QCOMPARE(boxes.size(), kind == Run::Add || kind == Run::Remove ? 1 : 0);
        QVERIFY(boxes.join(' ').isValidUtf16());
        QVERIFY((std::clock() - start) / CLOCKS_PER_SEC < 5);
    }

    void tableShowsDevices()
    {
        const Run run(Run::Main); // the open patient is P1
        const DevicesModel model({{"B", "S1", "Name", "", false},
                                  {"B", "S2", "", "P9", true},
                                  {"B", "S3", "", "P1", true},
                                  {"B", "S4", "", "P7", false},
                                  {"B", "S5", "", "", true}},
                                 nullptr);
        QStringList rows;
        for (int row = -1; row <= 5; ++row) {
            QStringList cells;
            for (int column = 0; column < 4; ++column)
                cells << model.data(row < 0 || column > 2 ? QModelIndex() : model.index(row, column)).toString();
            cells << model.data(model.index(row, 1), Qt::ToolTipRole).toString() << model.deviceAt(row).serialNumber
                  << (model.isAssignedToOther(row) ? "other" : "");
            rows << cells.join('|');
        }
        QCOMPARE(rows, QStringList({"||||||", "S1||Name|||S1|", "S2|P9|||%3 <Old, R&D|S2|other",
                                    "S3|P1|||Doe, Jane|S3|", "S4|P7||||S4|", "S5|||||S5|other", "||||||"}));
    }

    void destroyedDialogIsNotReached()
    {
        Run run(Run::Read);
        run.dialog.reset();
        // What the event dispatcher kept would be freed after the plug-in was unloaded.
        auto* dispatcher = QAbstractEventDispatcher::instance();
        for (QObject* timer : dispatcher->children()) {
            for (const QAbstractEventDispatcher::TimerInfo& info : dispatcher->registeredTimers(timer))
                QVERIFY(info.interval != 2600);
        }
    }
};

int main(int argc, char** argv)
{
    QApplication::setAttribute(Qt::AA_UseHighDpiPixmaps);
    QApplication application(argc, argv);            // without QTEST_MAIN's fixed 96 dpi
    QApplication::setFont(QFont("DejaVu Sans", 10)); // the largest that the forms are drawn for
    // As a host may do; the dialogs must have space for it.
    application.setStyleSheet(
        "*[BigSizeFont=\"true\"] { font-size: 14pt; } *[HighlightFont=\"true\"] { font-weight: bold; }");
    TestDialogLooks test;
    return QTest::qExec(&test, argc, argv);
}

#include "tst_dialog_looks.moc"
