// SPDX-FileCopyrightText: 2026 The Merivo Connections developers
// SPDX-License-Identifier: MIT
#pragma once

#include <QElapsedTimer>
#include <QMetaType>
#include <QObject>
#include <QString>

/// One timing of a named piece of work, or the sum of several.
struct RuntimeItem
{
    QString name;         ///< The name of the piece of work.
    qint64 calls = 0;     ///< The number of timings.
    qint64 runtimeNs = 0; ///< Nanoseconds.
};
Q_DECLARE_METATYPE(RuntimeItem)

/// Measures its own lifetime. It is created on the stack for the scope to be timed, and passed to
/// InstanceObserver::timingStart() of the object that does the work. GUI thread only.
class RuntimeObserver final : public QObject
{
    Q_OBJECT
    Q_DISABLE_COPY_MOVE(RuntimeObserver)

public:
    /// Starts the measurement. @p name may be qualified by "::"; a dump shows its last part.
    explicit RuntimeObserver(const QString& name);
    /// Ends the measurement and emits timeElapsed().
    ~RuntimeObserver() override;

Q_SIGNALS:
    /// Emitted by the destructor, with one call and the nanoseconds since construction.
    void timeElapsed(RuntimeItem item);

private:
    QElapsedTimer m_timer;
    RuntimeItem m_item;
};
