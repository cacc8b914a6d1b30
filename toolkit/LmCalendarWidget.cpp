// SPDX-FileCopyrightText: 2026 The Merivo Connections developers
// SPDX-License-Identifier: MIT
#include "toolkit/LmCalendarWidget.h"

#include "toolkit/LmGuiConfig.h"
#include "toolkit/LmNumberText.h"

#include <QAbstractItemView>
#include <QIcon>
#include <QPainter>
#include <QSpinBox>
#include <QTextCharFormat>
#include <QToolButton>

#include <algorithm>
#include <cmath>
#include <optional>

namespace {

/// Returns the arrow that points to @p side, "left" or "right".
QIcon arrowIcon(QLatin1String side)
{
    QIcon icon;
    const auto add = [&icon, side](QLatin1String variant, QIcon::Mode mode) {
        const QString path = QStringLiteral(":/img/images/arrow_%0_%1.png").arg(side, variant);
        icon.addFile(path, QSize(), mode, QIcon::On);
    };
    add(QLatin1String("default"), QIcon::Normal);
    add(QLatin1String("pressed"), QIcon::Active);
    add(QLatin1String("pressed"), QIcon::Selected);
    add(QLatin1String("disabled"), QIcon::Disabled);
    return icon;
}

/// Returns the colour that a transparent @p color has on @p background.
QColor blended(const QColor& color, const QColor& background)
{
    const qreal alpha = color.alphaF();
    const auto mixed = [alpha](qreal above, qreal below) {
        return below + (above - below) * alpha;
    };
    return QColor::fromRgbF(mixed(color.redF(), background.redF()), mixed(color.greenF(), background.greenF()),
                            mixed(color.blueF(), background.blueF()));
}

/// Returns the relative luminance as the WCAG define it, from 0 for black to 1 for white.
qreal luminance(const QColor& color)
{
    const auto linear = [](qreal value) {
        return value <= 0.03928 ? value / 12.92 : std::pow((value + 0.055) / 1.055, 2.4);
    };
    return 0.2126 * linear(color.redF()) + 0.7152 * linear(color.greenF()) + 0.0722 * linear(color.blueF());
}

/// Returns true if text in @p color has the contrast on @p background that the WCAG require.
bool isReadable(const QColor& color, const QColor& background)
{
    constexpr qreal MinContrast = 4.5;
    const auto [darker, lighter] = std::minmax({luminance(blended(color, background)), luminance(background)});
    return (lighter + 0.05) / (darker + 0.05) >= MinContrast;
}

} // namespace

LmCalendarWidget::LmCalendarWidget(QWidget* parent)
    : QCalendarWidget(parent)
{
    fixYearButtonText();
    connect(this, &QCalendarWidget::currentPageChanged, this, &LmCalendarWidget::fixYearButtonText);
}

void LmCalendarWidget::setUp(int firstWeekDay)
{
    setFirstDayOfWeek(static_cast<Qt::DayOfWeek>(firstWeekDay >= 7 ? Qt::Monday : firstWeekDay + 1));

    for (int number = Qt::Monday; number <= Qt::Sunday; ++number) {
        const auto day = static_cast<Qt::DayOfWeek>(number);
        QTextCharFormat format = weekdayTextFormat(day);
        format.setForeground(headerForeground());
        format.setBackground(headerBackground());
        setWeekdayTextFormat(day, format);
    }

    const bool rightToLeft = layoutDirection() == Qt::RightToLeft;
    const QLatin1String left("left");
    const QLatin1String right("right");
    auto* const previous = findChild<QToolButton*>(QStringLiteral("qt_calendar_prevmonth"));
    if (!previous)
        return;
    previous->setIcon(arrowIcon(rightToLeft ? right : left));
    if (auto* const next = findChild<QToolButton*>(QStringLiteral("qt_calendar_nextmonth")))
        next->setIcon(arrowIcon(rightToLeft ? left : right));
}

void LmCalendarWidget::setRangeStart(const QDate& date)
{
    setDisabled(true); // Keeps user input from emitting signals during the change.
    m_rangeStart = date;
    if (date.isValid()) {
        if (m_rangeEnd.isValid() && m_rangeEnd < date)
            m_rangeEnd = QDate();
        if (m_editingStart)
            setSelectedDate(date);
    }
    setEnabled(true);
}

void LmCalendarWidget::setRangeEnd(const QDate& date)
{
    setDisabled(true);
    m_rangeEnd = date;
    if (date.isValid()) {
        if (m_rangeStart.isValid() && m_rangeStart > date)
            m_rangeStart = QDate();
        if (!m_editingStart)
            setSelectedDate(date);
    }
    setEnabled(true);
}

QDate LmCalendarWidget::rangeStart() const
{
    return m_rangeStart;
}

QDate LmCalendarWidget::rangeEnd() const
{
    return m_rangeEnd;
}

void LmCalendarWidget::setEditingStart(bool editingStart)
{
    m_editingStart = editingStart;
    updateCells();
}

bool LmCalendarWidget::isEditingStart() const
{
    return m_editingStart;
}

LmCalendarWidget::CellState LmCalendarWidget::cellState(const QDate& date) const
{
    CellState state;
    if (date < minimumDate() || date > maximumDate())
        state = CellDisabled;
    else if (m_rangeStart.isValid() && m_rangeEnd.isValid() && date >= m_rangeStart && date <= m_rangeEnd)
        state = CellInRange;

    // Comparing month numbers is enough: a page never shows the same month of two years.
    if (date.month() != monthShown()) {
        state |= CellOtherMonth;
        state |= date >= QDate(yearShown(), monthShown(), 1) ? CellNextMonth : CellPreviousMonth;
    }
    if (LmGuiConfig::instance()->isWeekend(date))
        state |= CellWeekend;
    if ((m_rangeStart.isValid() && date == m_rangeStart) || (m_rangeEnd.isValid() && date == m_rangeEnd))
        state |= CellRangeEnd;
    if (hasTopLine(date, state))
        state |= CellTopLine;
    return state;
}

bool LmCalendarWidget::hasTopLine(const QDate& date, CellState state) const
{
    if (state & CellOtherMonth)
        return state & CellPreviousMonth;

    // The line is above the first row of the month, if that row also has days of the previous month.
    const int first = QDate(yearShown(), monthShown(), 1).dayOfWeek();
    if (first == firstDayOfWeek())
        return false;
    const int last = firstDayOfWeek() == Qt::Monday ? int(Qt::Sunday) : firstDayOfWeek() - 1;
    const int count = last - first + 1;
    // If the week begins on neither Monday nor Sunday, the first row can continue after a Sunday. The count is then
    // negative, and the line is above six days, whatever the length of the row.
    return date.day() <= (count < 0 ? 6 : count);
}

void LmCalendarWidget::paintCell(QPainter* painter, const QRect& rect, const QDate& date) const
{
    const CellState state = cellState(date);
    QColor background = Qt::white;
    const auto fill = [painter, &rect, &background](const QBrush& brush) {
        painter->fillRect(rect, brush);
        background = blended(brush.color(), background);
    };
    std::optional<QPen> pen;

    painter->save();
    fill(cellBrush());
    if (state & CellWeekend)
        pen = weekendPen();
    if (state & CellOtherMonth)
        pen = otherMonthPen();
    if (state & CellInRange)
        fill(inRangeBrush());
    if (state & CellDisabled) {
        fill(disabledBrush());
        pen = disabledPen();
    }
    if (state & CellRangeEnd) {
        if (date == (m_editingStart ? m_rangeStart : m_rangeEnd)) {
            fill(activeEndBrush());
            pen = activeEndPen();
        } else {
            fill(otherEndBrush());
        }
    }
    // The background doesn't depend on the theme, so that the light text of a dark theme would be unreadable. In a
    // light theme the pen remains that of the palette, and a disabled calendar has pale text.
    if (!pen && !isReadable(textColor(), background))
        pen = textPen();
    if (pen)
        painter->setPen(*pen);
    painter->drawText(rect, Qt::AlignCenter, lmLocalizedInt(date.day()));
    if (state & CellTopLine) {
        painter->setPen(topLinePen());
        painter->drawLine(rect.topLeft(), rect.topRight());
    }
    painter->restore();
}

QColor LmCalendarWidget::textColor() const
{
    // A style sheet may set the colour only for the view.
    const auto* const view = findChild<QAbstractItemView*>(QStringLiteral("qt_calendar_calendarview"));
    return (view ? view->palette() : palette()).color(QPalette::Active, QPalette::Text);
}

void LmCalendarWidget::fixYearButtonText()
{
    // QCalendarWidget writes the year on the button in the digits of another locale.
    const auto* const bar = findChild<QWidget*>(QStringLiteral("qt_calendar_navigationbar"));
    if (!bar)
        return;
    auto* const button = bar->findChild<QToolButton*>(QStringLiteral("qt_calendar_yearbutton"));
    const auto* const edit = bar->findChild<QSpinBox*>(QStringLiteral("qt_calendar_yearedit"));
    if (button && edit)
        button->setText(edit->text());
}

QBrush LmCalendarWidget::cellBrush()
{
    return QColor(255, 255, 255);
}

QPen LmCalendarWidget::weekendPen()
{
    return QColor(72, 68, 68);
}

QPen LmCalendarWidget::otherMonthPen()
{
    return QColor(160, 160, 164);
}

QBrush LmCalendarWidget::inRangeBrush()
{
    return QColor(13, 166, 158, 26);
}

QBrush LmCalendarWidget::disabledBrush()
{
    return QColor(247, 247, 247);
}

QPen LmCalendarWidget::disabledPen()
{
    return QColor(186, 186, 186);
}

QBrush LmCalendarWidget::activeEndBrush()
{
    return QColor(13, 166, 158);
}

QPen LmCalendarWidget::activeEndPen()
{
    return QColor(255, 255, 255);
}

QBrush LmCalendarWidget::otherEndBrush()
{
    return QColor(13, 166, 158, 52);
}

QPen LmCalendarWidget::topLinePen()
{
    return QColor(204, 204, 204);
}

QBrush LmCalendarWidget::headerForeground()
{
    return QColor(72, 68, 68);
}

QBrush LmCalendarWidget::headerBackground()
{
    return QColor(Qt::white);
}

QBrush LmCalendarWidget::accentBrush()
{
    return QColor(244, 239, 229);
}

QPen LmCalendarWidget::textPen()
{
    return weekendPen();
}
