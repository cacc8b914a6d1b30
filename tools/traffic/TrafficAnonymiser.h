// SPDX-FileCopyrightText: 2026 The Merivo Connections developers
// SPDX-License-Identifier: MIT
#pragma once

#include "tools/traffic/Anonymiser.h"
#include "tools/traffic/Traffic.h"

#include <QHash>

/// Removes names, ids, serial numbers, addresses and all free text from recordings, in the files' contents and names. A
/// recording can still be replayed: words that the plug-in depends on are kept, and different values stay different.
/// Exchange files, as health data, and invalid files become filler of the same size; equal contents get the same
/// filler.
class TrafficAnonymiser final
{
public:
    /// Collects the personal values of commands, statuses, device lists and file names. Call it for all recordings
    /// first.
    void learn(const QVector<TrafficEntry>& entries);
    /// Returns the lines of the anonymised recording.
    QByteArray recording(const QVector<TrafficEntry>& entries);

    Anonymiser& words() { return m_words; }

private:
    TrafficEntry anonymised(const TrafficEntry& entry);
    QString hide(const QString& value);
    QString form(const QString& text);
    QString nameOf(const QString& name);
    QString exchangeName(const QString& name);
    std::optional<QString> contentOf(const TrafficEntry& entry);
    QString command(const QString& text);
    QString status(const QString& text);
    QString resultOf(const QString& command, const QString& text);
    std::optional<QString> deviceList(const QByteArray& bytes);
    QString firmwareLog(const QString& text);

    Anonymiser m_words;
    bool m_isLearning = false;
    QHash<QByteArray, int> m_fillers; // fillers' numbers by the contents' hashes
};

/// Writes the recording @p from without personal data to @p to, which must not exist and is removed on a failure.
bool anonymiseRecording(const QString& from, const QString& to, QStringList* errors);
