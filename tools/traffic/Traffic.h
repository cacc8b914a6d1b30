// SPDX-FileCopyrightText: 2026 The Merivo Connections developers
// SPDX-License-Identifier: MIT
#pragma once

#include "tools/traffic/ReaderNames.h"

#include <QByteArray>
#include <QString>
#include <QStringList>
#include <QVector>

#include <optional>

/// Replaces the content of a file that isn't kept.
struct TrafficFiller
{
    int size = 0;   ///< bytes
    int number = 0; ///< different contents have different numbers

    QByteArray bytes() const;
};

/// One change of a file on a reader's drive.
struct TrafficEntry
{
    /// Time since the start of the recording.
    qint64 ms = 0;
    /// Relative to the drive's root, such as "MISC/STATUS.TXT".
    QString file;
    /// The file's content from then on; the file was removed if both are empty.
    std::optional<QByteArray> bytes;
    std::optional<TrafficFiller> filler;

    /// Returns the content or its replacement.
    std::optional<QByteArray> content() const { return filler ? filler->bytes() : bytes; }

    bool isCommand() const { return name() == ReaderNames::Command; }
    bool isStatus() const { return name() == ReaderNames::Status; }
    /// Returns the name within MISC.
    QString name() const;
};

/// Returns true for the names that ReaderNames::ExchangeFilter matches. QDir::match() would compile it for each name.
bool isExchangeName(const QString& name);

/// Returns true for the names of files in MISC that reader and computer exchange.
bool isTrafficFile(const QString& name);

/// Returns one line of a recording with its line feed. Content that isn't UTF-8 is encoded in base 64.
QByteArray trafficLine(const TrafficEntry& entry);

/// Loads a recording. Returns nothing, with one error for each invalid line ("FILE: line 3: ms: ..."), unless all of it
/// is valid. Ignores an incomplete last line, as a killed recorder leaves it.
std::optional<QVector<TrafficEntry>> loadTraffic(const QString& fileName, QStringList* errors);
