// SPDX-FileCopyrightText: 2026 The Merivo Connections developers
// SPDX-License-Identifier: MIT
#include "toolkit/LmDateEdit.h"

#include "toolkit/LmCalendarWidget.h"
#include "toolkit/LmGuiConfig.h"

#include <QLocale>

LmDateEdit::LmDateEdit(QWidget* parent)
    : QDateEdit(parent)
{
    setUp();
}

LmDateEdit::LmDateEdit(const QDate& date, QWidget* parent)
    : QDateEdit(date, parent)
{
    setUp();
}

void LmDateEdit::setUp()
{
    setCalendarPopup(true);
    setLocale(QLocale());
    setDisplayFormat(LmGuiConfig::instance()->dateFormat());
    // There is no calendar if the format has no part of a date.
    if (!calendarPopup() || !calendarWidget())
        return;
    auto* const calendar = new LmCalendarWidget(nullptr);
    calendar->setUp(LmGuiConfig::instance()->firstWeekDay());
    calendar->setVerticalHeaderFormat(QCalendarWidget::NoVerticalHeader);
    setCalendarWidget(calendar); // Takes ownership.
}
