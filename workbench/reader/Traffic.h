// SPDX-FileCopyrightText: 2026 The Merivo Connections developers
// SPDX-License-Identifier: MIT
#pragma once

#include <QByteArray>
#include <QString>
#include <QStringList>
#include <QVector>

#include <optional>

/// One thing that happened to a file of a reader's drive.
struct TrafficEntry
{
    /// Since the recording's begin.
    qint64 ms = 0;
    /// Relative to the drive's root, such as "MISC/STATUS.TXT".
    QString file;
    /// The file's content from then on; nothing if it went away.
    std::optional<QByteArray> bytes;

    bool isCommand() const;
    bool isStatus() const;
    bool isTrigger() const;
    /// The name within MISC; empty for the trigger file.
    QString name() const;
};

/// True for the files of MISC, by name, that make up the exchange between reader and computer.
bool isTrafficFile(const QString& name);

/// One line of a recording, its line feed included. Content that isn't UTF-8 stands in base 64.
QByteArray trafficLine(const TrafficEntry& entry);

/// Reads a whole recording. Nothing, with one error for each line that doesn't fit ("FILE: line 3: ms: ..."), unless
/// all of it is sound.
std::optional<QVector<TrafficEntry>> loadTraffic(const QString& fileName, QStringList* errors);
