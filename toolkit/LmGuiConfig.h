// SPDX-FileCopyrightText: 2026 The Merivo Connections developers
// SPDX-License-Identifier: MIT
#pragma once

#include <QObject>
#include <QString>

class QDate;

/// The default settings of the toolkit. To change them, install an instance of a subclass. Call instance() for each
/// access, and don't cache its values. GUI thread only.
class LmGuiConfig : public QObject
{
    Q_OBJECT
    Q_DISABLE_COPY_MOVE(LmGuiConfig)

public:
    /// The first config that is constructed becomes the instance; a later one doesn't replace it.
    explicit LmGuiConfig(QObject* parent = nullptr);
    /// Resets the instance, whichever config is destroyed.
    ~LmGuiConfig() override;

    /// Returns the instance, never null. Creates a default config if there is no instance; that config is never
    /// deleted.
    static LmGuiConfig* instance();
    /// Sets the instance. Does nothing if there is an instance or if @p config is null. Doesn't take ownership.
    static void setInstance(LmGuiConfig* config);

    /// Returns the name of the widget style for QStyleFactory.
    virtual QString styleName() const;
    /// Returns the format of a date for QDate::toString().
    virtual QString dateFormat() const;
    /// Returns the format of a time of day for QTime::toString().
    virtual QString timeFormat() const;
    /// Returns true if @p date is a day off. Returns false for an invalid date.
    virtual bool isWeekend(const QDate& date) const;
    /// Returns the first day of the week, counted from 0 for Monday.
    virtual int firstWeekDay() const;
};
