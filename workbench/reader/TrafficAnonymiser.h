// SPDX-FileCopyrightText: 2026 The Merivo Connections developers
// SPDX-License-Identifier: MIT
#pragma once

#include "workbench/reader/Anonymiser.h"
#include "workbench/reader/Traffic.h"

#include <QHash>

/// Takes names, ids, serial numbers, addresses and all free text out of recordings, in the files' contents and names. A
/// recording plays as before: words that the plug-in goes by stay, and what differed differs. An exchange file's
/// content becomes filler of the same size, as health data has no place in a report; two of the same content get the
/// same filler.
class TrafficAnonymiser final
{
public:
    /// Tells the anonymiser what the commands, statuses and device lists name as pump or patient. All recordings first.
    void learn(const QVector<TrafficEntry>& entries);
    TrafficEntry anonymised(const TrafficEntry& entry);

    Anonymiser& words() { return m_words; }

private:
    QString nameOf(const QString& name);
    QString marksOf(const QString& text);
    QString exchangeName(const QString& name);
    QString contentOf(const TrafficEntry& entry, const QString& text);
    QString command(const QString& text);
    QString status(const QString& text);
    QString deviceList(const QString& text);
    QString firmwareLog(const QString& text);

    Anonymiser m_words;
    QHash<QByteArray, int> m_fillers; // contents' hashes to the fillers' numbers
};

/// Writes the recording @p from without personal data into @p to, which mustn't exist and is left out on a failure.
bool anonymiseRecording(const QString& from, const QString& to, QStringList* errors);
