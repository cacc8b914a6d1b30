// SPDX-FileCopyrightText: 2026 The Merivo Connections developers
// SPDX-License-Identifier: MIT
#include "support/ModalUser.h"
#include "support/Pixels.h"
#include "toolkit/BgDoubleSpinBox.h"
#include "toolkit/LmButtons.h"
#include "toolkit/LmCalendarWidget.h"
#include "toolkit/LmClickFrame.h"
#include "toolkit/LmDateEdit.h"
#include "toolkit/LmDoubleSpinBox.h"
#include "toolkit/LmFileDialog.h"
#include "toolkit/LmGuiConfig.h"
#include "toolkit/LmListWidget.h"
#include "toolkit/LmListWidgetDelegate.h"
#include "toolkit/LmMenu.h"
#include "toolkit/LmProgressBar.h"
#include "toolkit/LmProgressDialog.h"
#include "toolkit/LmSpinBox.h"
#include "toolkit/LmTabs.h"
#include "toolkit/LmTimeEdit.h"
#include "toolkit/LmTooltip.h"
#include "toolkit/LmWidgets.h"

#include <QApplication>
#include <QDir>
#include <QProxyStyle>
#include <QSignalSpy>
#include <QTabBar>
#include <QTest>

#include <climits>
#include <memory>
#include <tuple>
#include <utility>

namespace {

void setLocale(const char* name)
{
    QLocale::setDefault(QLocale(QLatin1String(name)));
}

/// Counts the widgets that stop using it.
struct CountingStyle final : QProxyStyle
{
    using QProxyStyle::unpolish;
    void unpolish(QWidget*) override { ++unpolished; }
    int unpolished = 0;
};

struct OtherConfig final : LmGuiConfig
{
    QString dateFormat() const override { return QStringLiteral("d.M.yy"); }
    QString timeFormat() const override { return QStringLiteral("h:mm AP"); }
    int firstWeekDay() const override { return 6; }
};

QIcon redIcon(int size)
{
    QPixmap pixmap(size, size);
    pixmap.fill(Qt::red);
    return QIcon(pixmap);
}

/// A list in which any rows can be selected, with these of the items "a" to "f" selected.
std::unique_ptr<LmListWidget> makeList(const QList<int>& selected)
{
    auto list = std::make_unique<LmListWidget>();
    list->setSelectionMode(QAbstractItemView::MultiSelection);
    list->addItems(QStringList{"a", "b", "c", "d", "e", "f"});
    for (const int row : selected)
        list->item(row)->setSelected(true);
    return list;
}

/// "abcdef", with the selected ones in capitals.
QString rows(const QListWidget& list)
{
    QString text;
    for (int row = 0; row < list.count(); ++row)
        text += list.item(row)->isSelected() ? list.item(row)->text().toUpper() : list.item(row)->text();
    return text;
}

} // namespace

class TestToolkitWidgets : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void cleanup() { setLocale("C"); }

    void typedSeparatorBecomesTheDecimalPoint()
    {
        // The default locale, the field's own locale, a typed text and what becomes of it. One separator is replaced:
        // the star before the default locale's point, the group separator before any other point.
        const std::tuple<const char*, const char*, const char*, const char*> rows[] = {
            {"de_DE", "de_DE", "1*5*5", "1,5*5"}, {"de_DE", "de_DE", "#5", ",5"},
            {"en_GB", "fr_CH", "1.5*5", "1.5,5"}, {"fr_CH", "fr_CH", "1.5\u202f", "1.5,"},
            {"de_DE", "en_GB", "1.5,", "1.5."},   {"fa_IR", "de_DE", "1٫5", "1,5"},
            {"de_DE", "de_DE", "Off1", "Off1"},   {"de_DE", "de_DE", "off1.off5", "1,5"},
        };
        int position = 0;
        for (const auto& [locale, own, typed, repaired] : rows) {
            setLocale(locale);
            LmDoubleSpinBox box;
            box.setSpecialValueText(QStringLiteral("off"));
            box.setLocale(QLocale(own));
            QString text = QString::fromUtf8(typed);
            box.validate(text, position);
            QCOMPARE(text, QString::fromUtf8(repaired));
        }

        setLocale("fa_IR");
        BgDoubleSpinBox box;
        box.setDecimalUnit(0, 30);
        box.setPrefix("ca. "); // What looks like a separator in a prefix or suffix isn't one.
        box.setSuffix(" mmol/l, F.");
        for (const char* keys : {"1.5", "2,5"}) {
            box.selectAll();
            QTest::keyClicks(&box, keys);
            QCOMPARE(box.value(), keys[0] - '0' + 0.5);
        }
        setLocale("en_GB");
        box.refreshLocale();
        QCOMPARE(box.cleanText(), QStringLiteral("2.5"));
    }

    void unusableEntryBecomesTheMinimum()
    {
        setLocale("de_DE");
        LmSpinBox whole;
        LmDoubleSpinBox decimal;
        whole.setRange(1000, 2000);
        decimal.setRange(0.5, 9);
        QString text;
        int position = 0;
        QCOMPARE(whole.validate(text, position), QValidator::Intermediate);
        QCOMPARE(decimal.validate(text, position), QValidator::Acceptable);
        decimal.fixup(text);
        QCOMPARE(text, QString()); // Without a special text for the minimum it's unchanged.

        decimal.setSpecialValueText(QStringLiteral("low"));
        whole.setSpecialValueText(QStringLiteral("low"));
        decimal.fixup(text);
        QCOMPARE(text, QStringLiteral("0,5"));
        whole.setLocale(QLocale("en_GB")); // The default locale counts.
        whole.fixup(text);
        QCOMPARE(text, QStringLiteral("1.000"));
        for (const QString prefix : {"", "low"}) { // As a prefix it isn't removed.
            whole.setPrefix(prefix);
            text = QStringLiteral("low1500");
            QCOMPARE(whole.validate(text, position), QValidator::Acceptable);
            QCOMPARE(text, prefix + "1500");
        }
    }

    void bloodGlucoseHasTwoUnits()
    {
        BgDoubleSpinBox box;
        const auto isSetUp = [&box](bool decimal, double minimum, double maximum, int decimals, double step) {
            return box.isDecimalUnit() == decimal && box.minimum() == minimum && box.maximum() == maximum &&
                   box.decimals() == decimals && box.singleStep() == step;
        };
        QVERIFY(isSetUp(false, 0, 999, 0, 5));
        box.setDecimalUnit(0.6, 33.3);
        QVERIFY(isSetUp(true, 0.6, 33.3, 1, 0.5));
        box.setWholeUnit(10, 600);
        QVERIFY(isSetUp(false, 10, 600, 0, 5));
        QVERIFY(box.setProperty("decimalUnit", true) && isSetUp(true, 10, 600, 1, 0.5));
        QVERIFY(box.setProperty("decimalUnit", false) && isSetUp(false, 10, 600, 0, 5));
    }

    void editsFollowTheConfig()
    {
        const auto config = std::make_unique<OtherConfig>();
        setLocale("en_GB");
        QWidget arabic;
        arabic.setLocale(QLocale("ar_EG"));
        LmDateEdit date(QDate(2024, 3, 9), &arabic);
        QCOMPARE(date.text(), QStringLiteral("9.3.24"));
        QVERIFY(date.calendarPopup());
        const auto* calendar = qobject_cast<LmCalendarWidget*>(date.calendarWidget());
        QVERIFY(calendar && calendar->verticalHeaderFormat() == QCalendarWidget::NoVerticalHeader);
        QCOMPARE(calendar->firstDayOfWeek(), Qt::Sunday);
        QCOMPARE(LmTimeEdit(QTime(15, 4), &arabic).text(), QStringLiteral("3:04 PM"));
    }

    void minutesGoInSteps()
    {
        LmTimeEdit edit(QTime(10, 20));
        for (const auto& [asked, step] : {std::pair(7, 1), {60, 60}, {61, 60}, {-4, 1}, {20, 20}, {0, 1}, {15, 15}}) {
            QVERIFY(edit.setProperty("minuteStep", asked));
            QCOMPARE(edit.property("minuteStep"), QVariant(step));
        }
        edit.setCurrentSection(QDateTimeEdit::MinuteSection);
        for (const auto& [count, minute] : {std::pair(1, 35), {-1, 20}, {10, 30}}) {
            edit.stepBy(count);
            QCOMPARE(edit.time(), QTime(10, minute));
        }
        edit.setCurrentSection(QDateTimeEdit::HourSection);
        edit.stepBy(1);
        QCOMPARE(edit.time(), QTime(11, 30));
    }

    void selectionMovesAsAWhole()
    {
        // The selected rows and the list after a step up or down.
        const std::tuple<QList<int>, const char*, const char*> moves[] = {
            {{1, 3}, "BaDcef", "acBeDf"},    {{0, 2}, "AbCdef", "bAdCef"}, {{3, 5}, "abDcFe", "abcDeF"},
            {{2, 3, 4}, "aCDEbf", "abfCDE"}, {{}, "abcdef", "abcdef"},
        };
        for (const auto& [selected, up, down] : moves) {
            for (const auto& [move, after] : {std::pair(&LmListWidget::moveUp, up), {&LmListWidget::moveDown, down}}) {
                const auto list = makeList(selected);
                const QString before = rows(*list);
                const QSignalSpy moved(list.get(), &LmListWidget::itemsMoved);
                (list.get()->*move)();
                QCOMPARE(rows(*list), QString(after));
                QCOMPARE(moved.size(), after == before ? 0 : 1);
            }
        }
    }

    void listReportsItsSelection()
    {
        const auto list = makeList({});
        QStringList texts;
        connect(list.get(), &LmListWidget::selectionChanged, this, [&](bool any) { texts << (any ? "any" : "none"); });
        connect(list.get(), &LmListWidget::blockSelected, this,
                [&](bool block) { texts << (block ? "block" : "gap"); });
        for (const int row : {3, 1, 2})
            list->item(row)->setSelected(true);
        list->clearSelection();
        QCOMPARE(texts.join(' '), QStringLiteral("any block any gap any block none gap"));

        list->item(1)->setSelected(true);
        list->item(4)->setSelected(true);
        list->removeSelectedItems();
        QListWidgetItem own(QStringLiteral("x"));
        list->addItems(QList<QListWidgetItem*>{&own, list->item(0)});
        QCOMPARE(rows(*list), QStringLiteral("acdfxa"));
        QVERIFY(!own.listWidget() && list->focusPolicy() == Qt::NoFocus && !list->viewport()->acceptDrops());
    }

    void rowsShowIconAndText()
    {
        for (const bool rightToLeft : {false, true}) {
            LmListWidget list;
            list.setLayoutDirection(rightToLeft ? Qt::RightToLeft : Qt::LeftToRight);
            list.addItems(QStringList{QString(60, 'M'), "i"});
            list.item(0)->setIcon(redIcon(8));                            // Scaled up to 30 pixels.
            list.item(1)->setData(Qt::DecorationRole, QColor(Qt::green)); // Not an icon.
            const LmListWidgetDelegate delegate(&list);
            QStyleOptionViewItem option;
            const auto paint = [&](int row) {
                option.rect = QRect({10, 10}, delegate.sizeHint(option, list.model()->index(row, 0)) + QSize(200, 0));
                return imageOf({220, 60}, Qt::white, [&](QPainter& painter) {
                    painter.setLayoutDirection(list.layoutDirection());
                    painter.setPen(Qt::yellow);
                    delegate.paint(&painter, option, list.model()->index(row, 0));
                    painter.drawPoint(0, 0);
                });
            };
            const auto isText = [](QRgb pixel) {
                return qGray(pixel) < 60;
            };

            // The text is at the left in either direction, moved only by an icon at the left, and elided.
            const QImage withIcon = paint(0);
            const QRect text = boundsOf(withIcon, isText);
            const int start = rightToLeft ? 15 : 55;
            QVERIFY(text.left() >= start && text.left() < start + 5);
            QVERIFY(text.right() > start + 125 && text.right() < (rightToLeft ? 164 : 205));
            const QRect icon(rightToLeft ? 175 : 15, 15, 30, 30);
            QCOMPARE(boundsOf(withIcon, [](QRgb pixel) { return pixel == qRgb(255, 0, 0); }), icon);
            QCOMPARE(withIcon.pixelColor(0, 0), QColor(Qt::yellow)); // The painter has its own pen again.
            QCOMPARE(option.rect.height(), 40);

            option.state = QStyle::State_Selected;
            const QImage selected = paint(0);
            QVERIFY(selected.pixelColor(icon.center()).red() == 207 && selected.pixelColor(201, 11).red() == 207);

            const QRect shortText = boundsOf(paint(1), isText);
            QVERIFY(shortText.left() >= 15 && shortText.right() < 25 && option.rect.height() == 25);
        }
    }

    void framesReportTheirId()
    {
        for (const int id : {-1, 0, 7}) {
            LmClickFrame frame;
            QVERIFY(frame.setProperty("id", id) && frame.property("id") == QVariant(id));
            const QSignalSpy clicks(&frame, qOverload<>(&LmClickFrame::clicked));
            const QSignalSpy doubleClicks(&frame, qOverload<>(&LmClickFrame::doubleClicked));
            const QSignalSpy clicksWithId(&frame, qOverload<int>(&LmClickFrame::clicked));
            const QSignalSpy doubleClicksWithId(&frame, qOverload<int>(&LmClickFrame::doubleClicked));
            QTest::mousePress(&frame, Qt::RightButton);
            QTest::mouseRelease(&frame, Qt::RightButton, {}, QPoint(900, 900)); // Dragged out.
            const QList<QVariantList> withId = id < 0 ? QList<QVariantList>() : QList<QVariantList>{{id}};
            QVERIFY(clicksWithId == withId && clicks.size() == 1 - withId.size() && doubleClicks.isEmpty());
            QTest::mouseDClick(&frame, Qt::LeftButton);
            QVERIFY(doubleClicksWithId == withId && doubleClicks.size() == 1 - withId.size());
        }
    }

    void styleSheetsSelectOnProperties()
    {
        qApp->setStyleSheet(QStringLiteral(
            "LmClickFrame { background: #ff0000; } LmClickFrame[ClickStyle=\"true\"] { background: #00ff00; }"
            "LmBalticButton[IconStyle=\"night\"] { background: #0000ff; border: none; }"));
        LmClickFrame frame;
        for (const bool on : {false, true, false, false, true}) {
            QVERIFY(frame.setProperty("clickStyle", on) && frame.property("clickStyle") == QVariant(on));
            QCOMPARE(frame.grab().toImage().pixelColor(5, 5), QColor(on ? Qt::green : Qt::red));
        }

        LmBalticButton button;
        button.ensurePolished();
        button.setIconFor("night", redIcon(4));
        QVERIFY(button.icon().isNull());
        for (const char* name : {"night", "day"}) { // The latter has no icon.
            button.setIconStyle(name);
            QVERIFY(button.property("IconStyle") == "night" && !button.icon().isNull());
        }
        QCOMPARE(button.grab().toImage().pixelColor(1, 1), QColor(Qt::blue));
        qApp->setStyleSheet(QString());
        lmRepolish(nullptr);

        QWidget parent;
        for (const Qt::LayoutDirection direction : {Qt::LeftToRight, Qt::RightToLeft}) {
            parent.setLayoutDirection(direction);
            QCOMPARE(LmTabStackedWidget(&parent).property("LayoutDirInverted"), QVariant(direction == Qt::RightToLeft));
        }
        QCOMPARE(LmTooltip(nullptr).property("LmTooltip"), QVariant(true));
        QCOMPARE(LmHoldButton().autoRepeatInterval(), 200);
    }

    void styleIsReleasedBeforeTheWidget()
    {
        auto* const tabs = new LmTabWidget;
        for (QWidget* widget : QWidgetList{new LmPushButton, new LmCheckButton, new LmDialogButtonBox, tabs}) {
            CountingStyle style;
            QWidget* const styled = widget == tabs ? tabs->tabBar() : widget;
            styled->setStyle(&style);
            styled->ensurePolished();
            const int before = style.unpolished;
            delete widget;
            QCOMPARE(style.unpolished, before + 1);
        }
    }

    void progressHasTheDigitsOfTheLocale()
    {
        const std::tuple<const char*, int, int, int, const char*> rows[] = {
            {"%p%", 0, 300, 200, "٦٦%"},
            {"%L1%", 0, 300, 200, "٦٦%"},
            {"%L1 of %1", 0, 8, 2, "٢٥ of %p"},
            {"%L1", 0, 0, 0, ""},
            {"%L1", 5, 5, 5, "١٠٠"},
            {"%L1", 10, 20, 9, ""},
            {"%L1", INT_MIN, 5, INT_MIN, ""},
            {"%L1", -2000000000, 2000000000, 0, "٥٠"},
        };
        setLocale("ar_EG");
        for (const auto& [format, minimum, maximum, value, text] : rows) {
            LmProgressBar bar;
            bar.setRange(minimum, maximum);
            bar.setValue(value);
            bar.setFormat(QString::fromLatin1(format));
            QCOMPARE(bar.text(), QString::fromUtf8(text));
        }
        setLocale("fa_IR"); // Its percent sign is another.
        for (const auto& [format, kept] : {std::pair("%L1", "%L1"), {"", "%p%"}}) {
            LmProgressDialog dialog(QString::fromLatin1(format));
            QCOMPARE(dialog.findChild<LmProgressBar*>()->format(), QString::fromLatin1(kept));
            QVERIFY(!(dialog.windowFlags() & Qt::WindowContextHelpButtonHint));
            dialog.cancel(); // It would show itself after a while.
        }
    }

    void folderDialogShowsOnlyFolders()
    {
        const LmFileDialog plain(nullptr, Qt::Dialog | Qt::WindowContextHelpButtonHint);
        QVERIFY(!(plain.windowFlags() & Qt::WindowContextHelpButtonHint));
        QVERIFY(!plain.testOption(QFileDialog::DontUseNativeDialog));
        QFileDialog::Options options;
        const ModalUser user([&options](QWidget& modal) {
            auto& dialog = dynamic_cast<QFileDialog&>(modal);
            options = dialog.options();
            dialog.reject();
        });
        QCOMPARE(LmFileDialog::getExistingDirectory(nullptr, QStringLiteral("Title"), QDir::tempPath()), QString());
        QCOMPARE(options, QFileDialog::Options(QFileDialog::ShowDirsOnly | QFileDialog::HideNameFilterDetails));
    }

    void openMenuShowsShortcutsInItsTexts()
    {
        const QList<QKeySequence> keys{QKeySequence("Ctrl+P"), QKeySequence("F5")};
        const QString longText = "Print %1" + QString(8, QChar(' ')) + QChar(0x200f) + "Ctrl+P";
        for (const auto direction : {Qt::LeftToRight, Qt::RightToLeft}) {
            QAction print(QStringLiteral("Print %1"));
            print.setShortcuts(keys);
            auto menu = std::make_unique<LmMenu>();
            menu->setLayoutDirection(direction);
            menu->addAction(&print);
            QAction* const deleted = menu->addAction(QStringLiteral("Deleted"));
            deleted->setShortcut(QKeySequence("F6"));
            QList<QKeySequence> keysWhenTriggered;
            connect(&print, &QAction::triggered, this, [&] { keysWhenTriggered = print.shortcuts(); });

            menu->popup({});
            QCOMPARE(print.text(), direction == Qt::RightToLeft ? longText : QStringLiteral("Print %1"));
            QCOMPARE(print.shortcuts().isEmpty(), direction == Qt::RightToLeft);
            delete deleted;
            QTest::mouseClick(menu.get(), Qt::LeftButton, {}, menu->actionGeometry(&print).center());
            QCOMPARE(keysWhenTriggered, keys);
            QCOMPARE(print.text(), QStringLiteral("Print %1"));
            menu->popup({});
            menu.reset(); // Restores them too.
            QVERIFY(print.text() == QLatin1String("Print %1") && print.shortcuts() == keys);
        }

        LmMenu menu;
        menu.setLayoutDirection(Qt::RightToLeft);
        QAction* const action = menu.addAction(QStringLiteral("Print %1"));
        action->setShortcuts(keys);
        Q_EMIT menu.aboutToShow();
        menu.setLayoutDirection(Qt::LeftToRight);
        Q_EMIT menu.aboutToHide();
        menu.setLayoutDirection(Qt::RightToLeft);
        Q_EMIT menu.aboutToHide(); // The menu doesn't know the shortcuts any more.
        QVERIFY(action->shortcuts().isEmpty() && action->text() == longText);
    }

    void menuPaddingDependsOnItsActions()
    {
        // What the only action has, and the paddings in the left-to-right and in the right-to-left direction.
        const std::tuple<QByteArray, const char*, const char*> rows[] = {
            {"nothing", "right", "left"}, {"icon", "right", "left right"},       {"check", "left right", "left right"},
            {"keys", "", "left"},         {"check, keys", "left", "left right"}, {"hidden icon", "right", "left"}};
        for (const auto& [parts, leftToRight, rightToLeft] : rows) {
            LmMenu menu;
            QAction* const action = menu.addAction(QStringLiteral("Action"));
            action->setIcon(parts.contains("icon") ? redIcon(16) : QIcon());
            action->setIconVisibleInMenu(!parts.contains("hidden"));
            action->setCheckable(parts.contains("check"));
            for (const auto direction : {Qt::LeftToRight, Qt::RightToLeft}) {
                menu.setLayoutDirection(direction);
                action->setShortcut(QKeySequence(parts.contains("keys") ? "F5" : ""));
                Q_EMIT menu.aboutToShow();
                const QByteArray sides(direction == Qt::LeftToRight ? leftToRight : rightToLeft);
                QVERIFY2(menu.property("leftPadding") == sides.contains("left"), parts);
                QVERIFY2(menu.property("rightPadding") == sides.contains("right"), parts);
            }
        }
    }
};

QTEST_MAIN(TestToolkitWidgets)

#include "tst_toolkit_widgets.moc"
