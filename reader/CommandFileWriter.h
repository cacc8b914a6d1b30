// SPDX-FileCopyrightText: 2026 The Merivo Connections developers
// SPDX-License-Identifier: MIT
#pragma once

#include "reader/AtomicString.h"

#include <QObject>

/// Commands the device reader: each operation replaces the command file on the reader's drive by its command. Whether
/// the reader took the command is told by the status file alone, see StatusFileParser.
///
/// Every operation returns true if the file could be opened for writing; a failure stands in the log, and the polling
/// that follows ends in a time-out. Values are inserted as they stand, without any escaping.
///
/// The text is encoded by QTextStream's default codec, which is the locale's: UTF-8 in a UTF-8 locale, and there is
/// never a byte order mark. All of a command is ASCII but the values given to it.
///
/// GUI thread only, but for the reading of m_lastCommand.
class CommandFileWriter final : public QObject
{
    Q_OBJECT
    Q_DISABLE_COPY_MOVE(CommandFileWriter)

public:
    /// Destroys the writer that there is and makes the one for the reader's working directory "MISC" on that drive. The
    /// caller deletes it at the end of the run, behind the status file parser, whose polling reads m_lastCommand.
    static CommandFileWriter* create(const QString& drivePath);
    /// The writer that create() made, from then until its destruction; null outside of that.
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

    /// The reader's working directory: the drive's path with "/MISC" appended.
    const QString m_path;
    /// The word of the last submission, set before its file is opened; empty before the first one and after one whose
    /// file couldn't be opened. The polling thread reads it.
    AtomicString m_lastCommand;

private:
    explicit CommandFileWriter(const QString& drivePath);

    bool submit(const QString& command, const QString& arguments);
};
