// SPDX-FileCopyrightText: 2026 The Merivo Connections developers
// SPDX-License-Identifier: MIT
#pragma once

#include <QDateEdit>

/// A date field in the default locale and the format of LmGuiConfig::dateFormat(), with a LmCalendarWidget as its
/// pop-up, set up for LmGuiConfig::firstWeekDay(). Locale and config are those of the moment when it is made. GUI
/// thread only.
///
/// In a right-to-left layout QDateTimeEdit turns the order of the sections round, here too: 2024-03-12 reads
/// 12-03-2024.
class LmDateEdit : public QDateEdit
{
    Q_OBJECT
    Q_DISABLE_COPY_MOVE(LmDateEdit)

public:
    explicit LmDateEdit(QWidget* parent = nullptr);
    explicit LmDateEdit(const QDate& date, QWidget* parent = nullptr);

private:
    void setUp();
};
