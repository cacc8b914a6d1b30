// SPDX-FileCopyrightText: 2026 The Merivo Connections developers
// SPDX-License-Identifier: MIT
#pragma once

#include <QCalendarWidget>
#include <QDate>

class QBrush;
class QPen;

/// A calendar in the corporate colours: the pop-up of LmDateEdit, and a picker of a range between two dates. Paints
/// every cell itself; days off are those of LmGuiConfig::isWeekend(). GUI thread only.
///
/// The range has a start, an end, both or neither. One end is being edited: it has the solid colour, and setting it
/// also selects its date. Selecting a date doesn't set an end; connect selectionChanged() or clicked() for that.
class LmCalendarWidget : public QCalendarWidget
{
    Q_OBJECT
    Q_DISABLE_COPY_MOVE(LmCalendarWidget)
    /// The first date of the range, which can be null.
    Q_PROPERTY(QDate rangeStart READ rangeStart WRITE setRangeStart)
    /// The last date of the range, which can be null.
    Q_PROPERTY(QDate rangeEnd READ rangeEnd WRITE setRangeEnd)

public:
    explicit LmCalendarWidget(QWidget* parent = nullptr);

    /// Sets the first day of the week, the colours of the weekday names, and the arrows of the two navigation buttons
    /// for the current layout direction.
    ///
    /// @p firstWeekDay counts from 0 for Monday and isn't negative; 7 and above mean Monday too. The default of
    /// LmGuiConfig::firstWeekDay() is 1, so that a calendar set up with it begins its weeks on Tuesday; an application
    /// that wants Monday installs a config that returns 0.
    ///
    /// The application must provide the images of the arrows as resources ":/img/images/arrow_SIDE_STATE.png", where
    /// SIDE is "left" or "right" and STATE is "default", "pressed" or "disabled". Without them the buttons have no
    /// arrows.
    void setUp(int firstWeekDay);

    /// Sets the start of the range; a null date removes it. Also removes the end if that is before @p date. Enables the
    /// calendar if it was disabled, and takes the focus from it.
    void setRangeStart(const QDate& date);
    /// Sets the end of the range; a null date removes it. Also removes the start if that is after @p date. Enables the
    /// calendar if it was disabled, and takes the focus from it.
    void setRangeEnd(const QDate& date);
    QDate rangeStart() const;
    QDate rangeEnd() const;

    /// Sets whether the start (initially) or the end is being edited. Doesn't change the selected date.
    void setEditingStart(bool editingStart);
    bool isEditingStart() const;

protected:
    /// What determines the colours of a cell.
    enum CellFlag {
        CellWeekend = 0x01,       ///< A day off, see LmGuiConfig::isWeekend().
        CellRangeEnd = 0x02,      ///< Either end of the range.
        CellInRange = 0x04,       ///< Within a range that has both ends; the ends are within it.
        CellOtherMonth = 0x08,    ///< Not in the month shown.
        CellDisabled = 0x10,      ///< Outside of minimumDate() and maximumDate(). Never combined with CellInRange.
        CellPreviousMonth = 0x20, ///< Before the month shown.
        CellNextMonth = 0x40,     ///< After the month shown.
        CellTopLine = 0x80,       ///< The border between two months is at the top edge.
    };
    Q_DECLARE_FLAGS(CellState, CellFlag)

    /// Returns the state of a date on the current page.
    CellState cellState(const QDate& date) const;
    /// Paints the cell in fixed colours, except for the text of a weekday in the month shown. This has the colour of
    /// the palette, or of textPen() if the contrast of that colour to the background is below 4.5, as in a dark theme.
    void paintCell(QPainter* painter, const QRect& rect, const QDate& date) const override;

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
    /// Returns a further corporate colour for subclasses. Not used by paintCell().
    static QBrush accentBrush();
    /// Returns the text colour for cells on which that of the palette would be unreadable.
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
