// SPDX-FileCopyrightText: 2026 The Merivo Connections developers
// SPDX-License-Identifier: MIT
#pragma once

#include <QByteArray>
#include <QIODevice>
#include <QSharedPointer>
#include <QString>

/// A file in memory, with the path that it is saved to. Handed around by shared ownership.
class LmStoredFile final
{
public:
    using Ptr = QSharedPointer<LmStoredFile>;

    /// @p hint is whatever the caller wants to find along with the file.
    LmStoredFile(const QString& path, const QByteArray& content, const QString& hint);

    /// The file at @p path; without content if it can't be read. Never null.
    static Ptr read(const QString& path, QIODevice::OpenMode mode, const QString& hint = QString());
    /// The content of the file at @p path, to be saved under the same name in @p directory.
    static Ptr readForDirectory(const QString& path, const QString& directory, QIODevice::OpenMode mode,
                                const QString& hint = QString());

    QString path() const { return m_path; }
    QByteArray content() const { return m_content; }
    QString hint() const { return m_hint; }

    /// Writes the content by lmWriteBytes(), to @p path or to this file's own path. False if it isn't written whole.
    bool save(const QString& path, QIODevice::OpenMode mode) const;
    bool save(QIODevice::OpenMode mode) const;

private:
    QString m_path;
    QByteArray m_content;
    QString m_hint;
};
