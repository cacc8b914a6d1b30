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
constexpr QImage::Format Lossless = QImage::Format_ARGB32_Premultiplied; // as a pixmap has it

class Calendar final : public LmCalendarWidget
{
public:
    explicit Calendar(int firstWeekDay = 0) { setUp(firstWeekDay); }

    QAbstractItemView* const view = findChild<QAbstractItemView*>();

    /// The cell in an image with a margin of 4 around it.
    QImage painted(const QDate& date) const
    {
        QImage image(48, 38, QImage::Format_RGB32);
        image.fill(Qt::blue);
        QPainter painter(&image);
        painter.setPen(view->palette().color(QPalette::Text));
        QFont font;
        font.setPixelSize(16);
        font.setStyleStrategy(QFont::NoAntialias);
        painter.setFont(font);
        paintCell(&painter, Cell, date);
        return image;
    }
    bool hasPen(const QDate& date, const QColor& color) const
    {
        const QImage image = painted(date).copy(Cell.adjusted(0, 1, 0, 0));
        return boundsOf(image, [&color](QRgb pixel) { return pixel == color.rgb(); }).isValid();
    }
    QColor ground(const QDate& date) const { return painted(date).pixelColor(6, 20); }
    bool hasLine(const QDate& date) const { return painted(date).pixelColor(Cell.topRight()) == Line; }
};

QDate march(int day)
{
    return QDate(2024, 3, 1).addDays(day - 1);
}

} // namespace

class TestToolkitCalendar : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void cellsHaveTheColoursOfTheirState()
    {
        Calendar calendar;
        calendar.setCurrentPage(2024, 3);
        calendar.setDateRange(march(-4), march(37));
        calendar.setRangeEnd(march(14));
        QCOMPARE(calendar.ground(march(12)), QColor(Qt::white)); // An end alone makes no range.
        calendar.setRangeStart(march(10));

        const QColor other(160, 160, 164);
        const QColor disabled(186, 186, 186);
        const QColor weekend(72, 68, 68);
        const QColor shut(247, 247, 247);
        // Plain, weekend, the end being edited, in the range, the other end; weekends before and after, at the limits
        // and beyond them; and of another year, where the number of the month alone counts.
        const std::tuple<int, QColor, QColor, bool> rows[] = {
            {7, Qt::white, Qt::black, false},
            {9, Qt::white, weekend, false},
            {10, {13, 166, 158}, Qt::white, false},
            {12, {230, 246, 245}, Qt::black, false},
            {14, {186, 230, 227}, Qt::black, false},
            {-4, Qt::white, other, true},
            {37, Qt::white, other, false},
            {-5, shut, disabled, true},
            {38, shut, disabled, false},
            {1 + 365, shut, disabled, true},
        };
        for (const auto& [day, ground, pen, line] : rows) {
            const QImage image = calendar.painted(march(day));
            const QByteArray name = march(day).toString(Qt::ISODate).toLatin1();
            QVERIFY2(image.pixelColor(6, 20) == ground, name);
            QVERIFY2(calendar.hasPen(march(day), pen), name);
            for (const QPoint corner : {Cell.topLeft(), Cell.topRight()})
                QVERIFY2((image.pixelColor(corner) == Line) == line, name);
            for (const QPoint outside : {Cell.topLeft() - QPoint(1, 0), Cell.bottomRight() + QPoint(1, 1)})
                QCOMPARE(image.pixelColor(outside), QColor(Qt::blue));
        }

        // The palette's text where it can be read: the plain day, then the range and its other end.
        const QColor pale(118, 118, 118);
        const QColor paler(119, 119, 119);
        for (const auto& [text, plain, ranged] :
             {std::tuple(pale, pale, weekend), {paler, weekend, weekend}, {QColor(Qt::white), weekend, weekend}}) {
            QPalette palette;
            palette.setColor(QPalette::Text, text);
            calendar.view->setPalette(palette);
            QVERIFY(calendar.hasPen(march(7), plain));
            QVERIFY(calendar.hasPen(march(12), ranged) && calendar.hasPen(march(14), ranged));
        }
        QPalette palette;
        palette.setColor(QPalette::Disabled, QPalette::Text, paler);
        calendar.view->setPalette(palette);
        calendar.setEnabled(false);
        QVERIFY(calendar.hasPen(march(7), paler));

        calendar.setEditingStart(false);
        QCOMPARE(calendar.ground(march(14)), QColor(13, 166, 158));
        QCOMPARE(calendar.ground(march(10)), QColor(186, 230, 227));
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
        // Which end is set to which day, and both ends then; 0 is none. Each row begins with a range from 10 to 14.
        const std::tuple<bool, int, int, int> rows[] = {
            {true, 12, 12, 14},  {true, 14, 14, 14},  {true, 15, 15, 0}, {true, 0, 0, 14},
            {false, 12, 10, 12}, {false, 10, 10, 10}, {false, 9, 0, 9},  {false, 0, 10, 0},
        };
        const auto day = [](int number) {
            return number ? march(number) : QDate();
        };
        for (const bool editingStart : {true, false}) {
            for (const auto& [setsStart, number, start, end] : rows) {
                Calendar calendar;
                calendar.setRangeStart(march(10));
                calendar.setRangeEnd(march(14));
                calendar.setEditingStart(editingStart);
                calendar.setSelectedDate(march(20));
                bool isEnabled = false;
                connect(&calendar, &QCalendarWidget::selectionChanged, this,
                        [&] { isEnabled = calendar.isEnabled() || isEnabled; });
                QVERIFY(calendar.setProperty(setsStart ? "rangeStart" : "rangeEnd", day(number)) && !isEnabled);
                QCOMPARE(calendar.property("rangeStart").toDate(), day(start));
                QCOMPARE(calendar.property("rangeEnd").toDate(), day(end));
                QCOMPARE(calendar.selectedDate(), march(setsStart == editingStart && number ? number : 20));
                QVERIFY(calendar.isEnabled());
            }
        }
    }

    void setUpTakesTheFirstDayFromZero()
    {
        for (const auto& [number, day] :
             {std::pair(0, Qt::Monday), {1, Qt::Tuesday}, {6, Qt::Sunday}, {7, Qt::Monday}}) {
            QCOMPARE(Calendar(number).firstDayOfWeek(), day);
        }
        for (const Qt::DayOfWeek day : {Qt::Monday, Qt::Sunday}) {
            const QTextCharFormat format = Calendar().weekdayTextFormat(day);
            QCOMPARE(format.foreground().color(), QColor(72, 68, 68));
            QCOMPARE(format.background().color(), QColor(Qt::white));
        }
    }

    void arrowsPointAlongTheLayout()
    {
        for (const bool rightToLeft : {false, true}) {
            Calendar calendar;
            calendar.setLayoutDirection(rightToLeft ? Qt::RightToLeft : Qt::LeftToRight);
            calendar.setUp(0);
            for (const auto& [name, side] : {std::pair("qt_calendar_prevmonth", rightToLeft ? "right" : "left"),
                                             {"qt_calendar_nextmonth", rightToLeft ? "left" : "right"}}) {
                const QIcon icon = calendar.findChild<QToolButton*>(name)->icon();
                const char* const looks[] = {"default", "disabled", "pressed", "pressed"};
                for (int mode = QIcon::Normal; mode <= QIcon::Selected; ++mode) {
                    const QImage wanted(QStringLiteral(":/img/images/arrow_%1_%2.png").arg(side, looks[mode]));
                    const QPixmap shown = icon.pixmap(wanted.size(), static_cast<QIcon::Mode>(mode), QIcon::On);
                    QVERIFY(!wanted.isNull());
                    QCOMPARE(shown.toImage().convertToFormat(Lossless), wanted.convertToFormat(Lossless));
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
