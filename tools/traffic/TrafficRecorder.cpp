// SPDX-FileCopyrightText: 2026 The Merivo Connections developers
// SPDX-License-Identifier: MIT
#include "tools/traffic/TrafficRecorder.h"

#include "tools/support/Platform.h"

#include <QDir>

#include <algorithm>

namespace {

constexpr int CheckEveryMs = 10;
/// The notification of a write can arrive late on a busy computer, after a check has already seen the write.
constexpr int LateNoticeMs = 300;
/// Up to this size changes are detected by content: time stamps don't distinguish two writes within one second on FAT,
/// nor any on a reader without a clock.
constexpr qint64 SmallFile = 65536; // bytes

/// A command file is truncated before it is written, and an exchange file grows: both are recorded once two checks find
/// them unchanged. The reader replaces the other files atomically.
bool isWrittenInSteps(const QString& name)
{
    return name == ReaderNames::Command || isExchangeName(name);
}

/// Returns false if the drive was removed or failed: the bytes read so far aren't the file's content.
bool read(const QString& path, QByteArray* bytes)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return false;
    *bytes = file.readAll();
    return file.error() == QFile::NoError;
}

bool isAnswerTo(const QByteArray& status, const QByteArray& commandFile)
{
    constexpr int LabelLength = 4;
    const QByteArray word = commandFile.mid(commandFile.indexOf('=') + 1).split(' ').first().trimmed();
    return status.split('\n').value(1).mid(LabelLength).trimmed().compare(word, Qt::CaseInsensitive) == 0;
}

} // namespace

TrafficRecorder::TrafficRecorder(const QString& drivePath, QObject* parent)
    : QObject(parent)
    , m_drivePath(QDir(drivePath).absolutePath())
{
    m_timer.setInterval(CheckEveryMs);
    m_timer.setTimerType(Qt::PreciseTimer);
    connect(&m_timer, &QTimer::timeout, this, &TrafficRecorder::check);
    // Notifies of changes between two checks: an equal command again, or two statuses in quick succession.
    connect(&m_watcher, &QFileSystemWatcher::fileChanged, this, [this] {
        m_isCommandWritten = true;
        check();
    });
    connect(&m_watcher, &QFileSystemWatcher::directoryChanged, this, &TrafficRecorder::check);
}

TrafficRecorder::~TrafficRecorder()
{
    stop();
}

void TrafficRecorder::setLimits(qint64 fileBytes, int contentBytes)
{
    m_maxFileBytes = fileBytes;
    m_maxContentBytes = contentBytes;
}

bool TrafficRecorder::start(const QString& fileName, QString* error)
{
    if (!QDir(m_drivePath).exists()) {
        *error = m_drivePath + ": there is no such folder";
        return false;
    }
    // Never replaces a recording: it may be the only one of a failure.
    m_file.setFileName(fileName);
    if (!m_file.open(QIODevice::WriteOnly | QIODevice::NewOnly)) {
        *error = fileName + ": " + m_file.errorString();
        return false;
    }
    m_clock.start();
    const QString command = pathOf(ReaderNames::Command);
    QByteArray bytes;
    if (read(command, &bytes))
        m_seen.insert(ReaderNames::Command, {FileStamp::of(command), bytes, true});
    m_timer.start();
    check();
    return true;
}

bool TrafficRecorder::stop()
{
    if (m_timer.isActive()) {
        check();
        recordPending(true);
        m_timer.stop();
    }
    const bool isWhole = m_file.isOpen();
    m_file.close();
    return isWhole;
}

QString TrafficRecorder::pathOf(const QString& name) const
{
    const QString folder = m_drivePath + '/' + ReaderNames::Folder;
    return name.isEmpty() ? folder : folder + '/' + name;
}

void TrafficRecorder::check()
{
    if (!m_timer.isActive())
        return;
    for (const QString& path : {pathOf(ReaderNames::Command), pathOf({})}) {
        if (!m_watcher.files().contains(path) && !m_watcher.directories().contains(path) && QFileInfo::exists(path))
            m_watcher.addPath(path);
    }
    QStringList names = QDir(pathOf({})).entryList(QDir::Files | QDir::Hidden);
    // The status comes last, as it refers to other files.
    std::stable_partition(names.begin(), names.end(), [](const QString& name) { return name != ReaderNames::Status; });
    for (const QString& name : qAsConst(names)) {
        if (isTrafficFile(name))
            checkFile(name);
    }
    for (const QString& name : m_seen.keys()) {
        // The command file of a restored drive is an old one.
        if (names.contains(name) || name == ReaderNames::Command)
            continue;
        m_seen.remove(name);
        write(name, std::nullopt);
    }
    m_isCommandWritten = false;
}

void TrafficRecorder::checkFile(const QString& name)
{
    const bool isCommand = name == ReaderNames::Command;
    const bool isStatus = name == ReaderNames::Status;
    const FileStamp stamp = FileStamp::of(pathOf(name));
    Seen& seen = m_seen[name];
    QByteArray bytes;
    if (stamp.size <= SmallFile && !read(pathOf(name), &bytes))
        return;
    const bool isLate = seen.isRecorded && m_clock.elapsed() - seen.recordedMs < LateNoticeMs;
    // merivo-reader sets back the time of a command that it has received.
    const bool isSetBack = isCommand && stamp.size == seen.stamp.size && stamp.modifiedMs < seen.stamp.modifiedMs;
    const bool isWritten = stamp != seen.stamp || (isCommand && m_isCommandWritten && !isLate);
    const bool hasChanged = bytes != seen.bytes || (isWritten && !isSetBack);
    seen.isRecorded = seen.isRecorded && !hasChanged;
    seen.stamp = stamp;
    seen.bytes = bytes;
    if (seen.isRecorded || (isCommand && bytes.isEmpty()) || (hasChanged && isWrittenInSteps(name)))
        return;
    // Records a pending command before its answer. The end of a read-out confirms that the exchange file is complete.
    if (!isCommand && !(isStatus && !isAnswerTo(bytes, m_seen.value(ReaderNames::Command).bytes)))
        recordPending(isStatus && !isRunning(bytes));
    record(name);
}

/// Records the pending command, which two checks haven't found unchanged yet.
void TrafficRecorder::recordPending(bool withExchangeFiles)
{
    for (const QString& name : m_seen.keys()) {
        const Seen seen = m_seen.value(name);
        const bool isWhole =
            name == ReaderNames::Command ? !seen.bytes.isEmpty() : withExchangeFiles && isExchangeName(name);
        if (!seen.isRecorded && isWhole)
            record(name);
    }
}

void TrafficRecorder::record(const QString& name)
{
    Seen& seen = m_seen[name];
    QByteArray bytes = seen.bytes;
    if (seen.stamp.size > SmallFile && !read(pathOf(name), &bytes))
        return;
    seen.isRecorded = true;
    seen.recordedMs = m_clock.elapsed();
    write(name, bytes);
}

void TrafficRecorder::write(const QString& name, const std::optional<QByteArray>& bytes)
{
    if (!m_file.isOpen())
        return;
    TrafficEntry entry{m_clock.elapsed(), ReaderNames::Folder + '/' + name, bytes, std::nullopt};
    if (bytes && bytes->size() > m_maxContentBytes) {
        // Keeps the size, and whether the content differs from another.
        const uint mark = qHash(*bytes) & uint(std::numeric_limits<int>::max());
        entry.filler = TrafficFiller{bytes->size(), static_cast<int>(mark)};
        entry.bytes.reset();
    }
    const QByteArray line = trafficLine(entry);
    const bool isFull = m_file.size() + line.size() > m_maxFileBytes;
    if (!isFull && Platform::writeThrough(m_file, line))
        return;
    const QString what = isFull ? "it is full, so the rest isn't recorded" : m_file.errorString();
    const QString error = m_file.fileName() + ": " + what;
    m_file.close();
    Q_EMIT failed(error);
}
