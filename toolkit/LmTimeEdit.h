// SPDX-FileCopyrightText: 2026 The Merivo Connections developers
// SPDX-License-Identifier: MIT
#pragma once

#include <QTimeEdit>

/// A time field in the default locale with the format LmGuiConfig::timeFormat(), both read at construction, whose
/// minutes can change in steps. GUI thread only.
///
/// In a right-to-left layout QDateTimeEdit reverses the order of the sections: 10:20 appears as 20:10.
class LmTimeEdit : public QTimeEdit
{
    Q_OBJECT
    Q_DISABLE_COPY_MOVE(LmTimeEdit)
    /// The minutes of one step up or down in the section of the minutes. Initially 1.
    Q_PROPERTY(int minuteStep READ minuteStep WRITE setMinuteStep)

public:
    explicit LmTimeEdit(QWidget* parent = nullptr);
    explicit LmTimeEdit(const QTime& time, QWidget* parent = nullptr);

    /// Sets the minutes of one step up or down in the section of the minutes. A step below 2 sets 1. A step that
    /// doesn't divide 60 evenly is ignored.
    void setMinuteStep(int step);
    int minuteStep() const;

    /// Multiplies a single step in the section of the minutes by minuteStep(). All other steps, such as those of the
    /// page keys, are those of QTimeEdit.
    void stepBy(int steps) override;

private:
    void setUp();

    int m_minuteStep = 1;
};
