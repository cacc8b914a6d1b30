// SPDX-FileCopyrightText: 2026 The Merivo Connections developers
// SPDX-License-Identifier: MIT
#pragma once

#include <QDateTime>
#include <QString>

/// The current time by the clock of a file system, as a basis for comparing the times of files on a drive whose clock
/// differs from that of the machine, such as a network share.
class LmDateTimeProvider
{
public:
    /// Creates a temporary file in @p directory and compares its time with the local clock. Blocks for as long as the
    /// drive takes. If the file can't be created, the clocks are taken as equal.
    explicit LmDateTimeProvider(const QString& directory);
    LmDateTimeProvider(const LmDateTimeProvider&) = default;
    LmDateTimeProvider(LmDateTimeProvider&&) = default;
    LmDateTimeProvider& operator=(const LmDateTimeProvider&) = default;
    LmDateTimeProvider& operator=(LmDateTimeProvider&&) = default;
    virtual ~LmDateTimeProvider();

    /// Returns the current time of the file system as local time.
    QDateTime now() const;
    /// Returns the current time of the file system as UTC.
    QDateTime nowUtc() const;

    /// Returns @p dateTime with its offset from UTC in place of a time zone. In the format Qt::ISODate it then has the
    /// offset, which a local time lacks.
    static QDateTime withLocalOffset(const QDateTime& dateTime);

private:
    qint64 m_offsetMs = 0; ///< From the local clock to that of the file system.
};
