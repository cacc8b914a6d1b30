// SPDX-FileCopyrightText: 2026 The Merivo Connections developers
// SPDX-License-Identifier: MIT
#pragma once

#include <QDateEdit>

/// A date field in the default locale with the format LmGuiConfig::dateFormat() and a LmCalendarWidget as pop-up, which
/// is set up for LmGuiConfig::firstWeekDay(). Locale and config are read at construction. GUI thread only.
///
/// In a right-to-left layout QDateTimeEdit reverses the order of the sections: 2024-03-12 appears as 12-03-2024.
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
