// SPDX-FileCopyrightText: 2026 The Merivo Connections developers
// SPDX-License-Identifier: MIT

// The dates of a calendar: steps of one byte for what to do and a Julian day for each.

#include "fuzz/Target.h"
#include "toolkit/LmCalendarWidget.h"

#include <QApplication>
#include <QImage>
#include <QLocale>
#include <QPainter>

namespace {

class Calendar final : public LmCalendarWidget
{
public:
    /// As new; making a new one for each input takes longer than most inputs.
    void reset()
    {
        setDateRange(QDate::fromJulianDay(1), QDate(7999, 12, 31));
        setRangeStart({});
        setRangeEnd({});
        setEditingStart(true);
        setUp(0);
        setSelectedDate(QDate(2024, 1, 31));
    }

    void paint(const QDate& date)
    {
        const CellState state = cellState(date);
        const bool disabled = date < minimumDate() || date > maximumDate();
        require(state.testFlag(CellDisabled) == disabled, "what is out of bounds is disabled");
        require(!(disabled && state.testFlag(CellInRange)), "what is disabled is in no range");
        require(state.testFlag(CellOtherMonth) == (state.testFlag(CellPreviousMonth) || state.testFlag(CellNextMonth)),
                "another month is the one before or after");
        require(!(state.testFlag(CellPreviousMonth) && state.testFlag(CellNextMonth)), "a month has one place");

        QPainter painter(&m_image);
        paintCell(&painter, m_image.rect(), date);
    }

    void check() const
    {
        require(!rangeStart().isValid() || !rangeEnd().isValid() || rangeStart() <= rangeEnd(),
                "a range isn't reversed");
        require(isEnabled(), "a calendar stays enabled");
    }

private:
    QImage m_image{24, 16, QImage::Format_RGB32};
};

/// Half of them near today, so that cells, ends and bounds meet.
QDate takeDate(Input& input)
{
    if (input.take<std::uint8_t>() % 2)
        return QDate(2024, 1, 31).addDays(input.take<std::int8_t>());
    return QDate::fromJulianDay(input.take<qint64>());
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    silenceLog();
    static int argc = 1;
    static char name[] = "calendar";
    static char* argv[] = {name, nullptr};
    // Both for the life of the process.
    static auto* const application = new QApplication(argc, argv);
    static auto* const calendar = new Calendar;
    Q_UNUSED(application)

    calendar->reset();
    Input input(data, size);
    while (!input.isEmpty()) {
        const auto step = input.take<std::uint8_t>();
        const QDate date = takeDate(input);
        switch (step % 8) {
        case 0:
            calendar->setRangeStart(date);
            require(calendar->rangeStart() == date, "a start is kept");
            break;
        case 1:
            calendar->setRangeEnd(date);
            require(calendar->rangeEnd() == date, "an end is kept");
            break;
        case 2:
            calendar->setEditingStart(date.isValid() && date.day() % 2);
            break;
        case 3:
            calendar->setUp(step / 8);
            break;
        case 4:
            calendar->setMinimumDate(date);
            break;
        case 5:
            calendar->setMaximumDate(date);
            break;
        case 6:
            if (date.isValid())
                calendar->setCurrentPage(date.year(), date.month());
            break;
        default:
            calendar->paint(date);
        }
        calendar->check();
    }
    return 0;
}
