// SPDX-FileCopyrightText: 2026 The Merivo Connections developers
// SPDX-License-Identifier: MIT
#pragma once

#include <QByteArray>
#include <QDateTime>
#include <QFileInfo>
#include <QString>

namespace ReaderNames {
inline const QString Folder = "MISC";
inline const QString Command = "CommandFile.txt";
inline const QString Status = "STATUS.TXT";
inline const QString DeviceList = "DEVLIST.XML";
inline const QString FirmwareLog = "VERSION.log";
inline const QString ExchangeFilter = "I*.xml";
/// Located in the drive's root: its name begins with that of the folder MISC.
inline const QString Trigger = "MISCNoCommand.txt";
} // namespace ReaderNames

/// Time and size of a file. Two equal stamps mean that the file wasn't written in between.
struct FileStamp
{
    qint64 modifiedMs = -1;
    qint64 size = -1;

    static FileStamp of(const QString& path)
    {
        const QFileInfo info(path);
        return info.isFile() ? FileStamp{info.lastModified().toMSecsSinceEpoch(), info.size()} : FileStamp();
    }

    bool exists() const { return size >= 0; }
    bool operator==(const FileStamp& other) const { return modifiedMs == other.modifiedMs && size == other.size; }
    bool operator!=(const FileStamp& other) const { return !(*this == other); }
};

/// Returns true if the bytes of a STATUS.TXT show a running command.
inline bool isRunning(const QByteArray& statusText)
{
    return statusText.split('\n').value(2).mid(10).trimmed() == "running";
}
