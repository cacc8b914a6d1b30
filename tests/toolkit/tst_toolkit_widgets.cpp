// SPDX-FileCopyrightText: 2026 The Merivo Connections developers
// SPDX-License-Identifier: MIT
#include "support/MessageCapture.h"
#include "support/Pixels.h"
#include "toolkit/BgDoubleSpinBox.h"
#include "toolkit/LmButtons.h"
#include "toolkit/LmCalendarWidget.h"
#include "toolkit/LmClickFrame.h"
#include "toolkit/LmDateEdit.h"
#include "toolkit/LmDoubleSpinBox.h"
#include "toolkit/LmFileDialog.h"
#include "toolkit/LmGuiConfig.h"
#include "toolkit/LmIcons.h"
#include "toolkit/LmListWidget.h"
#include "toolkit/LmLogging.h"
#include "toolkit/LmMenu.h"
#include "toolkit/LmMessageBox.h"
#include "toolkit/LmProgressBar.h"
#include "toolkit/LmProgressDialog.h"
#include "toolkit/LmSpinBox.h"
#include "toolkit/LmTabs.h"
#include "toolkit/LmTimeEdit.h"
#include "toolkit/LmTooltip.h"
#include "toolkit/LmWidgets.h"

#include <QAbstractButton>
#include <QAbstractItemView>
#include <QApplication>
#include <QFontMetricsF>
#include <QMouseEvent>
#include <QScreen>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTest>
#include <QTimer>
#include <QToolButton>

#include <memory>
#include <tuple>
#include <utility>

namespace {

void setLocale(const char* name)
{
    QLocale::setDefault(QLocale(QLatin1String(name)));
}

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

/// Returns a null date for 0.
QDate march(int day)
{
    return day == 0 ? QDate() : QDate(2024, 3, 1).addDays(day - 1);
}

/// Shows March 2024 with a range from 10 to 14.
class Calendar final : public LmCalendarWidget
{
public:
    explicit Calendar(int firstWeekDay = 0)
    {
        setUp(firstWeekDay);
        setCurrentPage(2024, 3);
        setRangeStart(march(10));
        setRangeEnd(march(14));
    }

    QAbstractItemView* const view = findChild<QAbstractItemView*>();

    QImage painted(const QDate& date) const
    {
        return imageOf({40, 30}, Qt::blue, [&](QPainter& painter) {
            painter.setPen(view->palette().color(QPalette::Text));
            paintCell(&painter, QRect(0, 0, 40, 29), date);
            painter.drawPoint(0, 29); // In the painter's own pen.
        });
    }
};

class RecordingParent final : public QWidget, public LmLogProxy
{
public:
    using LmLogProxy::LmLogProxy;
    void logCritical(QString title, QString text, QString detail) override { records << title + text + detail; }

    QStringList records;
};

void sendMouse(QWidget& widget, QEvent::Type type, QPointF local, QPointF screen)
{
    QMouseEvent event(type, local, local, screen, Qt::LeftButton, Qt::LeftButton, Qt::NoModifier);
    QCoreApplication::sendEvent(&widget, &event);
}

} // namespace

class TestToolkitWidgets : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase()
    {
        QCoreApplication::setAttribute(Qt::AA_UseHighDpiPixmaps, true);
        QImage raster(20, 10, QImage::Format_ARGB32);
        raster.fill(Qt::blue);
        QVERIFY(raster.save(file("r.png")) && QFile::copy(file("r.png"), file("r.svg")));
        // Half of the view box is empty.
        QFile svg(file("v.svg"));
        QVERIFY(svg.open(QIODevice::WriteOnly));
        svg.write("<svg xmlns='http://www.w3.org/2000/svg' width='20' height='10' viewBox='0 0 40 20'>"
                  "<rect width='20' height='20' fill='#ff0000'/></svg>");
    }

    void cleanup()
    {
        setLocale("C");
        QGuiApplication::setLayoutDirection(Qt::LeftToRight);
    }

    void typedSeparatorBecomesTheDecimalPoint()
    {
        // The default locale, the field's own locale, a typed text and what becomes of it. One separator is replaced:
        // the star before the default locale's point, that before the group separator, and this before any other point.
        const std::tuple<const char*, const char*, const char*, const char*> rows[] = {
            {"de_DE", "de_DE", "1*5*5", "1,5*5"}, {"de_DE", "de_DE", "#5", ",5"},
            {"en_GB", "fr_CH", "1.5*5", "1.5,5"}, {"fr_CH", "fr_CH", "1.5\u202f", "1.5,"},
            {"fa_IR", "de_DE", "1.0٫5", "1.0,5"}, {"de_DE", "de_DE", "off1.off5Off", "1,5Off"},
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

    void rowsShowIconTextAndSelection()
    {
        for (const bool rightToLeft : {true, false}) {
            QGuiApplication::setLayoutDirection(rightToLeft ? Qt::RightToLeft : Qt::LeftToRight);
            LmListWidget list;
            list.addItem(QString(60, 'M'));
            list.item(0)->setIcon(redIcon(8));
            list.resize(200, 80);
            const QImage image = list.grab().toImage();
            const QRect icon = boundsOf(image, [](QRgb pixel) { return pixel == qRgb(255, 0, 0); });
            QCOMPARE(icon.size(), QSize(30, 30)); // Scaled up.
            QCOMPARE(icon.center().x() > 100, rightToLeft);
            list.item(0)->setSelected(true);
            QVERIFY(list.grab().toImage().pixel(icon.center()) != image.pixel(icon.center()));
        }
    }

    void framesReportTheirId()
    {
        for (const int id : {-1, 0}) {
            LmClickFrame frame;
            QVERIFY(frame.setProperty("id", id) && frame.property("id") == QVariant(id));
            const QSignalSpy clicks(&frame, qOverload<>(&LmClickFrame::clicked));
            const QSignalSpy doubleClicks(&frame, qOverload<>(&LmClickFrame::doubleClicked));
            const QSignalSpy clicksWithId(&frame, qOverload<int>(&LmClickFrame::clicked));
            const QSignalSpy doubleClicksWithId(&frame, qOverload<int>(&LmClickFrame::doubleClicked));
            QTest::mousePress(&frame, Qt::RightButton);
            QTest::mouseRelease(&frame, Qt::RightButton, {}, QPoint(900, 900)); // Dragged out.
            QTest::mouseDClick(&frame, Qt::LeftButton);
            const QList<QVariantList> withId = id < 0 ? QList<QVariantList>() : QList<QVariantList>{{id}};
            QVERIFY(clicksWithId == withId && clicks.size() == 1 - withId.size());
            QVERIFY(doubleClicksWithId == withId && doubleClicks.size() == 1 - withId.size());
        }
    }

    void styleSheetsSelectOnProperties()
    {
        qApp->setStyleSheet(QStringLiteral("LmClickFrame[ClickStyle=\"true\"] { background: #00ff00; }"));
        LmClickFrame frame;
        for (const bool on : {false, true, false}) {
            QVERIFY(frame.setProperty("clickStyle", on) && frame.property("clickStyle") == QVariant(on));
            QCOMPARE(frame.grab().toImage().pixelColor(5, 5) == QColor(Qt::green), on);
        }
        qApp->setStyleSheet(QString());
        lmRepolish(nullptr);

        LmBalticButton button;
        button.setIconFor("night", redIcon(4));
        for (const char* name : {"night", "day"}) { // The latter has no icon.
            button.setIconStyle(name);
            QVERIFY(button.property("IconStyle") == "night" && !button.icon().isNull());
        }
    }

    void progressHasTheDigitsOfTheLocale()
    {
        const std::tuple<const char*, int, int, int, const char*> rows[] = {
            {"%p%", 0, 300, 200, "٦٦%"}, {"%L1 of %1", 0, 300, 200, "٦٦ of %p"},
            {"%L1", 0, 0, 0, ""},        {"%L1", 5, 5, 5, "١٠٠"},
            {"%L1", 10, 20, 9, ""},      {"%L1", -2000000000, 2000000000, 0, "٥٠"},
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
        QVERIFY(!LmFileDialog(nullptr, Qt::Dialog).windowFlags().testFlag(Qt::WindowContextHelpButtonHint));
        QFileDialog::Options options;
        QTimer::singleShot(0, qApp, [&options] {
            auto& dialog = dynamic_cast<QFileDialog&>(*QApplication::activeModalWidget());
            options = dialog.options();
            dialog.reject();
        });
        QCOMPARE(LmFileDialog::getExistingDirectory(nullptr, QStringLiteral("Title"), QString()), QString());
        QCOMPARE(options, QFileDialog::ShowDirsOnly | QFileDialog::HideNameFilterDetails);
    }

    void openMenuShowsShortcutsInItsTexts()
    {
        const QList<QKeySequence> keys{QKeySequence("Ctrl+P"), QKeySequence("F5")};
        const QString text = QStringLiteral("Print %1");
        const QString longText = text + QString(8, QChar(' ')) + QChar(0x200f) + "Ctrl+P";
        for (const bool rightToLeft : {false, true}) {
            QAction print(text);
            print.setShortcuts(keys);
            auto menu = std::make_unique<LmMenu>();
            menu->setLayoutDirection(rightToLeft ? Qt::RightToLeft : Qt::LeftToRight);
            menu->addAction(&print);
            QAction* const deleted = menu->addAction(QStringLiteral("Deleted"));
            deleted->setShortcut(QKeySequence("F6"));
            QList<QKeySequence> keysWhenTriggered;
            connect(&print, &QAction::triggered, this, [&] { keysWhenTriggered = print.shortcuts(); });

            menu->popup({});
            QCOMPARE(print.text(), rightToLeft ? longText : text);
            QCOMPARE(print.shortcuts().isEmpty(), rightToLeft);
            QCOMPARE(menu->property("leftPadding"), QVariant(rightToLeft));
            QCOMPARE(menu->property("rightPadding"), QVariant(false));
            delete deleted;
            QTest::mouseClick(menu.get(), Qt::LeftButton, {}, menu->actionGeometry(&print).center());
            QCOMPARE(keysWhenTriggered, keys);
            menu->popup({});
            print.setText("Other");
            menu->close();
            QVERIFY(print.text() == "Other" && print.shortcuts() == keys);
            print.setText(text);
            menu->popup({});
            menu.reset(); // Restores them too.
            QVERIFY(print.text() == text && print.shortcuts() == keys);
        }
    }

    void eachStateOfADayLooksDifferent()
    {
        // The month of the day, the month shown, the range and the first day that isn't disabled; 0 is none. The last
        // one is a Saturday.
        const std::tuple<int, int, int, int, int> states[] = {
            {3, 3, 0, 16, 1},  {3, 3, 15, 16, 1}, {3, 3, 14, 15, 1}, {3, 3, 14, 16, 1},
            {3, 4, 14, 16, 1}, {3, 2, 0, 0, 1},   {3, 3, 0, 0, 16},  {6, 6, 0, 0, 1},
        };
        QList<QImage> looks;
        for (const auto& [month, shown, start, end, first] : states) {
            Calendar calendar;
            calendar.setRangeStart(march(start));
            calendar.setRangeEnd(march(end));
            calendar.setMinimumDate(march(first));
            calendar.setCurrentPage(2024, shown);
            const QImage look = calendar.painted(QDate(2024, month, 15));
            QVERIFY2(!looks.contains(look), QByteArray::number(looks.size()));
            QCOMPARE(look.pixelColor(0, 29), QColor(Qt::black));
            looks.append(look);
            calendar.setEditingStart(false);
            if (looks.size() == 3)
                QCOMPARE(calendar.painted(march(15)), looks[1]); // Now the end is the edited one.
        }
        QVERIFY(qGray(looks[1].pixel(2, 15)) < qGray(looks[2].pixel(2, 15))); // The edited end is the darker one.
        for (const int day : {3, 4}) { // A line is above the first row, from Friday to Sunday.
            const QImage look = Calendar().painted(march(day));
            QCOMPARE(look.pixelColor(20, 0) != look.pixelColor(20, 1), day == 3);
        }
    }

    void lightTextOfADarkThemeIsReplaced()
    {
        const Calendar calendar;
        QPalette palette;
        palette.setColor(QPalette::Text, Qt::white);
        calendar.view->setPalette(palette);
        const QImage number = calendar.painted(march(7)).copy(0, 0, 40, 29); // Without the point in that colour.
        QVERIFY(boundsOf(number, [](QRgb pixel) { return qGray(pixel) < 128; }).isValid());
    }

    void rangeKeepsItsOrder()
    {
        // Which end is set to which day, and both ends then; 0 is none.
        const std::tuple<bool, int, int, int> rows[] = {
            {true, 14, 14, 14},  {true, 15, 15, 0}, {true, 0, 0, 14},
            {false, 10, 10, 10}, {false, 9, 0, 9},  {false, 0, 10, 0},
        };
        for (const bool editingStart : {true, false}) {
            for (const auto& [setsStart, number, start, end] : rows) {
                Calendar calendar;
                calendar.setEditingStart(editingStart);
                calendar.setSelectedDate(march(20));
                connect(&calendar, &QCalendarWidget::selectionChanged, this,
                        [&calendar] { QVERIFY(!calendar.isEnabled()); });
                QVERIFY(calendar.setProperty(setsStart ? "rangeStart" : "rangeEnd", march(number)));
                QCOMPARE(calendar.property("rangeStart").toDate(), march(start));
                QCOMPARE(calendar.property("rangeEnd").toDate(), march(end));
                QCOMPARE(calendar.selectedDate(), march(setsStart == editingStart && number ? number : 20));
                QVERIFY(calendar.isEnabled());
            }
        }
    }

    void widgetsFollowTheLayoutDirection()
    {
        for (const bool rightToLeft : {false, true}) {
            QGuiApplication::setLayoutDirection(rightToLeft ? Qt::RightToLeft : Qt::LeftToRight);
            QCOMPARE(LmTabStackedWidget().property("LayoutDirInverted"), QVariant(rightToLeft));
            const Calendar calendar;
            for (const QString button : {"prev", "next"}) {
                const QString side = (button == "next") == rightToLeft ? "left" : "right";
                const QPixmap arrow(QStringLiteral(":/img/images/arrow_%1_default.png").arg(side));
                const QIcon icon = calendar.findChild<QToolButton*>("qt_calendar_" + button + "month")->icon();
                QCOMPARE(icon.pixmap(arrow.size(), QIcon::Normal, QIcon::On).toImage(), arrow.toImage());
            }
        }
    }

    void numbersHaveTheDigitsOfTheLocale()
    {
        const QImage latin = Calendar().painted(march(7));
        setLocale("ar_EG");
        Calendar calendar;
        const auto* year = calendar.findChild<QToolButton*>("qt_calendar_yearbutton");
        calendar.setCurrentPage(2031, 3);
        QCOMPARE(year->text(), QString::fromUtf8("٢٠٣١"));
        QVERIFY(calendar.painted(march(7)) != latin);
    }

    void boxHasRoomForItsTexts()
    {
        const QString text = QStringLiteral("A title that is a good deal longer than any text below it");
        LmMessageBox box(QMessageBox::Question, text, QStringLiteral("Two"), QMessageBox::Ok, nullptr);
        const int width = qRound(QFontMetricsF(box.font()).horizontalAdvance(text) + 0.5);
        QVERIFY(box.minimumWidth() == width + 100 && box.windowFlags() & Qt::MSWindowsFixedSizeDialogHint);
        QCOMPARE(LmMessageBox(nullptr).minimumWidth(), 101);
        const QAbstractButton* ok = box.button(QMessageBox::Ok);
        box.setButtonText(QMessageBox::Ok, QStringLiteral("i"));
        QCOMPARE(ok->minimumWidth(), 60);
        box.setButtonText(QMessageBox::Ok, text);
        QVERIFY(ok->minimumWidth() == width + 50 && ok->text() == text);
    }

    void displayedMessageGoesUpTheChain()
    {
        RecordingParent parent(nullptr);
        QWidget stranger;
        for (int icon = QMessageBox::NoIcon; icon <= QMessageBox::Question; ++icon) {
            for (QWidget* owner : {static_cast<QWidget*>(&parent), &stranger}) {
                LmMessageBox box(QMessageBox::Icon(icon), QString::number(icon), "; text", QMessageBox::Ok, owner);
                box.logDisplayedMessage();
            }
        }
        QCOMPARE(parent.records, QStringList({"1; text", "2; text", "3; text"})); // All as critical messages.
        QCOMPARE(
            QByteArrayList({lmProfileLog().categoryName(), lmUsageLog().categoryName(), lmPluginLog().categoryName()}),
            QByteArrayList({"profile", "usage", "plugin"}));
    }

    void tooltipStaysWithinTheScreens()
    {
        const QRect screen = QGuiApplication::primaryScreen()->geometry();
        LmTooltip tooltip(nullptr);
        QVERIFY(tooltip.setProperty("text", "Text") && tooltip.property("text") == "Text");
        QCOMPARE(tooltip.property("LmTooltip"), QVariant(true));
        tooltip.resize(100, 30);
        tooltip.show();
        sendMouse(tooltip, QEvent::MouseButtonPress, {5.6, 4.4}, {}); // Held at (6, 4).
        sendMouse(tooltip, QEvent::MouseMove, {}, {-300, 60});
        QCOMPARE(tooltip.pos(), QPoint(screen.left(), 56));
        sendMouse(tooltip, QEvent::MouseButtonRelease, {}, {});
        sendMouse(tooltip, QEvent::MouseMove, {}, {10, 80});
        QCOMPARE(tooltip.pos(), QPoint(screen.left(), 56));

        // What grows is held at the right and bottom edge, and what is larger than the screen at the left and top.
        tooltip.move(screen.right() - 119, screen.bottom() - 49);
        tooltip.resize(120, 50);
        QCOMPARE(tooltip.pos(), QPoint(screen.right() - 120, screen.bottom() - 50));
        tooltip.resize(screen.size() + QSize(9, 9));
        QCOMPARE(tooltip.pos(), screen.topLeft());
    }

    // Icons and pictures. The test tst_toolkit_icons_2x repeats some of these with two device pixels per logical pixel.

    void pixmapsHaveTheSizeAskedFor()
    {
        const QString raster = file("r.png");
        const QString vector = file("v.svg");
        // Path, size asked for and returned, and the pixmaps that the cached icon gets for it.
        const std::tuple<QString, QSize, QSize, int> rows[] = {
            {raster, {-1, -1}, {20, 10}, 0}, {raster, {10, 5}, {10, 5}, 0},   {raster, {50, 50}, {50, 50}, 1},
            {vector, {7, -1}, {20, 10}, 0},  {vector, {30, 30}, {30, 30}, 0}, {file("r.svg"), {-1, -1}, {20, 10}, 0},
        };
        for (const auto& [path, asked, returned, added] : rows) {
            const int before = lmIcon(path).availableSizes().size();
            for (int i = 0; i < 3; ++i) {
                const QPixmap pixmap = lmPixmap(path, asked.width(), asked.height());
                QCOMPARE(pixmap.size() / pixmap.devicePixelRatio(), returned);
            }
            QVERIFY(!lmIcon(path, asked.width(), asked.height()).isNull());
            QCOMPARE(lmIcon(path).availableSizes().size() - before, added);
        }
        const int scale = int(qGuiApp->devicePixelRatio());
        const QImage image = lmPixmap(raster, 50, 50).toImage();
        QCOMPARE(boundsOf(image, [](QRgb pixel) { return qAlpha(pixel) > 0; }), QRect(0, 0, 20 * scale, 10 * scale));

        QCOMPARE(lmDevicePixelRatio(nullptr), scale);
        QCoreApplication::setAttribute(Qt::AA_UseHighDpiPixmaps, false);
        QCOMPARE(lmDevicePixelRatio(nullptr), 1);
    }

    void unreadableImageIsLoggedAtEachRequest()
    {
        for (const QString& path : {QString(), file("missing.png")}) {
            const MessageCapture log;
            QVERIFY(lmIcon(path).isNull() && lmPixmap(path, 8, 8).isNull() && lmMirroredPicture(path).isNull());
            // A picture with an empty path isn't logged.
            QCOMPARE(log.texts(QtCriticalMsg, "default").count(QString("icon \"%1\" cannot be loaded").arg(path)),
                     path.isEmpty() ? 2 : 3);
        }
    }

    void leastRecentlyUsedImageIsForgotten()
    {
        QVector<QString> paths(101);
        for (QString& path : paths) {
            path = QStringLiteral("%1/%2.png").arg(m_dir.path()).arg(&path - paths.data());
            QVERIFY(QFile::copy(file("r.png"), path));
            lmIcon(paths[0]); // Used again and again, so that 1 is the eldest when 100 comes.
            QVERIFY(!lmIcon(path).isNull() && QFile::remove(path));
        }
        const MessageCapture log;
        for (int i = 100; i >= 0; --i)
            QCOMPARE(lmIcon(paths[i]).isNull(), i == 1);
    }

    void picturesArePaintedAtTheirAnchor()
    {
        const QString vector = file("v.svg");
        const QImage image = imageOf({200, 60}, Qt::transparent, [&](QPainter& painter) {
            // Rounding moves the left and top edge; the right and bottom edge remain.
            const QRectF rect(10.25, 20.25, 101, 51);
            QCOMPARE(lmPaintPicture(&painter, lmPicture(vector), rect, Qt::AlignRight), QRectF(71, 36, 40.25, 19.75));
            lmPaintPicture(&painter, lmMirroredPicture(vector), QPointF(89, 36), Qt::AlignLeft | Qt::AlignTop);
        });
        QCOMPARE(boundsOf(image, [](QRgb pixel) { return pixel == qRgb(255, 0, 0); }), QRect(71, 36, 58, 20));
        QCOMPARE(qAlpha(image.pixel(91, 36)), 0);
    }

    void pictureOutlivesItsFile()
    {
        const QString copy = file("copy.svg");
        QVERIFY(QFile::copy(file("v.svg"), copy) && !lmIcon(copy).isNull() && QFile::remove(copy));
        QVERIFY(lmPicture(copy).boundingRect() == QRect(0, 0, 40, 20) && lmMirroredPicture(copy).isNull());
        QCOMPARE(lmPicture(file("r.png")).boundingRect().size(), QSize(20, 10)); // Not a vector image.
        QCOMPARE(lmPicture(":/img/images/flag.svg").boundingRect(), QRect(0, 0, 48, 48));
    }

    void colorizedIconKeepsItsShape()
    {
        const QIcon vector = lmColorizeIcon(QIcon(file("v.svg")), Qt::green);
        const QImage image = vector.pixmap(32, 32, QIcon::Selected, QIcon::On).toImage();
        QCOMPARE(image.pixelColor(2, 8), QColor(Qt::green));
        QCOMPARE(image.pixelColor(image.width() - 1, 8).alpha(), 0);

        QPixmap half(5, 5);
        half.fill(QColor(255, 0, 0, 128));
        const QIcon raster = lmColorizeIcon(QIcon(half), Qt::green);
        QCOMPARE(raster.pixmap(5, 5).toImage().pixelColor(2, 2), QColor(0, 255, 0, 128));

        const MessageCapture log;
        QVERIFY(lmColorizeIcon(QIcon(), Qt::green).isNull());
        QCOMPARE(log.texts(QtCriticalMsg), QStringList("icon \"\" (isNull = true) converted to null icon"));
    }

private:
    QString file(const char* name) const { return m_dir.filePath(QString::fromLatin1(name)); }

    QTemporaryDir m_dir;
};

QTEST_MAIN(TestToolkitWidgets)

#include "tst_toolkit_widgets.moc"
