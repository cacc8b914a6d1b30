// SPDX-FileCopyrightText: 2026 The Merivo Connections developers
// SPDX-License-Identifier: MIT
#include "toolkit/LmDateTimeProvider.h"

#include <QDir>
#include <QFileInfo>
#include <QTemporaryFile>

LmDateTimeProvider::LmDateTimeProvider(const QString& directory)
{
    const QDateTime before = QDateTime::currentDateTimeUtc();
    QTemporaryFile file(QDir(directory).absoluteFilePath(QStringLiteral("XXXXXX.tmp")));
    if (file.open())
        m_offsetMs = before.msecsTo(QFileInfo(file.fileName()).lastModified().toUTC());
}

LmDateTimeProvider::~LmDateTimeProvider() = default;

QDateTime LmDateTimeProvider::now() const
{
    return QDateTime::currentDateTime().addMSecs(m_offsetMs);
}

QDateTime LmDateTimeProvider::nowUtc() const
{
    return QDateTime::currentDateTimeUtc().addMSecs(m_offsetMs);
}

QDateTime LmDateTimeProvider::withLocalOffset(const QDateTime& dateTime)
{
    QDateTime fixed = dateTime;
    fixed.setOffsetFromUtc(dateTime.offsetFromUtc());
    return fixed;
}
