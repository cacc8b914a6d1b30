// SPDX-FileCopyrightText: 2026 The Merivo Connections developers
// SPDX-License-Identifier: MIT
#include "workbench/reader/TrafficRecorder.h"

#include "workbench/reader/Traffic.h"

#include <QDir>

#include <algorithm>

namespace {

const int LookEveryMs = 10;

} // namespace

TrafficRecorder::TrafficRecorder(const QString& drivePath, QObject* parent)
    : QObject(parent)
    , m_drivePath(QDir(drivePath).absolutePath())
{
    m_timer.setInterval(LookEveryMs);
    m_timer.setTimerType(Qt::PreciseTimer);
    connect(&m_timer, &QTimer::timeout, this, &TrafficRecorder::look);
}

TrafficRecorder::~TrafficRecorder()
{
    if (m_timer.isActive())
        look();
}

bool TrafficRecorder::start(const QString& fileName, QString* error)
{
    m_file.setFileName(fileName);
    if (!QDir(m_drivePath).exists()) {
        *error = QStringLiteral("%1: there is no such folder").arg(m_drivePath);
        return false;
    }
    // Never over an older recording: it may be the only one of a failure.
    if (!m_file.open(QIODevice::WriteOnly | QIODevice::NewOnly)) {
        *error = QStringLiteral("%1: %2").arg(fileName, m_file.errorString());
        return false;
    }
    m_clock.start();
    m_trigger = FileStamp::of(m_drivePath + QLatin1Char('/') + ReaderNames::Trigger);
    // A command that lies there already was given before the recording.
    const QString command =
        m_drivePath + QLatin1Char('/') + ReaderNames::Folder + QLatin1Char('/') + ReaderNames::Command;
    if (QFile old(command); old.open(QIODevice::ReadOnly))
        m_seen.insert(ReaderNames::Command, {FileStamp::of(command), old.readAll(), true});
    look();
    m_timer.start();
    return true;
}

void TrafficRecorder::look()
{
    lookAtTrigger();
    const QDir folder(m_drivePath + QLatin1Char('/') + ReaderNames::Folder);
    QStringList names = folder.entryList(QDir::Files | QDir::Hidden);
    // The status last: it speaks of files that lie there by then.
    std::stable_partition(names.begin(), names.end(), [](const QString& name) { return name != ReaderNames::Status; });
    for (const QString& name : qAsConst(names)) {
        if (isTrafficFile(name))
            lookAtFile(name);
    }
    const QStringList known = m_seen.keys();
    for (const QString& name : known) {
        if (names.contains(name))
            continue;
        m_seen.remove(name);
        write(ReaderNames::Folder + QLatin1Char('/') + name, std::nullopt);
    }
}

void TrafficRecorder::lookAtTrigger()
{
    const FileStamp stamp = FileStamp::of(m_drivePath + QLatin1Char('/') + ReaderNames::Trigger);
    if (stamp == m_trigger)
        return;
    m_trigger = stamp;
    write(ReaderNames::Trigger, stamp.exists() ? std::make_optional(QByteArray("")) : std::nullopt);
}

void TrafficRecorder::lookAtFile(const QString& name)
{
    const QString file = ReaderNames::Folder + QLatin1Char('/') + name;
    const QString path = m_drivePath + QLatin1Char('/') + file;
    const FileStamp stamp = FileStamp::of(path);
    Seen& seen = m_seen[name];
    const bool hasRested = stamp == seen.stamp;
    if (hasRested && seen.isWritten)
        return;

    QFile source(path);
    if (!source.open(QIODevice::ReadOnly))
        return;
    const QByteArray bytes = source.readAll();
    // A command file is emptied before it is written, so it counts once it has rested for a look; the reader replaces
    // its own files in one step.
    seen.isWritten = name != ReaderNames::Command || (hasRested && bytes == seen.bytes);
    seen.stamp = stamp;
    seen.bytes = bytes;
    if (seen.isWritten)
        write(file, bytes);
}

void TrafficRecorder::write(const QString& file, const std::optional<QByteArray>& bytes)
{
    const QByteArray line = trafficLine({m_clock.elapsed(), file, bytes});
    if (m_file.write(line) == line.size() && m_file.flush())
        return;
    m_timer.stop();
    Q_EMIT failed(QStringLiteral("%1: %2").arg(m_file.fileName(), m_file.errorString()));
}
