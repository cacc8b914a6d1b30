// SPDX-FileCopyrightText: 2026 The Merivo Connections developers
// SPDX-License-Identifier: MIT
#pragma once

#include "reader/CommandStatus.h"

#include <QString>

class QTextStream;

/// The value of one read of the status file. The file has no sequence number: a change in any field, the header
/// included, is what tells a new status from the old one.
struct StatusRecord
{
    QString header;  ///< Line 1, not interpreted. Empty: the read failed.
    QString command; ///< The word of the command that the status speaks of, in any letter case.
    CommandStatus status = CommandStatus::Unknown;
    QString result; ///< The command's answer: a confirmation code, a serial number.
    int error = -1; ///< The reader's error code; 0 where its line has no number.

    /// Reads the five lines of a status file. Labels are skipped by their length alone and never compared. A missing
    /// line counts as an empty one.
    static StatusRecord parse(QTextStream& text);
    /// The record as log lines show it: "[header]: command, status, error, result".
    QString toLogText() const;
};

bool operator==(const StatusRecord& left, const StatusRecord& right);
inline bool operator!=(const StatusRecord& left, const StatusRecord& right)
{
    return !(left == right);
}
