// SPDX-FileCopyrightText: 2026 The Merivo Connections developers
// SPDX-License-Identifier: MIT
#include "toolkit/LmFiles.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QTextStream>

bool lmMakeParentDir(const QString& filePath)
{
    const QString directory = QFileInfo(filePath).path();
    return directory.isEmpty() || directory == QLatin1String(".") || QDir(QDir::currentPath()).mkpath(directory);
}

QByteArray lmReadBytes(const QString& path, QIODevice::OpenMode mode)
{
    QFile file(path);
    // A write mode would create a missing file and, without ReadOnly, truncate an existing one.
    return file.exists() && file.open(mode | QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

QString lmReadText(const QString& path, QIODevice::OpenMode mode)
{
    return QString::fromUtf8(lmReadBytes(path, mode).constData());
}

QStringList lmReadLines(const QString& path, QIODevice::OpenMode mode)
{
    QString text = lmReadText(path, mode);
    QTextStream stream(&text, QIODevice::ReadOnly);
    QStringList lines;
    QString line;
    while (stream.readLineInto(&line))
        lines.append(line);
    return lines;
}

bool lmWriteBytes(const QByteArray& data, const QString& path, QIODevice::OpenMode mode)
{
    if (!lmMakeParentDir(path))
        return false;
    QFile file(path);
    // A full drive may be detected only by flush().
    return file.open(mode) && file.write(data) == data.size() && file.flush();
}

QLocale::Country lmSystemCountry()
{
    return QLocale::system().country();
}
