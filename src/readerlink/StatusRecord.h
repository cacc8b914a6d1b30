// SPDX-FileCopyrightText: 2026 The Merivo Connections developers
// SPDX-License-Identifier: MIT
#pragma once

#include "readerlink/CommandStatus.h"

#include <QString>

class QTextStream;

/// The content of the status file at one time. The file has no sequence number: a status is new if any field differs,
/// the header included.
struct StatusRecord
{
    QString header;  ///< Line 1, not interpreted. Empty if the read failed.
    QString command; ///< Name of the command that the status belongs to, in any letter case.
    CommandStatus status = CommandStatus::Unknown;
    QString result; ///< The command's answer, such as a confirmation code or a serial number.
    int error = -1; ///< The reader's error code; 0 if its line has no number.

    /// Reads the five lines of a status file. Labels are skipped by their length and not compared. A missing line
    /// counts as empty.
    static StatusRecord parse(QTextStream& text);
    /// Returns the text for log lines: "[header]: command, status, error, result".
    QString toLogText() const;
};

bool operator==(const StatusRecord& left, const StatusRecord& right);
inline bool operator!=(const StatusRecord& left, const StatusRecord& right)
{
    return !(left == right);
}
