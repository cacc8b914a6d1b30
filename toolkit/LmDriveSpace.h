// SPDX-FileCopyrightText: 2026 The Merivo Connections developers
// SPDX-License-Identifier: MIT
#pragma once

#include <QMetaType>
#include <QPair>
#include <QString>

/// How large a drive is and how much of it is free, as of the last refresh(). A plain value. Where a number of unit
/// steps is asked for, 0 stands for bytes, 1 for KiB, 2 for MiB and so on.
class LmDriveSpace
{
public:
    /// Reads the figures of the drive that holds @p path, which blocks for as long as the drive takes. A path without a
    /// drive leaves them unknown.
    explicit LmDriveSpace(const QString& path = QString());
    LmDriveSpace(const LmDriveSpace&) = default;
    LmDriveSpace(LmDriveSpace&&) = default;
    LmDriveSpace& operator=(const LmDriveSpace&) = default;
    LmDriveSpace& operator=(LmDriveSpace&&) = default;
    virtual ~LmDriveSpace();

    /// Reads the figures again, and returns whether either differs from before. Blocks as the constructor does.
    bool refresh();

    QString path() const { return m_path; }
    /// The drive's size; -1 if unknown.
    double total(int unitSteps) const { return scaled(m_total, unitSteps); }
    /// What is free on the drive, for whichever user; -1 if unknown.
    double free(int unitSteps) const { return scaled(m_free, unitSteps); }
    /// The free part in percent, or -1 if size or free space is unknown.
    double freePercent() const;

    /// @p value divided by 1024 @p unitSteps times; as it is if it isn't positive.
    static double scaled(double value, int unitSteps);

    /// Total and available bytes of the machine's physical memory (@p kind 0), of this process's virtual address space
    /// (1), and of memory and page file together (2). Both are -1 if the system doesn't tell and for any other kind.
    static QPair<double, double> memoryInfo(int kind);

    /// The figures of the root of the drive that holds @p path; an entry in Qt's log says what they are.
    static LmDriveSpace driveInfo(const QString& path);

private:
    QString m_path;
    double m_total = -1; ///< Bytes.
    double m_free = -1;  ///< Bytes.
};
Q_DECLARE_METATYPE(LmDriveSpace)
