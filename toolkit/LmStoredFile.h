// SPDX-FileCopyrightText: 2026 The Merivo Connections developers
// SPDX-License-Identifier: MIT
#pragma once

#include <QByteArray>
#include <QIODevice>
#include <QSharedPointer>
#include <QString>

/// The content of a file in memory with the path that it is saved to. Passed by shared pointer.
class LmStoredFile final
{
public:
    using Ptr = QSharedPointer<LmStoredFile>;

    /// @p hint is any text of the caller.
    LmStoredFile(const QString& path, const QByteArray& content, const QString& hint);

    /// Reads the file at @p path by lmReadBytes(). The content is empty if it can't be read. Never returns null.
    static Ptr read(const QString& path, QIODevice::OpenMode mode, const QString& hint = QString());
    /// Reads the file at @p path by lmReadBytes(), with a path of the same file name in @p directory. The content is
    /// empty if the file can't be read. Never returns null.
    static Ptr readForDirectory(const QString& path, const QString& directory, QIODevice::OpenMode mode,
                                const QString& hint = QString());

    QString path() const { return m_path; }
    QByteArray content() const { return m_content; }
    QString hint() const { return m_hint; }

    /// Writes the content to @p path by lmWriteBytes(). Returns true only if all of it was written.
    bool save(const QString& path, QIODevice::OpenMode mode) const;
    /// Writes the content to path() by lmWriteBytes(). Returns true only if all of it was written.
    bool save(QIODevice::OpenMode mode) const;

private:
    QString m_path;
    QByteArray m_content;
    QString m_hint;
};
