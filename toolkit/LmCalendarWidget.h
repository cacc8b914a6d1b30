// SPDX-FileCopyrightText: 2026 The Merivo Connections developers
// SPDX-License-Identifier: MIT
#pragma once

#include <QCalendarWidget>
#include <QDate>

class QBrush;
class QPen;

/// A calendar in the house colours, the pop-up of LmDateEdit and a picker of a range between two dates. Every cell is
/// painted by its state; days off are those of LmGuiConfig::isWeekend(). GUI thread only.
///
/// The range has a start, an end, both or none. One end is being edited: it is the one in solid colour, and the one
/// whose date becomes the selected date when it is set. The other way round the calendar sets no end by itself; connect
/// selectionChanged() or clicked() for that.
class LmCalendarWidget : public QCalendarWidget
{
    Q_OBJECT
    Q_DISABLE_COPY_MOVE(LmCalendarWidget)

public:
    explicit LmCalendarWidget(QWidget* parent = nullptr);

    /// The first day of the week, the colours of the weekdays, and the arrows of the two buttons in the layout
    /// direction of now.
    ///
    /// @p firstWeekDay, not negative, counts from 0 for Monday; 7 and above stand for Monday too. LmGuiConfig's default
    /// for it is 1: a calendar that is set up with that begins its weeks on Tuesday, and an application that wants
    /// Monday installs a config that returns 0.
    ///
    /// The images of the arrows are the application's to bring, as the resources ":/img/images/arrow_left_default.png",
    /// the same with "right", and both with "pressed" and "disabled". Without them the buttons have no arrow.
    void setUp(int firstWeekDay);

    /// Sets one end of the range; null takes it away. Where the other end lies on its wrong side, that is taken away.
    /// Leaves the calendar enabled, and without the focus, even if it was otherwise before.
    void setRangeStart(const QDate& date);
    void setRangeEnd(const QDate& date);
    QDate rangeStart() const;
    QDate rangeEnd() const;

    /// Which end is being edited, at the beginning the start. The selected date stays as it is.
    void setEditingStart(bool editingStart);
    bool isEditingStart() const;

protected:
    enum CellFlag {
        CellWeekend = 0x01,
        CellRangeEnd = 0x02, ///< either end of the range
        CellInRange = 0x04,  ///< within a range that has both ends, these included
        CellOtherMonth = 0x08,
        CellDisabled = 0x10, ///< outside of minimumDate() and maximumDate(), and thereby in no range
        CellPreviousMonth = 0x20,
        CellNextMonth = 0x40,
        CellTopLine = 0x80, ///< the border between two months runs along the top edge
    };
    Q_DECLARE_FLAGS(CellState, CellFlag)

    /// Of a date in the page that is shown.
    CellState cellState(const QDate& date) const;
    /// Paints the cell in fixed colours, except for the text of a weekday in the month shown: that has the palette's
    /// colour, or textPen() where the palette's has a contrast below 4.5 on the fixed ground, as in a dark theme.
    void paintCell(QPainter* painter, const QRect& rect, const QDate& date) const override;

    /// The house colours.
    static QBrush cellBrush();
    static QPen weekendPen();
    static QPen otherMonthPen();
    static QBrush inRangeBrush();
    static QBrush disabledBrush();
    static QPen disabledPen();
    static QBrush activeEndBrush();
    static QPen activeEndPen();
    static QBrush otherEndBrush();
    static QPen topLinePen();
    static QBrush headerForeground();
    static QBrush headerBackground();
    /// Not used by paintCell(); for subclasses that paint more.
    static QBrush accentBrush();
    static QPen textPen();

private Q_SLOTS:
    void fixYearButtonText();

private:
    bool hasTopLine(const QDate& date, CellState state) const;
    QColor textColor() const;

    QDate m_rangeStart;
    QDate m_rangeEnd;
    bool m_editingStart = true;
};
