// SPDX-FileCopyrightText: 2026 The Merivo Connections developers
// SPDX-License-Identifier: MIT
#include "tools/gallery/GalleryPages.h"

#include "toolkit/BgDoubleSpinBox.h"
#include "toolkit/LmCalendarWidget.h"
#include "toolkit/LmDateEdit.h"
#include "toolkit/LmGuiConfig.h"
#include "toolkit/LmNumberText.h"
#include "toolkit/LmSpinBox.h"
#include "toolkit/LmText.h"
#include "toolkit/LmTimeEdit.h"

#include <QFormLayout>
#include <QGridLayout>
#include <QGroupBox>
#include <QLabel>
#include <QLocale>

namespace {

const QDate Sample(2024, 3, 12);

/// Widens the calendar: the size of QCalendarWidget cuts off the names of days in some locales.
void widen(QCalendarWidget* calendar)
{
    calendar->setMinimumWidth(calendar->sizeHint().width() + 70);
}

QGroupBox* textsBox()
{
    const std::pair<const char*, QString> rows[] = {
        {"lmLocalizedInt(1234567)", lmLocalizedInt(1234567)},
        {"lmLocalizedDouble(-1.5, 1, 0, 'f')", lmLocalizedDouble(-1.5, 1, 0, 'f')},
        {"lmLocalizedDouble(1.005, 2, 0, 'f')", lmLocalizedDouble(1.005, 2, 0, 'f')},
        {"lmPlainDouble(-1.5, 1, 0, 'f')", lmPlainDouble(-1.5, 1, 0, 'f')},
        {"lmDurationText() of 90 minutes", lmDurationText(5400000000000)},
        {"lmRatioText(2, 3, 2)", lmRatioText(2, 3, 2)},
        {"lmLocalizedDate(\"d MMMM yyyy\", ...)", lmLocalizedDate("d MMMM yyyy", Sample)},
        {"lmLocalizedTime(...)", lmLocalizedTime(QTime(15, 4))},
    };
    auto* const box = new QGroupBox("Texts");
    auto* const form = new QFormLayout(box);
    for (const auto& [call, text] : rows)
        form->addRow(call, new QLabel(text));
    return box;
}

} // namespace

GalleryPage numbersPage()
{
    auto* const page = new QWidget;
    auto* const fields = new QGroupBox("Fields");
    auto* const form = new QFormLayout(fields);

    auto* const plain = new LmSpinBox;
    plain->setRange(-9999, 9999);
    plain->setValue(-1250);
    form->addRow("Whole numbers", plain);

    auto* const special = new LmSpinBox;
    special->setSpecialValueText("off");
    form->addRow("0 reads \"off\"", special);

    auto* const decimal = new LmDoubleSpinBox;
    decimal->setRange(-999, 999);
    decimal->setValue(12.5);
    form->addRow("Decimals: type 1*5 or 1#5", decimal);

    auto* const low = new LmDoubleSpinBox;
    low->setSpecialValueText("low");
    low->setRange(0.5, 20);
    form->addRow("The minimum reads \"low\"", low);

    auto* const glucose = new BgDoubleSpinBox;
    glucose->setSuffix(" mg/dl");
    glucose->setValue(120);
    form->addRow("Blood glucose", glucose);

    auto* const column = new QVBoxLayout(page);
    column->addWidget(fields);
    column->addWidget(textsBox());
    column->addStretch();
    return {"numbers", "Numbers", page};
}

GalleryPage datesPage()
{
    auto* const page = new QWidget;
    auto* const date = new LmDateEdit(Sample);
    auto* const minutes = new LmTimeEdit(QTime(10, 20));
    auto* const quarters = new LmTimeEdit(QTime(10, 15));
    quarters->setMinuteStep(15);
    auto* const edits = new QFormLayout;
    edits->addRow("Date, with the toolkit's calendar", date);
    edits->addRow("Time", minutes);
    edits->addRow("Time, in quarters of an hour", quarters);

    auto* const calendar = new LmCalendarWidget;
    calendar->setUp(LmGuiConfig::instance()->firstWeekDay());
    calendar->setVerticalHeaderFormat(QCalendarWidget::NoVerticalHeader);
    calendar->setDateRange(Sample.addDays(-20), Sample.addDays(40));
    calendar->setRangeEnd(Sample.addDays(2));
    calendar->setRangeStart(Sample.addDays(-5));
    widen(calendar);
    widen(date->calendarWidget());
    QObject::connect(calendar, &QCalendarWidget::clicked, calendar, &LmCalendarWidget::setRangeStart);

    auto* const box = new QGroupBox("A range");
    auto* const boxColumn = new QVBoxLayout(box);
    boxColumn->addWidget(calendar);
    auto* const column = new QVBoxLayout(page);
    column->addLayout(edits);
    column->addWidget(box);
    column->addStretch();
    return {"dates", "Dates and times", page, {date->calendarWidget()}};
}

GalleryPage monthsPage()
{
    auto* const page = new QWidget;
    auto* const grid = new QGridLayout(page);
    // Months of one year that begin on Monday to Sunday.
    const int months[] = {1, 10, 5, 2, 3, 6, 9};
    int place = 0;
    for (const int month : months) {
        auto* const calendar = new LmCalendarWidget;
        calendar->setUp(LmGuiConfig::instance()->firstWeekDay());
        calendar->setVerticalHeaderFormat(QCalendarWidget::NoVerticalHeader);
        calendar->setCurrentPage(2024, month);
        widen(calendar);
        grid->addWidget(calendar, place / 3, place % 3);
        ++place;
    }
    return {"months", "Months", page};
}
