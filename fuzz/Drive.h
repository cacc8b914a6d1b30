// SPDX-FileCopyrightText: 2026 The Merivo Connections developers
// SPDX-License-Identifier: MIT
#pragma once

#include "fuzz/Target.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>

/// A reader's drive, for code that takes files and no bytes. Its folder goes when the process ends; fuzz/run lays it
/// into memory.
class Drive final
{
public:
    Drive()
    {
        require(m_folder.isValid() && QDir(m_folder.path()).mkdir(QStringLiteral("MISC")), "a folder can be made");
    }

    QString path() const { return m_folder.path(); }
    QString misc() const { return m_folder.path() + QStringLiteral("/MISC"); }

    /// Puts a file into MISC in place of an older one, and returns its path.
    QString write(const QString& name, const QByteArray& bytes) const
    {
        QFile file(misc() + QLatin1Char('/') + name);
        require(file.open(QIODevice::WriteOnly) && file.write(bytes) == bytes.size() && file.flush(),
                "a file can be written");
        return file.fileName();
    }

private:
    QTemporaryDir m_folder;
};
