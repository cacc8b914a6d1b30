// SPDX-FileCopyrightText: 2026 The Merivo Connections developers
// SPDX-License-Identifier: MIT
#pragma once

#include <QMetaType>
#include <QPair>
#include <QString>

/// The size and the free space of a drive, as of the last refresh(). A value type. Unit steps are 0 for bytes, 1 for
/// KiB, 2 for MiB and so on.
class LmDriveSpace
{
public:
    /// Reads the figures of the drive that contains @p path. Blocks for as long as the drive takes. The figures are
    /// unknown if the path has no drive.
    explicit LmDriveSpace(const QString& path = QString());
    LmDriveSpace(const LmDriveSpace&) = default;
    LmDriveSpace(LmDriveSpace&&) = default;
    LmDriveSpace& operator=(const LmDriveSpace&) = default;
    LmDriveSpace& operator=(LmDriveSpace&&) = default;
    virtual ~LmDriveSpace();

    /// Reads the figures again. Returns true if one differs from before. Blocks for as long as the drive takes.
    bool refresh();

    QString path() const { return m_path; }
    /// Returns the size of the drive, or -1 if it is unknown.
    double total(int unitSteps) const { return scaled(m_total, unitSteps); }
    /// Returns the free space of the drive for all users, or -1 if it is unknown.
    double free(int unitSteps) const { return scaled(m_free, unitSteps); }
    /// Returns the free space in percent, or -1 if size or free space is unknown.
    double freePercent() const;

    /// Returns @p value divided by 1024 @p unitSteps times. Returns a @p value that isn't positive unchanged.
    static double scaled(double value, int unitSteps);

    /// Returns the total and available bytes of the physical memory (@p kind 0), of the virtual address space of this
    /// process (1), or of memory and page file together (2). Returns -1 for both if the system doesn't report them, and
    /// for any other @p kind.
    static QPair<double, double> memoryInfo(int kind);

    /// Returns the figures of the root of the drive that contains @p path, and writes them to Qt's log. The root of a
    /// missing path is what QStorageInfo reports: @p path on Windows, otherwise empty.
    static LmDriveSpace driveInfo(const QString& path);

private:
    QString m_path;
    double m_total = -1; ///< Bytes.
    double m_free = -1;  ///< Bytes.
};
Q_DECLARE_METATYPE(LmDriveSpace)
