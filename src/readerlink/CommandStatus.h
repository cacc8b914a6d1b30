// SPDX-FileCopyrightText: 2026 The Merivo Connections developers
// SPDX-License-Identifier: MIT
#pragma once

#include <QMetaType>

/// The outcome of a reader command. Failed, Done and Canceled are final.
enum class CommandStatus : qint32 {
    Running = 0,  ///< "running": the reader executes the command.
    Failed = 1,   ///< "failed": StatusRecord::error is the error code.
    Done = 2,     ///< "done": StatusRecord::result is the answer.
    Canceled = 3, ///< Cancelled by the user. Never read from the file; set by the polling.
    Unknown = 4   ///< Any other status, an empty record, or no usable status: not executed.
};
Q_DECLARE_METATYPE(CommandStatus)
