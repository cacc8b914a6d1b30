// SPDX-FileCopyrightText: 2026 The Merivo Connections developers
// SPDX-License-Identifier: MIT
#pragma once

#include "readerlink/AtomicString.h"

#include <QObject>

/// Sends commands to the device reader by replacing the command file on its drive. StatusFileParser reports whether the
/// reader has executed a command.
///
/// Each command returns true if the file could be opened for writing. A failure is logged, and the polling that follows
/// times out. Values are inserted without escaping.
///
/// QTextStream's default codec encodes the text: that of the locale, without a byte order mark. Everything except the
/// inserted values is ASCII.
///
/// GUI thread only, except for reading m_lastCommand.
class CommandFileWriter final : public QObject
{
    Q_OBJECT
    Q_DISABLE_COPY_MOVE(CommandFileWriter)

public:
    /// Replaces the current writer, if any, by one for the folder "MISC" of that drive. The caller deletes it at the
    /// end of the run, after the StatusFileParser, whose polling reads m_lastCommand.
    static CommandFileWriter* create(const QString& drivePath);
    /// Returns the current writer, or null.
    static CommandFileWriter* instance();
    ~CommandFileWriter() override;

    bool search();
    bool pair(const QString& btAddress, const QString& serialNumber, const QString& patientId);
    bool confirmPairing(bool accepted);
    bool read(const QString& serialNumber);
    bool isPaired(const QString& patientId);
    bool deleteAddress(const QString& serialNumber);
    bool reassign(const QString& serialNumber, const QString& patientId);
    bool abort();

    /// The reader's working directory: the drive path followed by "/MISC".
    const QString m_path;
    /// The command name of the last submission, set before the file is opened. Empty before the first submission and
    /// after one whose file couldn't be opened. Read by the polling thread.
    AtomicString m_lastCommand;

private:
    explicit CommandFileWriter(const QString& drivePath);

    bool submit(const QString& command, const QString& arguments);
};
