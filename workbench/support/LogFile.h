// SPDX-FileCopyrightText: 2026 The Merivo Connections developers
// SPDX-License-Identifier: MIT
#pragma once

#include <QFile>
#include <QStringList>

/// How long a log grows. A file that would grow larger is renamed to FILE.1, the one of that name to FILE.2 and so on;
/// the oldest is removed.
struct LogLimits
{
    qint64 bytes = 0; ///< of one file, unless one record alone is longer; 0: no limit
    int files = 2;    ///< with the one that is written, at least 2
};

/// A log with one record a line, which reaches the file at once. After a failure nothing more is written.
class LogFile final
{
public:
    /// Appends to @p path from now on; to standard error if it is empty. Returns false, with errorText(), on a failure.
    bool open(const QString& path, const LogLimits& limits = {});
    bool isOpen() const { return m_file.isOpen(); }
    /// Returns false, with errorText(), on a failure; true if no file is open.
    bool write(const QByteArray& line);
    QString errorText() const;

    /// Returns the files of the log, the oldest first.
    QStringList files() const { return filesAt(m_file.fileName(), m_limits.bytes > 0 ? m_limits.files : 1); }
    /// Returns those that there are of a log of up to @p count files, the oldest first.
    static QStringList filesAt(const QString& path, int count);

private:
    void rotate();

    QFile m_file;
    LogLimits m_limits;
};
