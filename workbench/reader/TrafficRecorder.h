// SPDX-FileCopyrightText: 2026 The Merivo Connections developers
// SPDX-License-Identifier: MIT
#pragma once

#include "workbench/reader/TrafficWatcher.h"

#include <QFile>

/// Writes down what happens on a reader's drive, whoever serves it, without touching the drive: the content of each of
/// the reader's files as it changes, and each writing of the trigger file. What lies there at the begin comes first.
class TrafficRecorder final : public QObject
{
    Q_OBJECT
    Q_DISABLE_COPY_MOVE(TrafficRecorder)

public:
    explicit TrafficRecorder(const QString& drivePath, QObject* parent = nullptr);
    ~TrafficRecorder() override;

    /// Begins to record into @p fileName, which mustn't exist. False with a sentence that names the file.
    bool start(const QString& fileName, QString* error);
    /// Writes down what has changed since the last look, and ends the recording. False if not all of it was written;
    /// failed() has told why.
    bool stop();

Q_SIGNALS:
    /// The recording can't be written any more.
    void failed(const QString& error);

private:
    void write(const TrafficEntry& entry);

    TrafficWatcher m_watcher;
    QFile m_file;
};
