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

#include <QApplication>
#include <QDir>
#include <QImage>
#include <QPainter>
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

/// Counts the widgets that let go of it.
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

    void fieldsMendWhatIsTyped()
    {
        constexpr auto Good = QValidator::Acceptable;
        constexpr auto Bad = QValidator::Invalid;
        // Default locale, the field's own one if it is another, what is typed and what becomes of it. One separator is
        // replaced at a time, the star before the default locale's point and the group separator before any other
        // point; in capitals the special text isn't one.
        const std::tuple<const char*, const char*, const char*, const char*, QValidator::State> cases[] = {
            {"de_DE", "", "1.5", "1,5", Good},      {"de_DE", "", "1*5", "1,5", Good},
            {"de_DE", "", "#5", ",5", Good},        {"en_GB", "fr_CH", "1.5*5", "1.5,5", Bad},
            {"de_DE", "", "1*5*5", "1,5*5", Bad},   {"de_DE", "en_GB", "1,5", "1.5", Good},
            {"en_GB", "", "1.5", "1.5", Good},      {"en_GB", "", "1,5", "1.5", Good},
            {"en_GB", "fr_CH", "1.5", "1,5", Good}, {"fr_CH", "", "1.5\u202f", "1.5,", Bad},
            {"fr_CH", "", "1\u202f5", "1,5", Good}, {"ar_EG", "", "1*5", "1٫5", Good},
            {"ar_EG", "", "1٬5", "1٫5", Good},      {"de_DE", "", "", "", Good},
            {"de_DE", "", "off", "", Good},         {"de_DE", "", "off1.off5", "1,5", Good},
            {"de_DE", "", "Off1", "Off1", Bad}};
        for (const auto& [locale, own, typed, mended, state] : cases) {
            setLocale(locale);
            LmDoubleSpinBox box;
            box.setSpecialValueText(QStringLiteral("off"));
            if (*own)
                box.setLocale(QLocale(QLatin1String(own)));
            QString text = QString::fromUtf8(typed);
            int position = 0;
            QVERIFY2(box.validate(text, position) == state, typed);
            QCOMPARE(text, QString::fromUtf8(mended));
        }

        for (const char* name : {"ar_EG", "cs_CZ", "de_AT", "de_CH", "de_DE", "en_GB", "en_ZA", "es_ES", "fa_IR",
                                 "fr_CH", "fr_FR", "hi_IN", "nb_NO", "pl_PL", "pt_PT", "ru_RU", "sv_SE"}) {
            setLocale(name);
            const QString separators = QString(QLocale().decimalPoint()) + QLocale().groupSeparator();
            for (const char* keys : {"1.5", "1,5"}) {
                BgDoubleSpinBox box;
                box.setDecimalUnit(0, 30);
                box.setPrefix(separators.contains('.') ? "" : "ca. ");
                box.setSuffix(separators.contains(',') ? "" : " mmol/l, F.");
                box.selectAll();
                QTest::keyClicks(&box, keys);
                QVERIFY2(box.value() > 1.49 && box.value() < 1.51, QByteArray(name) + keys);
            }
        }

        setLocale("de_DE");
        LmDoubleSpinBox box;
        box.setValue(12.5);
        setLocale("en_GB");
        box.refreshLocale();
        QCOMPARE(box.text(), QStringLiteral("12.50"));
    }

    void specialTextStandsForTheMinimum()
    {
        setLocale("de_DE");
        LmSpinBox whole;
        LmDoubleSpinBox decimal;
        whole.setRange(1000, 2000);
        decimal.setRange(0.5, 9);
        QString text = QStringLiteral("x");
        whole.fixup(text);
        decimal.fixup(text);
        QCOMPARE(text, QStringLiteral("x"));
        decimal.setSpecialValueText(QStringLiteral("low"));
        whole.setSpecialValueText(QStringLiteral("low"));
        whole.setLocale(QLocale("en_GB")); // It is the default locale that counts here.
        whole.fixup(text);
        QCOMPARE(text, QStringLiteral("1.000"));
        decimal.fixup(text);
        QCOMPARE(text, QStringLiteral("0,5"));

        int position = 0;
        for (const auto& [prefix, left] : {std::pair("", "1500"), {"low", "low1500"}}) {
            whole.setPrefix(QLatin1String(prefix));
            text = QStringLiteral("low1500");
            QCOMPARE(whole.validate(text, position), QValidator::Acceptable);
            QCOMPARE(text, QString::fromLatin1(left));
        }
        text.clear(); // Not a finished entry, other than in a decimal field.
        QCOMPARE(whole.validate(text, position), QValidator::Intermediate);
    }

    void bloodGlucoseHasTwoUnits()
    {
        BgDoubleSpinBox box;
        const auto facts = [&box] {
            return QVector<double>{double(box.isDecimalUnit()), box.minimum(), box.maximum(), double(box.decimals()),
                                   box.singleStep()};
        };
        QCOMPARE(facts(), QVector<double>({0, 0, 999, 0, 5}));
        QVERIFY(box.setProperty("decimalUnit", true));
        QCOMPARE(facts(), QVector<double>({1, 0, 999, 1, 0.5}));
        QVERIFY(box.setProperty("decimalUnit", false));
        QCOMPARE(facts(), QVector<double>({0, 0, 999, 0, 5}));
        box.setDecimalUnit(0.6, 33.3);
        QCOMPARE(facts(), QVector<double>({1, 0.6, 33.3, 1, 0.5}));
        box.setWholeUnit(10, 600);
        QCOMPARE(facts(), QVector<double>({0, 10, 600, 0, 5}));
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
        for (const auto& [asked, step] :
             {std::pair(7, 1), {15, 15}, {61, 15}, {60, 60}, {-4, 1}, {20, 20}, {0, 1}, {15, 15}}) {
            QVERIFY(edit.setProperty("minuteStep", asked));
            QCOMPARE(edit.property("minuteStep"), QVariant(step));
        }
        const std::tuple<QDateTimeEdit::Section, int, QTime> steps[] = {
            {QDateTimeEdit::MinuteSection, 1, {10, 35}},
            {QDateTimeEdit::MinuteSection, -1, {10, 20}},
            {QDateTimeEdit::MinuteSection, 10, {10, 30}},
            {QDateTimeEdit::HourSection, 1, {11, 30}},
        };
        for (const auto& [section, count, time] : steps) {
            edit.setCurrentSection(section);
            edit.stepBy(count);
            QCOMPARE(edit.time(), time);
        }
    }

    void selectionMovesAsAWhole()
    {
        // The rows selected, the list after a step, and back where that isn't at the edge.
        const std::tuple<QList<int>, const char*, const char*> moves[] = {
            {{1, 3}, "BaDcef", "acBeDf"},    {{0, 2}, "AbCdef", "bAdCef"}, {{3, 5}, "abDcFe", "abcDeF"},
            {{2, 3, 4}, "aCDEbf", "abfCDE"}, {{}, "abcdef", "abcdef"},
        };
        for (const auto& [selected, up, down] : moves) {
            for (const bool upwards : {true, false}) {
                const auto list = makeList(selected);
                const QString before = rows(*list);
                const QString after(upwards ? up : down);
                QSignalSpy moved(list.get(), &LmListWidget::itemsMoved);
                upwards ? list->moveUp() : list->moveDown();
                QCOMPARE(rows(*list), after);
                QCOMPARE(moved.size(), after == before ? 0 : 1);
            }
        }
    }

    void listTellsOfItsSelection()
    {
        const auto list = makeList({});
        QStringList told;
        connect(list.get(), &LmListWidget::selectionChanged, this, [&](bool any) { told << (any ? "any" : "none"); });
        connect(list.get(), &LmListWidget::blockSelected, this, [&](bool block) { told << (block ? "block" : "gap"); });
        for (const int row : {3, 1, 2})
            list->item(row)->setSelected(true);
        list->clearSelection();
        QCOMPARE(told.join(' '), QStringLiteral("any block any gap any block none gap"));

        list->item(1)->setSelected(true);
        list->item(4)->setSelected(true);
        list->removeSelectedItems();
        QListWidgetItem own(QStringLiteral("x"));
        list->addItems(QList<QListWidgetItem*>{&own, list->item(0)});
        list->addItems(QList<QListWidgetItem*>());
        QCOMPARE(rows(*list), QStringLiteral("acdfxa"));
        QVERIFY(!own.listWidget() && list->focusPolicy() == Qt::NoFocus && !list->viewport()->acceptDrops());
    }

    void rowsShowIconAndText()
    {
        for (const bool rightToLeft : {false, true}) {
            LmListWidget list;
            list.setLayoutDirection(rightToLeft ? Qt::RightToLeft : Qt::LeftToRight);
            list.addItems(QStringList{QString(60, 'M'), "i", "i", QString(60, 'M')});
            list.item(1)->setIcon(redIcon(64));
            list.item(2)->setData(Qt::DecorationRole, QColor(Qt::green)); // No icon.
            list.item(3)->setIcon(redIcon(8));                            // Scaled up to 30 pixels.
            const LmListWidgetDelegate delegate(&list);
            QStyleOptionViewItem option;
            const auto paint = [&](int row) {
                const QModelIndex index = list.model()->index(row, 0);
                option.rect = QRect(10, 10, 200, delegate.sizeHint(option, index).height());
                QImage image(220, option.rect.height() + 20, QImage::Format_RGB32);
                image.fill(Qt::white);
                QPainter painter(&image);
                painter.setLayoutDirection(list.layoutDirection());
                painter.setPen(Qt::yellow);
                delegate.paint(&painter, option, index);
                painter.drawPoint(0, 0);
                return image;
            };
            const auto textBounds = [&paint](int row) {
                return boundsOf(paint(row), [](QRgb pixel) { return qGray(pixel) < 60; });
            };

            // Elided, five pixels inside of either edge.
            const QRect elided = textBounds(0);
            QVERIFY(elided.left() >= 15 && elided.left() < 20 && elided.right() > 185 && elided.right() < 205);
            // At the left in either layout; only an icon at the left moves it.
            const int start = rightToLeft ? 15 : 55;
            QVERIFY(textBounds(1).left() >= start && textBounds(1).right() < start + 10);
            QVERIFY(textBounds(3).left() >= start && textBounds(3).right() < (rightToLeft ? 164 : 205));

            QCOMPARE(delegate.sizeHint(option, list.model()->index(1, 0)), QSize(0, 40));
            QCOMPARE(list.sizeHintForRow(2), 25);
            const QRect icon(rightToLeft ? 175 : 15, 15, 30, 30);
            for (const int row : {1, 3})
                QCOMPARE(boundsOf(paint(row), [](QRgb pixel) { return pixel == qRgb(255, 0, 0); }), icon);

            // The selection covers the icon and the whole row.
            option.state = QStyle::State_Selected;
            const QImage selected = paint(1);
            QCOMPARE(selected.pixelColor(0, 0), QColor(Qt::yellow)); // The painter has its own pen again.
            QCOMPARE(selected.pixelColor(icon.center()).red(), 207);
            QCOMPARE(boundsOf(selected, [](QRgb pixel) { return qRed(pixel) == 207; }), option.rect);
        }
    }

    void framesTellTheirId()
    {
        for (const int id : {-1, 0, 7}) {
            LmClickFrame frame;
            frame.resize(20, 20);
            QVERIFY(frame.setProperty("id", id) && frame.property("id") == QVariant(id));
            QVector<int> told; // A double click as 100 more than the id, none as -1.
            connect(&frame, qOverload<>(&LmClickFrame::clicked), this, [&told] { told << -1; });
            connect(&frame, qOverload<>(&LmClickFrame::doubleClicked), this, [&told] { told << 99; });
            connect(&frame, qOverload<int>(&LmClickFrame::clicked), this, [&told](int n) { told << n; });
            connect(&frame, qOverload<int>(&LmClickFrame::doubleClicked), this, [&told](int n) { told << 100 + n; });
            QTest::mousePress(&frame, Qt::RightButton);
            QTest::mouseRelease(&frame, Qt::RightButton, {}, QPoint(900, 900)); // Dragged out.
            QTest::mouseDClick(&frame, Qt::LeftButton);
            QCOMPARE(told, QVector<int>({id, 100 + id}));
        }
    }

    void styleSheetsSeeTheProperties()
    {
        qApp->setStyleSheet(QStringLiteral(
            "LmClickFrame { background: #ff0000; } LmClickFrame[ClickStyle=\"true\"] { background: #00ff00; }"
            "LmBalticButton[IconStyle=\"night\"] { background: #0000ff; border: none; }"));
        LmClickFrame frame;
        frame.ensurePolished();
        for (const bool on : {false, true, false, false, true}) {
            QVERIFY(frame.setProperty("clickStyle", on) && frame.property("clickStyle") == QVariant(on));
            QCOMPARE(frame.grab().toImage().pixelColor(5, 5), QColor(on ? Qt::green : Qt::red));
        }

        LmBalticButton button;
        button.ensurePolished();
        button.setIconFor("night", redIcon(4));
        button.setProperty("noon", 12);
        QVERIFY(button.icon().isNull());
        for (const char* name : {"night", "day", "noon"}) { // The latter two have no icon.
            button.setIconStyle(name);
            QCOMPARE(button.property("IconStyle"), QVariant(QStringLiteral("night")));
            QVERIFY(!button.icon().isNull());
        }
        QCOMPARE(button.grab().toImage().pixelColor(1, 1), QColor(Qt::blue));
        qApp->setStyleSheet(QString());

        for (const Qt::LayoutDirection direction : {Qt::LeftToRight, Qt::RightToLeft}) {
            QWidget parent;
            parent.setLayoutDirection(direction);
            QCOMPARE(LmTabStackedWidget(&parent).property("LayoutDirInverted"), QVariant(direction == Qt::RightToLeft));
        }
    }

    void styleIsLetGoOfFirst()
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
        const std::tuple<const char*, int, int, int, const char*> cases[] = {
            {"%p%", 0, 300, 200, "٦٦%"},
            {"%L1%", 0, 300, 200, "٦٦%"},
            {"%L1", 0, 0, 0, ""},
            {"%L1", 5, 5, 5, "١٠٠"},
            {"%L1", 10, 20, 9, ""},
            {"%L1", -100, 100, -1, "٤٩"},
            {"%L1", INT_MIN, 5, INT_MIN, ""},
            {"%L1", -2000000000, 2000000000, 0, "٥٠"},
            {"%L1 of %1", 0, 8, 2, "٢٥ of %p"},
            {"only %1", 0, 8, 2, "only %1"},
        };
        setLocale("ar_EG");
        for (const auto& [format, minimum, maximum, value, text] : cases) {
            LmProgressBar bar;
            bar.setRange(minimum, maximum);
            bar.setValue(value);
            bar.setFormat(QString::fromLatin1(format));
            QCOMPARE(bar.text(), QString::fromUtf8(text));
        }
        setLocale("fa_IR"); // Qt's own default would have this locale's percent sign.
        QCOMPARE(LmProgressBar().format(), QStringLiteral("%p%"));
        for (const auto& [format, kept] : {std::pair("%L1", "%L1"), {"", "%p%"}}) {
            LmProgressDialog dialog(QString::fromLatin1(format));
            QCOMPARE(dialog.findChild<LmProgressBar*>()->format(), QString::fromLatin1(kept));
            QVERIFY(!(dialog.windowFlags() & Qt::WindowContextHelpButtonHint));
            dialog.cancel(); // It would show itself after a while.
        }
    }

    void folderDialogShowsFoldersAlone()
    {
        const LmFileDialog plain;
        const LmFileDialog flagged(nullptr, Qt::Dialog | Qt::WindowContextHelpButtonHint);
        for (const LmFileDialog* dialog : {&plain, &flagged})
            QVERIFY(!(dialog->windowFlags() & Qt::WindowContextHelpButtonHint));
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

    void menuKeepsShortcutsFromRightToLeft()
    {
        const QString separator = QString(8, QChar(' ')) + QChar(0x200f);
        const QList<QKeySequence> keys{QKeySequence("Ctrl+P"), QKeySequence("F5")};
        for (const bool rightToLeft : {false, true}) {
            LmMenu menu;
            menu.setLayoutDirection(rightToLeft ? Qt::RightToLeft : Qt::LeftToRight);
            QAction* const print = menu.addAction(QStringLiteral("Print 100%1"));
            print->setShortcuts(keys);
            QAction* const passing = menu.addAction(QStringLiteral("Passing"));
            passing->setShortcut(QKeySequence("F6"));
            QList<QKeySequence> keysWhenTriggered;
            connect(print, &QAction::triggered, this, [&] { keysWhenTriggered = print->shortcuts(); });

            menu.popup({});
            QCOMPARE(print->shortcuts(), rightToLeft ? QList<QKeySequence>() : keys);
            QCOMPARE(print->text(), rightToLeft ? "Print 100%1" + separator + "Ctrl+P" : QStringLiteral("Print 100%1"));
            delete passing;
            QTest::mouseClick(&menu, Qt::LeftButton, {}, menu.actionGeometry(print).center());
            QCOMPARE(keysWhenTriggered, keys);
            QCOMPARE(print->text(), QStringLiteral("Print 100%1"));
        }

        QAction own(QStringLiteral("Own"));
        own.setShortcuts(keys);
        auto deleted = std::make_unique<LmMenu>();
        deleted->setLayoutDirection(Qt::RightToLeft);
        deleted->addAction(&own);
        deleted->popup({});
        deleted.reset();
        QVERIFY(own.shortcuts() == keys && own.text() == QLatin1String("Own"));

        LmMenu menu;
        menu.setLayoutDirection(Qt::RightToLeft);
        QAction* const action = menu.addAction(QStringLiteral("Turned"));
        action->setShortcuts(keys);
        Q_EMIT menu.aboutToShow();
        menu.setLayoutDirection(Qt::LeftToRight);
        Q_EMIT menu.aboutToHide();
        menu.setLayoutDirection(Qt::RightToLeft);
        Q_EMIT menu.aboutToHide(); // Too late.
        QVERIFY(action->shortcuts().isEmpty() && action->text().contains(separator));
    }

    void menuTellsWhereItNeedsRoom()
    {
        // What its one action has, and the paddings at the left and right in either direction.
        const std::tuple<const char*, const char*, const char*> cases[] = {
            {"", "-R", "L-"},     {"icon", "-R", "LR"},       {"check", "LR", "LR"},
            {"keys", "--", "L-"}, {"check keys", "L-", "LR"}, {"hidden icon", "-R", "L-"},
        };
        for (const auto& [having, leftToRight, rightToLeft] : cases) {
            for (const bool isLeftToRight : {true, false}) {
                LmMenu menu;
                menu.setLayoutDirection(isLeftToRight ? Qt::LeftToRight : Qt::RightToLeft);
                QAction* const action = menu.addAction(QStringLiteral("Action"));
                const QByteArray parts(having);
                action->setIcon(parts.contains("icon") ? redIcon(16) : QIcon());
                action->setIconVisibleInMenu(!parts.contains("hidden"));
                action->setCheckable(parts.contains("check"));
                action->setShortcut(QKeySequence(parts.contains("keys") ? "F5" : ""));
                Q_EMIT menu.aboutToShow();
                const QString padding = QString(menu.property("leftPadding").toBool() ? "L" : "-") +
                                        (menu.property("rightPadding").toBool() ? "R" : "-");
                QCOMPARE(padding, QString(isLeftToRight ? leftToRight : rightToLeft));
            }
        }
    }
};

QTEST_MAIN(TestToolkitWidgets)

#include "tst_toolkit_widgets.moc"
