// SPDX-FileCopyrightText: 2026 The Merivo Connections developers
// SPDX-License-Identifier: MIT
#pragma once

#include <QMetaType>

/// The outcome of a reader command, from the status file up to the dialogs. Failed, Done and Canceled are final.
enum class CommandStatus : qint32 {
    Running = 0,  ///< "running": the command is under way.
    Failed = 1,   ///< "failed": the reader ended it with an error; the record's error holds the code.
    Done = 2,     ///< "done": the reader ended it with success; the record's result holds the answer.
    Canceled = 3, ///< The user stopped it. Never read from the file: set when the polling sees a cancel.
    Unknown = 4   ///< Any other status word, an empty record, or nothing usable seen: not executed.
};
Q_DECLARE_METATYPE(CommandStatus)
