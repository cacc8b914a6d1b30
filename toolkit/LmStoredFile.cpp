// SPDX-FileCopyrightText: 2026 The Merivo Connections developers
// SPDX-License-Identifier: MIT
#include "toolkit/LmStoredFile.h"

#include "toolkit/LmFiles.h"

#include <QDir>
#include <QFileInfo>

LmStoredFile::LmStoredFile(const QString& path, const QByteArray& content, const QString& hint)
    : m_path(path)
    , m_content(content)
    , m_hint(hint)
{}

LmStoredFile::Ptr LmStoredFile::read(const QString& path, QIODevice::OpenMode mode, const QString& hint)
{
    return Ptr::create(path, lmReadBytes(path, mode), hint);
}

LmStoredFile::Ptr LmStoredFile::readForDirectory(const QString& path, const QString& directory,
                                                 QIODevice::OpenMode mode, const QString& hint)
{
    return Ptr::create(QDir(directory).filePath(QFileInfo(path).fileName()), lmReadBytes(path, mode), hint);
}

bool LmStoredFile::save(const QString& path, QIODevice::OpenMode mode) const
{
    return lmWriteBytes(m_content, path, mode);
}

bool LmStoredFile::save(QIODevice::OpenMode mode) const
{
    return save(m_path, mode);
}
