// SPDX-FileCopyrightText: 2026 The Merivo Connections developers
// SPDX-License-Identifier: MIT
#include "workbench/reader/TrafficWatcher.h"

#include "workbench/reader/ReaderFiles.h"

#include <QDir>
#include <QFile>

#include <algorithm>

namespace {

const int LookEveryMs = 10;
/// Up to here the content decides whether a file has changed. Stamps don't tell two writes of one second apart on FAT,
/// nor any on a reader without a clock.
const qint64 SmallFile = 65536; // bytes

/// A command file is emptied before it is written and an exchange file grows; both count once they have rested for a
/// look. The others the reader replaces in one step.
bool isWrittenInSteps(const QString& name)
{
    return name == ReaderNames::Command || isExchangeName(name);
}

/// False where the drive goes away or fails: what could be read until then isn't the file's content.
bool read(const QString& path, QByteArray* bytes)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return false;
    *bytes = file.readAll();
    return file.error() == QFile::NoError;
}

QByteArray wordOfCommand(const QByteArray& commandFile)
{
    return commandFile.mid(commandFile.indexOf('=') + 1).split(' ').first().trimmed();
}

bool speaksOf(const QByteArray& status, const QByteArray& word)
{
    constexpr int LabelLength = 4;
    return status.split('\n').value(1).mid(LabelLength).trimmed().compare(word, Qt::CaseInsensitive) == 0;
}

} // namespace

TrafficWatcher::TrafficWatcher(const QString& drivePath, QObject* parent)
    : QObject(parent)
    , m_drivePath(QDir(drivePath).absolutePath())
    , m_watcher(this)
    , m_timer(this)
{
    m_timer.setInterval(LookEveryMs);
    m_timer.setTimerType(Qt::PreciseTimer);
    connect(&m_timer, &QTimer::timeout, this, &TrafficWatcher::look);
    // Tells of what two looks would miss: the same command again, two statuses in quick succession.
    connect(&m_watcher, &QFileSystemWatcher::fileChanged, this, [this](const QString& path) {
        m_written.insert(path);
        look();
    });
    connect(&m_watcher, &QFileSystemWatcher::directoryChanged, this, &TrafficWatcher::look);
}

void TrafficWatcher::start()
{
    m_clock.start();
    m_seen.clear();
    m_trigger = FileStamp::of(m_drivePath + QLatin1Char('/') + ReaderNames::Trigger);
    const QString command = pathOf(ReaderNames::Command);
    if (QFile old(command); old.open(QIODevice::ReadOnly))
        m_seen.insert(ReaderNames::Command, {FileStamp::of(command), old.readAll(), true});
    m_timer.start();
    look();
}

void TrafficWatcher::stop()
{
    if (!m_timer.isActive())
        return;
    look();
    tellPending(true);
    m_timer.stop();
    const QStringList watched = m_watcher.files() + m_watcher.directories();
    if (!watched.isEmpty())
        m_watcher.removePaths(watched);
}

QString TrafficWatcher::pathOf(const QString& name) const
{
    const QString folder = m_drivePath + QLatin1Char('/') + ReaderNames::Folder;
    return name.isEmpty() ? folder : folder + QLatin1Char('/') + name;
}

void TrafficWatcher::look()
{
    if (!m_timer.isActive())
        return;
    const QString paths[] = {m_drivePath + QLatin1Char('/') + ReaderNames::Trigger, pathOf(ReaderNames::Command),
                             pathOf({})};
    for (const QString& path : paths) {
        if (!m_watcher.files().contains(path) && !m_watcher.directories().contains(path) && QFileInfo::exists(path))
            m_watcher.addPath(path);
    }
    lookAtTrigger();
    QStringList names = QDir(pathOf({})).entryList(QDir::Files | QDir::Hidden);
    // The status last: it speaks of files that lie there by then.
    std::stable_partition(names.begin(), names.end(), [](const QString& name) { return name != ReaderNames::Status; });
    for (const QString& name : qAsConst(names)) {
        if (isTrafficFile(name))
            lookAtFile(name);
    }
    const QStringList known = m_seen.keys();
    for (const QString& name : known) {
        // A drive that comes back brings an old command along, which nobody gives again.
        if (names.contains(name) || name == ReaderNames::Command)
            continue;
        m_seen.remove(name);
        tell(ReaderNames::Folder + QLatin1Char('/') + name, std::nullopt);
    }
    m_written.clear();
}

void TrafficWatcher::lookAtTrigger()
{
    const QString path = m_drivePath + QLatin1Char('/') + ReaderNames::Trigger;
    const FileStamp stamp = FileStamp::of(path);
    if (stamp == m_trigger && !m_written.contains(path))
        return;
    m_trigger = stamp;
    tell(ReaderNames::Trigger, stamp.exists() ? std::make_optional(QByteArray("")) : std::nullopt);
}

void TrafficWatcher::lookAtFile(const QString& name)
{
    const QString path = pathOf(name);
    const FileStamp stamp = FileStamp::of(path);
    Seen& seen = m_seen[name];
    QByteArray bytes;
    if (stamp.size <= SmallFile && !read(path, &bytes))
        return;
    const bool isLate = seen.isTold && m_clock.elapsed() - seen.toldMs < LateNoticeMs;
    const bool hasChanged = stamp != seen.stamp || bytes != seen.bytes || (m_written.contains(path) && !isLate);
    seen.isTold = seen.isTold && !hasChanged;
    seen.stamp = stamp;
    seen.bytes = bytes;
    const bool isEmptied = name == ReaderNames::Command && bytes.isEmpty();
    if (seen.isTold || isEmptied || (hasChanged && isWrittenInSteps(name)))
        return;
    // A reader can be quicker than a command rests here, and what it answers comes after the command all the same. The
    // end of a read-out vouches for the exchange file.
    if (name != ReaderNames::Command && !(name == ReaderNames::Status && isLateAnswer(bytes)))
        tellPending(name == ReaderNames::Status && !isRunning(bytes));
    m_seen[name].isTold = tell(name);
}

/// Whether a status answers the command that was told last, seen only when the next one had been written too.
bool TrafficWatcher::isLateAnswer(const QByteArray& status) const
{
    const Seen command = m_seen.value(ReaderNames::Command);
    return !command.isTold && speaksOf(status, m_lastWord) && !speaksOf(status, wordOfCommand(command.bytes));
}

/// Tells the command that doesn't rest yet, at the end also the exchange files.
void TrafficWatcher::tellPending(bool isEnd)
{
    const QStringList names = m_seen.keys();
    for (const QString& name : names) {
        const Seen& seen = m_seen[name];
        const bool isWhole = name == ReaderNames::Command ? !seen.bytes.isEmpty() : isEnd && isWrittenInSteps(name);
        if (!seen.isTold && isWhole)
            m_seen[name].isTold = tell(name);
    }
}

bool TrafficWatcher::tell(const QString& name)
{
    QByteArray bytes = m_seen.value(name).bytes;
    if (m_seen.value(name).stamp.size > SmallFile && !read(pathOf(name), &bytes))
        return false;
    m_seen[name].toldMs = m_clock.elapsed();
    if (name == ReaderNames::Command)
        m_lastWord = wordOfCommand(bytes);
    tell(ReaderNames::Folder + QLatin1Char('/') + name, bytes);
    return true;
}

void TrafficWatcher::tell(const QString& file, const std::optional<QByteArray>& bytes)
{
    Q_EMIT changed({m_clock.elapsed(), file, bytes, std::nullopt});
}
