// SPDX-FileCopyrightText: 2026 The Merivo Connections developers
// SPDX-License-Identifier: MIT
#pragma once

#include <QObject>
#include <QString>

class QDate;

/// The house defaults of the toolkit. An application that wants others installs a subclass; whoever uses the values
/// asks instance() each time and keeps none of them. GUI thread only.
class LmGuiConfig : public QObject
{
    Q_OBJECT
    Q_DISABLE_COPY_MOVE(LmGuiConfig)

public:
    /// The first config that is made becomes the instance by itself; a later one leaves that alone.
    explicit LmGuiConfig(QObject* parent = nullptr);
    /// Leaves the toolkit without an instance, whichever config goes away.
    ~LmGuiConfig() override;

    /// Never null: without an instance a default config is made, which then is the instance for good.
    static LmGuiConfig* instance();
    /// Ignored if there is an instance already or if @p config is null. The caller keeps owning @p config.
    static void setInstance(LmGuiConfig* config);

    /// The name of the widget style, as QStyleFactory knows it.
    virtual QString styleName() const;
    /// The format of a date, as QDate::toString() takes it.
    virtual QString dateFormat() const;
    /// The format of a time of day, as QTime::toString() takes it.
    virtual QString timeFormat() const;
    /// Whether @p date is a day off; an invalid date isn't.
    virtual bool isWeekend(const QDate& date) const;
    /// The day that begins a week, counted from 0 for Monday.
    virtual int firstWeekDay() const;
};
