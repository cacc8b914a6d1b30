// SPDX-FileCopyrightText: 2026 The Merivo Connections developers
// SPDX-License-Identifier: MIT
#pragma once

#include <QElapsedTimer>
#include <QMetaType>
#include <QObject>
#include <QString>

/// A timed run of a named piece of work, or several of them in sum.
struct RuntimeItem
{
    QString name;
    qint64 calls = 0; ///< The runs that it stands for.
    qint64 runtimeNs = 0;
};
Q_DECLARE_METATYPE(RuntimeItem)

/// Times its own life: made on the stack for the span to be timed, and given to InstanceObserver::timingStart() of the
/// object that does the work. GUI thread only.
class RuntimeObserver final : public QObject
{
    Q_OBJECT
    Q_DISABLE_COPY_MOVE(RuntimeObserver)

public:
    /// Starts the clock. @p name may be qualified by "::"; a dump shows the last part.
    explicit RuntimeObserver(const QString& name);
    /// Stops the clock and emits timeElapsed().
    ~RuntimeObserver() override;

Q_SIGNALS:
    /// Once, from the destructor: one call and the nanoseconds since construction.
    void timeElapsed(RuntimeItem item);

private:
    QElapsedTimer m_timer;
    RuntimeItem m_item;
};
