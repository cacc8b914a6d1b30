// SPDX-FileCopyrightText: 2026 The Merivo Connections developers
// SPDX-License-Identifier: MIT
#include "workbench/reader/TrafficRecorder.h"

#include "workbench/support/Platform.h"

#include <QDir>

TrafficRecorder::TrafficRecorder(const QString& drivePath, QObject* parent)
    : QObject(parent)
    , m_watcher(drivePath)
{
    connect(&m_watcher, &TrafficWatcher::changed, this, &TrafficRecorder::write);
}

TrafficRecorder::~TrafficRecorder()
{
    stop();
}

bool TrafficRecorder::start(const QString& fileName, QString* error)
{
    if (!QDir(m_watcher.drivePath()).exists()) {
        *error = QStringLiteral("%1: there is no such folder").arg(m_watcher.drivePath());
        return false;
    }
    // Never over an older recording: it may be the only one of a failure.
    m_file.setFileName(fileName);
    if (!m_file.open(QIODevice::WriteOnly | QIODevice::NewOnly)) {
        *error = QStringLiteral("%1: %2").arg(fileName, m_file.errorString());
        return false;
    }
    m_watcher.start();
    return true;
}

bool TrafficRecorder::stop()
{
    m_watcher.stop();
    const bool isWhole = m_file.isOpen();
    m_file.close();
    return isWhole;
}

void TrafficRecorder::write(const TrafficEntry& entry)
{
    if (!m_file.isOpen())
        return;
    if (Platform::writeThrough(m_file, trafficLine(entry)))
        return;
    const QString error = QStringLiteral("%1: %2").arg(m_file.fileName(), m_file.errorString());
    m_file.close();
    Q_EMIT failed(error);
}
