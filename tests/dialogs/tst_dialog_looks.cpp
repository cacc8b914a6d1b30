// SPDX-FileCopyrightText: 2026 The Merivo Connections developers
// SPDX-License-Identifier: MIT
#include "dialogs/DevicesModel.h"
#include "dialogs/DialogRun.h"
#include "dialogs/DialogUtils.h"
#include "plugin/session/PatientSession.h"

#include <QAbstractEventDispatcher>
#include <QAccessible>
#include <QDir>
#include <QHeaderView>
#include <QLabel>
#include <QLayout>
#include <QProgressBar>
#include <QPushButton>
#include <QRegularExpression>
#include <QTableView>

#include <algorithm>
#include <ctime>

namespace {

using Run = DialogRun;

/// The room that the content of a widget needs at the width that it has.
QSize neededRoom(const QWidget& widget)
{
    if (const auto* label = qobject_cast<const QLabel*>(&widget)) {
        const QSize smallest = label->minimumSizeHint(); // with word wrap: the widest word
        return label->wordWrap() ? QSize(smallest.width(), label->heightForWidth(label->width())) : smallest;
    }
    if (qobject_cast<const QPushButton*>(&widget) || qobject_cast<const QProgressBar*>(&widget))
        return {widget.minimumSizeHint().width(), widget.fontMetrics().height()};
    const auto* header = qobject_cast<const QHeaderView*>(&widget);
    const auto* table = header ? qobject_cast<const QTableView*>(header->parentWidget()) : nullptr;
    // With large fonts on a screen that isn't scaled the serial number alone must be whole.
    const int columns = table && header->orientation() == Qt::Horizontal ? header->count() : 0;
    for (int i = 0; i < (widget.logicalDpiX() > 96 ? qMin(columns, 1) : columns); ++i) {
        const QAbstractItemView* cells = table; // where the hint is public
        if (qMax(header->sectionSizeHint(i), cells->sizeHintForColumn(i)) > header->sectionSize(i) &&
            !table->isColumnHidden(i))
            return {header->width() + 1, 0};
    }
    return {0, 0};
}

bool isPicture(const QWidget* widget)
{
    const auto* label = qobject_cast<const QLabel*>(widget);
    return label && (label->movie() || !label->pixmap(Qt::ReturnByValue).isNull());
}

/// Buttons of a box have no object name of their own.
QString nameOf(const QWidget* widget)
{
    const auto* button = qobject_cast<const QPushButton*>(widget);
    return widget->objectName().isEmpty() && button ? button->text() : widget->objectName();
}

/// The texts and pictures that have less room than they need, and the widgets that reach beyond the window.
QStringList cutTexts(const QWidget& window)
{
    QStringList found;
    const QList<QWidget*> widgets = window.findChildren<QWidget*>();
    for (const QWidget* widget : widgets) {
        if (!widget->isVisible())
            continue;
        const QSize needed = neededRoom(*widget);
        if (needed.boundedTo(widget->size()) != needed)
            found.append(widget->objectName() + " is cut");
        if (!window.rect().contains(QRect(widget->mapTo(&window, QPoint(0, 0)), widget->size())))
            found.append(widget->objectName() + " reaches beyond the window");
    }
    return found;
}

/// The visible pictures, buttons and bars that have no name for a screen reader.
QStringList namelessWidgets(const QWidget& window)
{
    QStringList found;
    const QList<QWidget*> widgets = window.findChildren<QWidget*>();
    for (QWidget* widget : widgets) {
        const bool needsName = isPicture(widget) || qobject_cast<QPushButton*>(widget) ||
                               qobject_cast<QProgressBar*>(widget) || qobject_cast<QTableView*>(widget);
        if (needsName && widget->isVisible() &&
            QAccessible::queryAccessibleInterface(widget)->text(QAccessible::Name).isEmpty())
            found.append(nameOf(widget));
    }
    return found;
}

/// What takes the focus, in the order in which the eye reads.
QStringList readingOrder(const QWidget& window)
{
    QList<QWidget*> widgets = window.findChildren<QWidget*>();
    widgets.erase(std::remove_if(widgets.begin(), widgets.end(),
                                 [](const QWidget* widget) {
                                     return !widget->isVisible() || !widget->isEnabled() ||
                                            !(widget->focusPolicy() & Qt::TabFocus);
                                 }),
                  widgets.end());
    std::sort(widgets.begin(), widgets.end(), [&window](const QWidget* left, const QWidget* right) {
        const QRect a(left->mapTo(&window, QPoint(0, 0)), left->size());
        const QRect b(right->mapTo(&window, QPoint(0, 0)), right->size());
        const bool sameRow = a.top() <= b.bottom() && b.top() <= a.bottom();
        return sameRow ? a.left() < b.left() : a.top() < b.top();
    });
    QStringList names;
    for (const QWidget* widget : qAsConst(widgets))
        names.append(nameOf(widget));
    return names;
}

/// What the Tab key reaches in the active window, one round.
QStringList tabOrder(QWidget& window)
{
    QStringList walked;
    for (;;) {
        QTest::keyClick(&window, Qt::Key_Tab);
        const QString name = window.focusWidget() ? nameOf(window.focusWidget()) : QString();
        if (name.isEmpty() || walked.contains(name))
            break;
        walked.append(name);
    }
    // A round has no begin of its own: begin with what is read first.
    const QStringList expected = readingOrder(window);
    const auto first = expected.isEmpty() ? walked.end() : std::find(walked.begin(), walked.end(), expected.first());
    std::rotate(walked.begin(), first, walked.end());
    return walked;
}

} // namespace

/// What the dialogs show of any content: whole, reachable, named and in its size.
class TestDialogLooks final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void canBeReadAndReached_data()
    {
        QTest::addColumn<Run::Kind>("kind");
        QTest::addColumn<Run::Steps>("steps");
        QTest::addColumn<bool>("isTranslated");
        QTest::addColumn<bool>("isStyled");
        const auto state = [](const char* name, Run::Kind kind, const Run::Steps& steps = &Run::takeEvents) {
            for (const char* variant : {"source", "displayed", "source-styled", "displayed-styled"})
                QTest::addRow("%s-%s", name, variant)
                    << kind << steps << (variant[0] == 'd') << QString(variant).endsWith("styled");
        };
        const auto end = [](const char* result) {
            return Run::Steps([result](Run& run) { return run.readerEnds(CommandStatus::Done, result); });
        };
        const auto report = [](const Run::Steps& steps, int percentage) {
            return Run::Steps([=](Run& run) {
                steps(run);
                run.setPolling(StatusFileParser::Started);
                return run.report(percentage);
            });
        };
        const auto then = [](const Run::Steps& first, const Run::Steps& second) {
            return Run::Steps([=](Run& run) { return first(run), second(run); });
        };
        const auto choose = [](int row) {
            return Run::Steps([row](Run& run) {
                run.findPumps({"PU-1003456789", "PU-1003456790=P9", "PU-1003456791=P1", "PU-1003456792"});
                return row >= 0 ? run.selectRow(row) : QStringList();
            });
        };
        const auto reading = report(&Run::startReading, 42);
        const auto searching = report(&Run::startSearch, 30);
        state("main-querying", Run::Main);
        state("main-no-pump", Run::Main, end(""));
        state("main-pump", Run::Main, end("PU-1003456789"));
        state("main-simulation", Run::Main, end("PU-1003456789"));
        state("read-waiting", Run::Read);
        state("read-reading", Run::Read, reading);
        state("read-completed", Run::Read, then(reading, end("")));
        state("read-failed", Run::Read, then(reading, [](Run& run) { return run.readerDoesNotExecute(); }));
        state("read-simulation", Run::Read, reading);
        state("add-ready", Run::Add);
        state("add-searching", Run::Add, searching);
        state("add-stopping", Run::Add, then(searching, [](Run& run) { return run.click("m_OverviewButton"); }));
        state("add-simulation", Run::Add, choose(-1));
        state("add-choosing", Run::Add, choose(1));
        state("add-one-pump", Run::Add, [](Run& run) { return run.findPumps({"PU-1003456789"}); });
        state("add-pairing", Run::Add, &Run::assign);
        state("add-code", Run::Add, &Run::receiveCode);
        state("add-confirming", Run::Add, &Run::confirmCode);
        state("add-finished", Run::Add, then(&Run::confirmCode, end("")));
        state("add-reassign", Run::Add, &Run::openReassignPage);
        state("add-reassigning", Run::Add, &Run::reassign);
        state("remove-asking", Run::Remove);
        state("remove-simulation", Run::Remove);
        state("remove-removing", Run::Remove, &Run::startRemoving);
    }

    /// With a folder in the environment variable MERIVO_PICTURES each state is saved there as a PNG.
    void canBeReadAndReached()
    {
        QFETCH(Run::Kind, kind);
        QFETCH(Run::Steps, steps);
        QFETCH(bool, isTranslated);
        QFETCH(bool, isStyled);
        const QString row = QTest::currentDataTag();
        if (isStyled) // as a host may do; the dialogs must have room for it
            qApp->setStyleSheet(
                "*[BigSizeFont=\"true\"] { font-size: 14pt; } *[HighlightFont=\"true\"] { font-weight: bold; }");
        DialogSetup setup{isTranslated};
        setup.pump = "PU-1003456789";
        if (row.contains("simulation")) {
            setup.simulationPath = "/home/clinic/Documents/Simulated reader/Test drive 2";
            setup.pids =
                QStringList{"Featherstonehaugh-Cholmondeley", "Maximilian Alexander", "1970-02-03", "Ward 12, Room 4"};
        }
        Run run(kind, setup);
        QDialog& dialog = *run.dialog;
        steps(run);
        QVERIFY(!isTranslated || dialog.windowTitle().startsWith("Sanvio Merivo Pump Plugin"));
        dialog.activateWindow(); // a message box may have been in front
        QVERIFY(QTest::qWaitForWindowActive(&dialog));
        QCoreApplication::processEvents();
        const QString folder = qEnvironmentVariable("MERIVO_PICTURES");
        if (!folder.isEmpty())
            QVERIFY(dialog.grab().save(QDir(folder).filePath(row + ".png")));
        QCOMPARE(cutTexts(dialog).join("; "), QString());
        QCOMPARE(namelessWidgets(dialog).join("; "), QString());
        QCOMPARE(tabOrder(dialog).join("; "), readingOrder(dialog).join("; "));
        const QHash<Run::Kind, QRect> sizes{{Run::Main, {700, 400, 640, 360}},
                                            {Run::Read, {QWIDGETSIZE_MAX, 380, 640, 380}},
                                            {Run::Add, {QWIDGETSIZE_MAX, 440, 640, 430}},
                                            {Run::Remove, {QWIDGETSIZE_MAX, 380, 640, 360}}};
        const auto scaled = [&](int pixels) {
            return pixels < QWIDGETSIZE_MAX && dialog.logicalDpiY() == 120 ? qRound(pixels * 1.25) : pixels;
        };
        const QRect size = sizes[kind];
        QCOMPARE(dialog.maximumSize(), QSize(scaled(size.x()), scaled(size.y())));
        QCOMPARE(dialog.size(), QSize(scaled(size.width()), scaled(size.height())));
        QCOMPARE(dialog.layout()->contentsMargins(), QMargins() + scaled(24));
        QSet<int> heights; // of the buttons of the footer
        for (const auto* button : dialog.findChildren<QPushButton*>()) {
            if (kind == Run::Main && !button->objectName().isEmpty())
                QCOMPARE(QRect({0, button->height()}, button->iconSize()),
                         QRect(0, scaled(36), scaled(26), scaled(26)));
            else if (button->isVisible())
                heights.insert(button->height());
        }
        QCOMPARE(heights.size(), 1);
        qApp->setStyleSheet({});
    }

    void showsHeader_data()
    {
        QTest::addColumn<Run::Kind>("kind");
        QTest::addColumn<QString>("title");
        QTest::addColumn<QString>("widths"); // of the pictures; a drawing that keeps its shape can be a pixel narrower
        QTest::addColumn<QString>("largeWidths"); // at 120 dpi
        QTest::newRow("main") << Run::Main << "hidden"
                              << "99 32 99"
                              << "125 40 124";
        QTest::newRow("read") << Run::Read << "Read out pump"
                              << "50"
                              << "63";
        QTest::newRow("add") << Run::Add << "Add new pump"
                             << "200 200 199"
                             << "250 250 250";
        QTest::newRow("remove") << Run::Remove << "Remove Pump"
                                << ""
                                << "";
    }
    void showsHeader()
    {
        QFETCH(Run::Kind, kind);
        QFETCH(QString, title);
        QFETCH(QString, widths);
        QFETCH(QString, largeWidths);
        for (const bool isSimulated : {true, false}) {
            DialogSetup setup;
            setup.simulationPath = isSimulated ? "/sim" : "";
            if (!isSimulated)
                setup.pids.clear();
            Run run(kind, setup);
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
            QStringList found;
            for (const auto* picture : run.dialog->findChildren<QLabel*>(QRegularExpression("Graphic|Result")))
                found << QString::number(picture->pixmap(Qt::ReturnByValue).width());
            QCOMPARE(found.join(' '), run.dialog->logicalDpiY() == 120 ? largeWidths : widths);
            QVERIFY(!run.dialog->windowFlags().testFlag(Qt::WindowContextHelpButtonHint));
            const bool isMain = kind == Run::Main;
            QCOMPARE(PatientSession::instance()->deviceName(), QString(isMain ? "Sanvio Merivo" : "stays"));
            QCOMPARE(Run::host.journal.contains("mcp|=?= <[at rest]: BTREAD, 2, 0, > status at open.||"), isMain);
            QCOMPARE(run.takeEvents().contains("err|Device reader simulation used.||/sim"), isMain && isSimulated);
        }
    }

    void staysWhole_data()
    {
        QTest::addColumn<Run::Kind>("kind");
        QTest::addColumn<QString>("text");
        for (const auto kind : {Run::Main, Run::Read, Run::Add, Run::Remove}) {
            QTest::addRow("%d, nothing", kind) << kind << "";
            QTest::addRow("%d, one word", kind) << kind << "W" + QString("\xF0\x9D\x90\x96").repeated(5000);
            QTest::addRow("%d, odd words", kind) << kind << QString("<i>\xC3\xA4 \"%1' &amp; %L2</b>\n").repeated(500);
        }
    }

    /// Whatever stands in the reader's files, a dialog keeps its size, a box fits on the screen, and nothing takes
    /// long.
    void staysWhole()
    {
        QFETCH(Run::Kind, kind);
        QFETCH(QString, text);
        Run run(kind, {false, {}, {text, text, text, text}, text});
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
            auto* code = run.dialog->findChild<QLabel*>("m_AssignPairingCode");
            QCOMPARE((code->text() == text ? text : htmlToPlainText(code->toolTip())).simplified(), text.simplified());
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
        QCOMPARE(model.index(0, 0).data(Qt::FontRole).value<QFont>().pointSizeF(), QFont().pointSizeF() * 1.1);
        QCOMPARE(model.headerData(5, Qt::Horizontal, Qt::FontRole).value<QFont>().pointSizeF(),
                 QFont().pointSizeF() * 1.2);
        QCOMPARE(model.index(0, 0).data(Qt::TextAlignmentRole), QVariant(Qt::AlignLeft));
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
    TestDialogLooks test;
    return QTest::qExec(&test, argc, argv);
}

#include "tst_dialog_looks.moc"
