// SPDX-FileCopyrightText: 2026 The Merivo Connections developers
// SPDX-License-Identifier: MIT
#include "support/Pixels.h"
#include "toolkit/LmCalendarWidget.h"

#include <QAbstractItemView>
#include <QImage>
#include <QLocale>
#include <QPainter>
#include <QTest>
#include <QTextCharFormat>
#include <QToolButton>

#include <tuple>
#include <utility>

namespace {

constexpr QRect Cell(4, 4, 40, 30);
const QColor Line(204, 204, 204);

QDate march(int day)
{
    return QDate(2024, 3, 1).addDays(day - 1);
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

    /// The cell in an image with a margin of 4 around it.
    QImage painted(const QDate& date) const
    {
        return imageOf({48, 38}, Qt::blue, [&](QPainter& painter) {
            painter.setPen(view->palette().color(QPalette::Text));
            QFont font;
            font.setPixelSize(16);
            font.setStyleStrategy(QFont::NoAntialias);
            painter.setFont(font);
            paintCell(&painter, Cell, date);
            painter.drawPoint(0, 0); // In the painter's own pen.
        });
    }
    QColor ground(const QDate& date) const { return painted(date).pixelColor(6, 20); }
    bool hasPen(const QDate& date, const QColor& color) const
    {
        const QImage image = painted(date).copy(Cell.adjusted(0, 1, 0, 0));
        return boundsOf(image, [&color](QRgb pixel) { return pixel == color.rgb(); }).isValid();
    }
    bool hasLine(const QDate& date) const { return painted(date).pixelColor(Cell.topRight()) == Line; }
};

} // namespace

class TestToolkitCalendar : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void cellsHaveTheColoursOfTheirState()
    {
        Calendar calendar;
        calendar.setDateRange(march(-4), march(37));
        const QColor other(160, 160, 164);
        const QColor disabled(186, 186, 186);
        const QColor weekend(72, 68, 68);
        const QColor disabledGround(247, 247, 247);
        // Plain, weekend, the edited end, in the range, the other end; weekends before and after, at the limits and
        // beyond them; and a day of another year, as only the number of the month counts.
        const std::tuple<int, QColor, QColor, bool> rows[] = {
            {7, Qt::white, Qt::black, false},        {9, Qt::white, weekend, false},
            {10, {13, 166, 158}, Qt::white, false},  {12, {230, 246, 245}, Qt::black, false},
            {14, {186, 230, 227}, Qt::black, false}, {-4, Qt::white, other, true},
            {37, Qt::white, other, false},           {-5, disabledGround, disabled, true},
            {38, disabledGround, disabled, false},   {1 + 365, disabledGround, disabled, true},
        };
        for (const auto& [day, ground, pen, line] : rows) {
            const QByteArray name = march(day).toString(Qt::ISODate).toLatin1();
            QVERIFY2(calendar.ground(march(day)) == ground && calendar.hasPen(march(day), pen), name);
            QVERIFY2(calendar.hasLine(march(day)) == line, name);
        }
        const QImage image = calendar.painted(march(-4));
        const QRect painted = boundsOf(image.copy(1, 1, 47, 37), [](QRgb pixel) { return pixel != qRgb(0, 0, 255); });
        QCOMPARE(painted, Cell.translated(-1, -1));
        QVERIFY(image.pixelColor(0, 0) == Qt::black && image.pixelColor(Cell.topLeft()) == Line);

        calendar.setEditingStart(false);
        QCOMPARE(calendar.ground(march(14)), QColor(13, 166, 158));
        QCOMPARE(calendar.ground(march(10)), QColor(186, 230, 227));
        calendar.setRangeStart(QDate());
        QCOMPARE(calendar.ground(march(12)), QColor(Qt::white)); // An end alone makes no range.
    }

    void unreadableTextIsReplaced()
    {
        Calendar calendar;
        const QColor replacement(72, 68, 68);
        const QColor pale(118, 118, 118); // The palest text that is readable on white.
        const QColor paler(119, 119, 119);
        for (const QColor& text : {pale, paler}) {
            QPalette palette;
            palette.setColor(QPalette::Text, text);
            calendar.view->setPalette(palette);
            QVERIFY(calendar.hasPen(march(7), text == pale ? pale : replacement));
            QVERIFY(calendar.hasPen(march(12), replacement) && calendar.hasPen(march(14), replacement));
        }
        QPalette palette;
        palette.setColor(QPalette::Disabled, QPalette::Text, paler);
        calendar.view->setPalette(palette);
        calendar.setEnabled(false); // It keeps its pale text.
        QVERIFY(calendar.hasPen(march(7), paler));
    }

    void lineRunsAlongTheFirstRowOfAMonth()
    {
        // A row for each first day of the week; in it, for a month that begins on Monday to Sunday, the days with a
        // line.
        const char* const days[] = {"0654321", "1066666", "2106666", "3210666", "4321066", "5432106", "6543210"};
        for (int firstWeekDay = 0; firstWeekDay < 7; ++firstWeekDay) {
            Calendar calendar(firstWeekDay);
            for (QDate month(2023, 1, 1); month.year() < 2024; month = month.addMonths(1)) {
                calendar.setCurrentPage(month.year(), month.month());
                const int count = days[firstWeekDay][month.dayOfWeek() - 1] - '0';
                for (int day = -6; day < 42; ++day) {
                    const QDate date = month.addDays(day);
                    const bool line = day < 0 || (date.month() == month.month() && day < count);
                    QVERIFY2(calendar.hasLine(date) == line, date.toString(Qt::ISODate).toLatin1());
                }
            }
        }
    }

    void rangeKeepsItsOrder()
    {
        // Which end is set to which day, and both ends then; 0 is none.
        const std::tuple<bool, int, int, int> rows[] = {
            {true, 14, 14, 14},  {true, 15, 15, 0}, {true, 0, 0, 14},
            {false, 10, 10, 10}, {false, 9, 0, 9},  {false, 0, 10, 0},
        };
        const auto day = [](int number) {
            return number ? march(number) : QDate();
        };
        for (const bool editingStart : {true, false}) {
            for (const auto& [setsStart, number, start, end] : rows) {
                Calendar calendar;
                calendar.setEditingStart(editingStart);
                calendar.setSelectedDate(march(20));
                connect(&calendar, &QCalendarWidget::selectionChanged, this,
                        [&calendar] { QVERIFY(!calendar.isEnabled()); });
                QVERIFY(calendar.setProperty(setsStart ? "rangeStart" : "rangeEnd", day(number)));
                QCOMPARE(calendar.property("rangeStart").toDate(), day(start));
                QCOMPARE(calendar.property("rangeEnd").toDate(), day(end));
                QCOMPARE(calendar.selectedDate(), march(setsStart == editingStart && number ? number : 20));
                QVERIFY(calendar.isEnabled());
            }
        }
    }

    void setUpTakesTheFirstDayFromZero()
    {
        for (const auto& [number, day] : {std::pair(0, Qt::Monday), {6, Qt::Sunday}, {7, Qt::Monday}}) {
            const Calendar calendar(number);
            QCOMPARE(calendar.firstDayOfWeek(), day);
            QCOMPARE(calendar.weekdayTextFormat(day).foreground().color(), QColor(72, 68, 68));
            QCOMPARE(calendar.weekdayTextFormat(day).background().color(), QColor(Qt::white));
        }
    }

    void arrowsPointAlongTheLayout()
    {
        for (const bool rightToLeft : {false, true}) {
            Calendar calendar;
            calendar.setLayoutDirection(rightToLeft ? Qt::RightToLeft : Qt::LeftToRight);
            calendar.setUp(0);
            for (const bool next : {false, true}) {
                const char* const name = next ? "qt_calendar_nextmonth" : "qt_calendar_prevmonth";
                const QIcon icon = calendar.findChild<QToolButton*>(name)->icon();
                const char* const looks[] = {"default", "disabled", "pressed", "pressed"};
                for (int mode = QIcon::Normal; mode <= QIcon::Selected; ++mode) {
                    const QString side = next == rightToLeft ? "left" : "right";
                    const QPixmap wanted(QStringLiteral(":/img/images/arrow_%1_%2.png").arg(side, looks[mode]));
                    const QPixmap shown = icon.pixmap(wanted.size(), static_cast<QIcon::Mode>(mode), QIcon::On);
                    QVERIFY(!wanted.isNull() && shown.toImage() == wanted.toImage());
                }
            }
        }
    }

    void numbersHaveTheDigitsOfTheLocale()
    {
        const QLocale before;
        const QImage latin = Calendar().painted(march(7));
        QLocale::setDefault(QLocale("ar_EG"));
        Calendar calendar;
        const auto* year = calendar.findChild<QToolButton*>("qt_calendar_yearbutton");
        calendar.setCurrentPage(2031, 3);
        QCOMPARE(year->text(), QString::fromUtf8("٢٠٣١"));
        QVERIFY(calendar.painted(march(7)) != latin);
        QLocale::setDefault(before);
    }
};

QTEST_MAIN(TestToolkitCalendar)

#include "tst_toolkit_calendar.moc"
