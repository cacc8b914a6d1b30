// SPDX-FileCopyrightText: 2026 The Merivo Connections developers
// SPDX-License-Identifier: MIT
#pragma once

#include "workbench/traffic/ReaderNames.h"

#include <QByteArray>
#include <QString>
#include <QStringList>
#include <QVector>

#include <optional>

/// Stands for the content of a file that isn't kept.
struct TrafficFiller
{
    int size = 0;   ///< bytes
    int number = 0; ///< two contents that differed have different ones

    QByteArray bytes() const;
};

/// One thing that happened to a file of a reader's drive.
struct TrafficEntry
{
    /// Since the recording's begin.
    qint64 ms = 0;
    /// Relative to the drive's root, such as "MISC/STATUS.TXT".
    QString file;
    /// The file's content from then on; with neither of them it went away.
    std::optional<QByteArray> bytes;
    std::optional<TrafficFiller> filler;

    /// The content, or what stands in its place.
    std::optional<QByteArray> content() const { return filler ? filler->bytes() : bytes; }

    bool isCommand() const { return name() == ReaderNames::Command; }
    bool isStatus() const { return name() == ReaderNames::Status; }
    /// The name within MISC.
    QString name() const;
};

/// True for what ReaderNames::ExchangeFilter finds. QDir::match() would compile it anew for each name.
bool isExchangeName(const QString& name);

/// True for the files of MISC, by name, that make up the exchange between reader and computer.
bool isTrafficFile(const QString& name);

/// One line of a recording, its line feed included. Content that isn't UTF-8 stands in base 64.
QByteArray trafficLine(const TrafficEntry& entry);

/// Reads a whole recording. Nothing, with one error for each line that doesn't fit ("FILE: line 3: ms: ..."), unless
/// all of it is sound. A last line that breaks off, as a recorder leaves it that is killed, is no fault and left out.
std::optional<QVector<TrafficEntry>> loadTraffic(const QString& fileName, QStringList* errors);
