// SPDX-FileCopyrightText: 2026 The Merivo Connections developers
// SPDX-License-Identifier: MIT
#include "workbench/reader/ReaderDrive.h"

#include "workbench/support/Platform.h"
#include "workbench/traffic/ReaderCommand.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>

#include <chrono>
#include <filesystem>
#include <system_error>
#include <utility>

namespace {

const int LookEveryMs = 10;
/// A command file is emptied first and written then. One of good form is whole at its second look; anything else gets
/// the time that a busy writer may need between the two.
const int LooksForGood = 2;
const int LooksForBad = 10;
/// A few ticks of whoever polls the status.
const int HalfStatusMs = 250;

/// Gives a file or folder its new name in one step; what went wrong, or nothing.
QString rename(const QString& from, const QString& to)
{
    std::error_code error;
    std::filesystem::rename(Platform::nativePath(from), Platform::nativePath(to), error);
    return error ? QString::fromStdString(error.message()) : QString();
}

/// Returns true if the file was written since the last call. Sets the file's time back by a day, so that the next write
/// changes it however coarse the time stamps of the drive are (two seconds on FAT).
bool takeWrite(const QString& path, FileStamp* seen)
{
    const FileStamp stamp = FileStamp::of(path);
    const bool isWritten = stamp.exists() && stamp != *seen;
    if (isWritten) {
        const std::filesystem::path file = Platform::nativePath(path);
        std::error_code error;
        const auto time = std::filesystem::last_write_time(file, error);
        if (!error)
            std::filesystem::last_write_time(file, time - std::chrono::hours(24), error);
    }
    *seen = FileStamp::of(path);
    return isWritten;
}

} // namespace

ReaderDrive::ReaderDrive(const QString& path, QObject* parent)
    : QObject(parent)
    , m_path(QDir(path).absolutePath())
{
    m_timer.setInterval(LookEveryMs);
    m_timer.setTimerType(Qt::PreciseTimer);
    connect(&m_timer, &QTimer::timeout, this, &ReaderDrive::look);
    m_rest.setInterval(HalfStatusMs);
    m_rest.setSingleShot(true);
    connect(&m_rest, &QTimer::timeout, this, [this] { writeInPlace(filePath(ReaderNames::Status), m_halfStatus); });
    connect(&m_watcher, &QFileSystemWatcher::fileChanged, this, &ReaderDrive::lookAtTrigger);
}

QString ReaderDrive::filePath(const QString& name) const
{
    const QString folder = m_path + '/' + ReaderNames::Folder;
    return name.isEmpty() ? folder : folder + '/' + name;
}

bool ReaderDrive::open(QString* error)
{
    if (!comeBack(error))
        return false;
    if (!QFileInfo(m_path).isDir()) {
        *error = QString("%1: there is no such folder").arg(m_path);
        return false;
    }
    if (!QDir().mkpath(filePath())) {
        *error = QString("%1: the folder can't be made").arg(filePath());
        return false;
    }
    m_lock = std::make_unique<QLockFile>(m_path + "/.merivo-reader.lock");
    m_lock->setStaleLockTime(0);
    if (!m_lock->tryLock()) {
        *error = m_lock->error() == QLockFile::LockFailedError
                     ? QString("%1: another reader serves this drive").arg(m_path)
                     : QString("%1: the drive can't be written").arg(m_path);
        return false;
    }
    return true;
}

void ReaderDrive::listen()
{
    takeWrite(triggerPath(), &m_triggerStamp);
    takeWrite(commandPath(), &m_commandStamp);
    m_commandTaken = true;
    m_timer.start();
}

void ReaderDrive::setStatus(const ShownStatus& status)
{
    // An older one that isn't seen earlier is never seen.
    while (!m_statuses.isEmpty() && m_statuses.last().triggers >= status.triggers)
        m_statuses.removeLast();
    m_statuses.append(status);
}

void ReaderDrive::showStatus()
{
    if (m_statuses.isEmpty())
        return;
    const ShownStatus newest = m_statuses.takeLast();
    m_statuses.clear();
    show(newest);
}

void ReaderDrive::show(const ShownStatus& status)
{
    const QString path = filePath(ReaderNames::Status);
    m_rest.stop();
    if (status.isFolder) {
        QFile::remove(path);
        QDir().mkpath(path);
        return;
    }
    if (QFileInfo(path).isDir())
        QDir().rmdir(path);
    if (status.firstBytes > 0) {
        m_halfStatus = status.bytes;
        if (writeInPlace(path, status.bytes.left(status.firstBytes)))
            m_rest.start();
    } else {
        replaceFile(ReaderNames::Status, status.bytes);
    }
}

bool ReaderDrive::writeInPlace(const QString& path, const QByteArray& bytes)
{
    QFile file(path);
    return (file.open(QIODevice::WriteOnly) && Platform::writeThrough(file, bytes)) ||
           fail(QString("%1: %2").arg(path, file.errorString()));
}

bool ReaderDrive::replaceFile(const QString& name, const QByteArray& bytes)
{
    // QSaveFile would do the same, but it waits until the bytes are on the disk, which on a stick takes several ticks
    // of whoever polls the status.
    const QString beside = filePath(name) + ".new";
    return writeInPlace(beside, bytes) && moveInto(beside, name);
}

bool ReaderDrive::moveInto(const QString& from, const QString& name)
{
    const QString trouble = rename(from, filePath(name));
    return trouble.isEmpty() || fail(QString("%1: %2").arg(filePath(name), trouble));
}

void ReaderDrive::removeFile(const QString& name)
{
    if (!QFile::remove(filePath(name)))
        QDir().rmdir(filePath(name));
}

void ReaderDrive::block(const QString& path, int ms)
{
    m_blocked.insert(path, ms > 0 ? QDeadlineTimer(ms) : QDeadlineTimer(QDeadlineTimer::Forever));
    keepBlocked();
}

void ReaderDrive::keepBlocked()
{
    for (auto it = m_blocked.begin(); it != m_blocked.end();) {
        if (it->hasExpired()) {
            QDir().rmdir(it.key());
            it = m_blocked.erase(it);
            continue;
        }
        // Someone who writes the file at this moment can be the quicker; the next look tries again.
        if (!QFileInfo(it.key()).isDir()) {
            QFile::remove(it.key());
            QDir().mkdir(it.key());
        }
        ++it;
    }
}

bool ReaderDrive::goAway(bool wholeDrive)
{
    m_timer.stop();
    m_rest.stop();
    m_statuses.clear();
    // Its file goes along, where no one could remove it any more.
    m_lock->unlock();
    const auto [place, away] = placesOf(wholeDrive);
    const QString trouble = rename(place, away);
    return trouble.isEmpty() || fail(QString("%1: can't be taken away: %2").arg(place, trouble));
}

std::pair<QString, QString> ReaderDrive::placesOf(bool wholeDrive) const
{
    if (wholeDrive)
        return {m_path, m_path + ".away"};
    return {filePath(), m_path + "/." + ReaderNames::Folder + ".away"};
}

/// Undoes goAway() and block(), also those of an earlier run.
bool ReaderDrive::comeBack(QString* error)
{
    for (const bool wholeDrive : {true, false}) {
        const auto [place, away] = placesOf(wholeDrive);
        if (!QFileInfo(away).isDir())
            continue;
        // Someone may have made the folder anew, but then nothing is in it.
        QDir().rmdir(place);
        const QString trouble = rename(away, place);
        if (!trouble.isEmpty()) {
            *error = QString("%1: can't be brought back as %2: %3").arg(away, place, trouble);
            return false;
        }
    }
    m_blocked.clear();
    for (const QString& path : {triggerPath(), commandPath(), filePath(ReaderNames::Status)}) {
        if (QFileInfo(path).isDir())
            QDir().rmdir(path);
    }
    return true;
}

bool ReaderDrive::fail(const QString& what)
{
    m_timer.stop();
    Q_EMIT failed(what);
    return false;
}

void ReaderDrive::look()
{
    if (!QFileInfo(filePath()).isDir()) {
        fail(QString("%1: the folder has gone").arg(filePath()));
        return;
    }
    keepBlocked();
    // The watcher only saves the wait for the next look. It loses a file that is replaced.
    if (m_watcher.files().isEmpty())
        m_watcher.addPath(triggerPath());
    lookAtTrigger();
    lookAtCommand();
}

void ReaderDrive::lookAtTrigger()
{
    if (!takeWrite(triggerPath(), &m_triggerStamp))
        return;
    int ripe = 0;
    for (ShownStatus& status : m_statuses)
        ripe += --status.triggers <= 0;
    if (ripe > 0) {
        const ShownStatus newest = m_statuses.at(ripe - 1);
        m_statuses.remove(0, ripe);
        show(newest);
    }
    Q_EMIT triggered();
}

void ReaderDrive::lookAtCommand()
{
    if (takeWrite(commandPath(), &m_commandStamp)) {
        m_quietLooks = 0;
        m_commandTaken = false;
    }
    QFile file(commandPath());
    if (m_commandTaken || !file.open(QIODevice::ReadOnly))
        return;
    const QByteArray bytes = file.readAll();
    ++m_quietLooks;
    QString fault;
    if (m_quietLooks >= (parseCommandFile(bytes, &fault) ? LooksForGood : LooksForBad)) {
        m_commandTaken = true;
        Q_EMIT commandWritten(bytes);
    }
}
