// SPDX-FileCopyrightText: 2026 The Merivo Connections developers
// SPDX-License-Identifier: MIT
#include "toolkit/LmTimeEdit.h"

#include "toolkit/LmGuiConfig.h"

#include <QLocale>

LmTimeEdit::LmTimeEdit(QWidget* parent)
    : QTimeEdit(parent)
{
    setUp();
}

LmTimeEdit::LmTimeEdit(const QTime& time, QWidget* parent)
    : QTimeEdit(time, parent)
{
    setUp();
}

void LmTimeEdit::setUp()
{
    setLocale(QLocale());
    setDisplayFormat(LmGuiConfig::instance()->timeFormat());
}

void LmTimeEdit::setMinuteStep(int step)
{
    if (step < 2)
        m_minuteStep = 1;
    else if (60 % step == 0)
        m_minuteStep = step;
}

int LmTimeEdit::minuteStep() const
{
    return m_minuteStep;
}

void LmTimeEdit::stepBy(int steps)
{
    const bool isSingle = steps == 1 || steps == -1;
    QTimeEdit::stepBy(isSingle && currentSection() == MinuteSection ? steps * m_minuteStep : steps);
}
