// SPDX-FileCopyrightText: 2026 The Merivo Connections developers
// SPDX-License-Identifier: MIT
#include "tools/support/LogFile.h"

#include "tools/support/Platform.h"

#include <cstdio>

namespace {

QString numbered(const QString& path, int number)
{
    return number == 0 ? path : path + '.' + QString::number(number);
}

/// Returns true if the file's last line is incomplete, as after a full disk.
bool isTorn(const QString& path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) && file.size() > 0 && file.seek(file.size() - 1) && file.read(1) != "\n";
}

} // namespace

bool LogFile::open(const QString& path, const LogLimits& limits)
{
    m_limits = limits;
    if (path.isEmpty())
        return m_file.open(stderr, QIODevice::WriteOnly);
    m_file.setFileName(path);
    return m_file.open(QIODevice::WriteOnly | QIODevice::Append) && (!isTorn(path) || write("\n"));
}

bool LogFile::write(const QByteArray& line)
{
    if (!isOpen())
        return true;
    if (m_limits.bytes > 0 && m_file.size() > 0 && m_file.size() + line.size() > m_limits.bytes)
        rotate();
    const bool isWritten = Platform::writeThrough(m_file, line);
    if (!isWritten)
        m_file.close();
    return isWritten;
}

QString LogFile::errorText() const
{
    return QString("log file '%1': %2").arg(m_file.fileName(), m_file.errorString());
}

/// Rotates the files. A file that can't be renamed is continued beyond its limit, so that no record is lost. Older
/// files are moved only up to the first gap, so that repeated attempts don't delete one after the other.
void LogFile::rotate()
{
    const QString path = m_file.fileName();
    m_file.close();
    int free = 1;
    while (free < m_limits.files - 1 && QFile::exists(numbered(path, free)))
        ++free;
    QFile::remove(numbered(path, free));
    for (int number = free; number > 0; --number)
        QFile::rename(numbered(path, number - 1), numbered(path, number));
    m_file.open(QIODevice::WriteOnly | QIODevice::Append);
}

QStringList LogFile::filesAt(const QString& path, int count)
{
    QStringList paths;
    for (int number = count - 1; number >= 0; --number)
        if (QFile::exists(numbered(path, number)))
            paths.append(numbered(path, number));
    return paths;
}
