// SPDX-FileCopyrightText: 2026 The Merivo Connections developers
// SPDX-License-Identifier: MIT
#pragma once

#include <QDateTime>
#include <QString>

/// The time as the file system of a directory sees it: the right basis for comparing the times of files on a drive
/// whose clock runs apart from the machine's, as that of a network share may.
class LmDateTimeProvider
{
public:
    /// Makes a temporary file in @p directory, which blocks for as long as the drive takes, and compares its time with
    /// the local clock. If the file can't be made, the two clocks count as the same.
    explicit LmDateTimeProvider(const QString& directory);
    LmDateTimeProvider(const LmDateTimeProvider&) = default;
    LmDateTimeProvider(LmDateTimeProvider&&) = default;
    LmDateTimeProvider& operator=(const LmDateTimeProvider&) = default;
    LmDateTimeProvider& operator=(LmDateTimeProvider&&) = default;
    virtual ~LmDateTimeProvider();

    /// The file system's time of this moment as local time.
    QDateTime now() const;
    /// The same as UTC.
    QDateTime nowUtc() const;

    /// The same date and time of day, with its offset from UTC fixed in place of a time zone. Qt::ISODate then writes
    /// the offset, which it leaves out of a local time.
    static QDateTime withLocalOffset(const QDateTime& dateTime);

private:
    qint64 m_offsetMs = 0; ///< From the local clock to the file system's.
};
