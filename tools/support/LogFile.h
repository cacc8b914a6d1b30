// SPDX-FileCopyrightText: 2026 The Merivo Connections developers
// SPDX-License-Identifier: MIT
#pragma once

#include <QFile>
#include <QStringList>

/// The size limits of a log. A file that would exceed them is renamed to FILE.1, FILE.1 to FILE.2 and so on; the oldest
/// is removed.
struct LogLimits
{
    qint64 bytes = 0; ///< of one file, unless a single record is longer; 0: no limit
    int files = 2;    ///< including the current one; at least 2
};

/// A log with one record in each line, written to the file at once. Nothing more is written after a failure.
class LogFile final
{
public:
    /// Opens @p path for appending, or standard error if it is empty. Returns false and sets errorText() if that fails.
    bool open(const QString& path, const LogLimits& limits = {});
    bool isOpen() const { return m_file.isOpen(); }
    /// Writes bytes. Returns true also if no file is open, and false with errorText() on a failure.
    bool write(const QByteArray& line);
    QString errorText() const;

    /// Returns the files of the log, the oldest first.
    QStringList files() const { return filesAt(m_file.fileName(), m_limits.bytes > 0 ? m_limits.files : 1); }
    /// Returns the existing files of a log of up to @p count files, the oldest first.
    static QStringList filesAt(const QString& path, int count);

private:
    void rotate();

    QFile m_file;
    LogLimits m_limits;
};
