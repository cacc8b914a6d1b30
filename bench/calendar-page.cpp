// SPDX-FileCopyrightText: 2026 The Merivo Connections developers
// SPDX-License-Identifier: MIT

// The paint of a month in LmCalendarWidget, with a range, against QCalendarWidget's own.

#include "bench/Report.h"
#include "toolkit/LmCalendarWidget.h"

#include <QApplication>
#include <QImage>

int main(int argc, char** argv)
{
    QApplication app(argc, argv);
    Report report(QStringLiteral("Painting a page of the calendar, against QCalendarWidget's own"));
    report.addNumber(QStringLiteral("rounds"), QStringLiteral("Paints of each calendar."), 500);
    report.parse();
    quietLog();

    QCalendarWidget bare;
    LmCalendarWidget own;
    own.setUp(0);
    bare.setFirstDayOfWeek(Qt::Monday);
    const QDate month(2024, 3, 1);
    for (QCalendarWidget* calendar : {&bare, static_cast<QCalendarWidget*>(&own)}) {
        calendar->setSelectedDate(month);
        calendar->resize(400, 300);
        calendar->show();
    }
    own.setRangeStart(month.addDays(4));
    own.setRangeEnd(month.addDays(20));
    QApplication::processEvents();

    QImage image(400, 300, QImage::Format_ARGB32_Premultiplied);
    std::vector<double> ratios;
    std::vector<double> times;
    const auto paint = [&image](QCalendarWidget& calendar) {
        const BenchClock::time_point start = BenchClock::now();
        calendar.render(&image);
        return millisecondsSince(start);
    };
    for (int i = 0; i < report.number(QStringLiteral("rounds")); ++i) {
        // Each goes first every second time.
        const double before = i % 2 == 0 ? paint(own) : 0;
        const double bareTime = paint(bare);
        times.push_back(i % 2 == 0 ? before : paint(own));
        ratios.push_back(times.back() / bareTime);
    }
    report.add(QStringLiteral("page of LmCalendarWidget / QCalendarWidget, median"), percentile(ratios, 0.5),
               QStringLiteral("times"), 2);
    report.tell(QStringLiteral("page of LmCalendarWidget, median"), 1000 * percentile(times, 0.5),
                QStringLiteral("us"));
    return report.print();
}
