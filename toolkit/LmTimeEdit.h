// SPDX-FileCopyrightText: 2026 The Merivo Connections developers
// SPDX-License-Identifier: MIT
#pragma once

#include <QTimeEdit>

/// A time field in the default locale and the format of LmGuiConfig::timeFormat(), both of the moment when it is made,
/// whose minutes can go in steps. GUI thread only.
///
/// In a right-to-left layout QDateTimeEdit turns the order of the sections round, here too: 10:20 reads 20:10.
class LmTimeEdit : public QTimeEdit
{
    Q_OBJECT
    Q_DISABLE_COPY_MOVE(LmTimeEdit)

public:
    explicit LmTimeEdit(QWidget* parent = nullptr);
    explicit LmTimeEdit(const QTime& time, QWidget* parent = nullptr);

    /// How many minutes one step up or down in the minutes goes. Below 2 stands for 1; a step that doesn't divide 60
    /// evenly is ignored, and the old one stays.
    void setMinuteStep(int step);
    int minuteStep() const;

    /// Only a single step in the minutes is widened; any other section and larger jumps, as of the page keys, go as
    /// they are.
    void stepBy(int steps) override;

private:
    void setUp();

    int m_minuteStep = 1;
};
