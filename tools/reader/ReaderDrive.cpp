// SPDX-FileCopyrightText: 2026 The Merivo Connections developers
// SPDX-License-Identifier: MIT
#include "tools/reader/ReaderDrive.h"

#include "tools/support/Platform.h"
#include "tools/traffic/ReaderCommand.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>

#include <chrono>
#include <filesystem>
#include <system_error>
#include <utility>

namespace {

const int CheckIntervalMs = 10;
/// A command file is truncated before it is written. A valid one is complete if two checks in a row find it unchanged;
/// anything else gets the time that a busy writer may need.
const int ChecksIfValid = 2;
const int ChecksIfInvalid = 10;
/// Lasts several polls of the status.
const int HalfStatusMs = 250;

/// Returns true if the file was written since the last call. Sets the file's time back by a day, so that the next write
/// changes it even if the drive's time stamps are coarse (two seconds on FAT).
bool takeWrite(const QString& path, SeenFile* seen)
{
    const FileStamp stamp = FileStamp::of(path);
    const bool isWritten = stamp.exists() && stamp != seen->stamp;
    seen->stamp = stamp;
    if (isWritten || !seen->isSetBack) {
        const std::filesystem::path file = Platform::nativePath(path);
        std::error_code error;
        const auto time = std::filesystem::last_write_time(file, error);
        if (!error)
            std::filesystem::last_write_time(file, time - std::chrono::hours(24), error);
        // Fails while another program has the file open without sharing it, and always on a drive that forbids it.
        seen->isSetBack = !error;
        if (!error)
            seen->stamp = FileStamp::of(path);
    }
    return isWritten;
}

} // namespace

ReaderDrive::ReaderDrive(const QString& path, QObject* parent)
    : QObject(parent)
    , m_path(QDir(path).absolutePath())
{
    m_timer.setInterval(CheckIntervalMs);
    m_timer.setTimerType(Qt::PreciseTimer);
    connect(&m_timer, &QTimer::timeout, this, &ReaderDrive::checkFiles);
    m_rest.setInterval(HalfStatusMs);
    m_rest.setSingleShot(true);
    connect(&m_rest, &QTimer::timeout, this, [this] { writeInPlace(filePath(ReaderNames::Status), m_halfStatus); });
    connect(&m_watcher, &QFileSystemWatcher::fileChanged, this, &ReaderDrive::checkTrigger);
}

QString ReaderDrive::filePath(const QString& name) const
{
    const QString folder = m_path + '/' + ReaderNames::Folder;
    return name.isEmpty() ? folder : folder + '/' + name;
}

bool ReaderDrive::open(QString* error)
{
    if (!restore(error))
        return false;
    if (!QFileInfo(m_path).isDir()) {
        *error = QString("%1: there is no such folder").arg(m_path);
        return false;
    }
    if (!QDir().mkpath(filePath())) {
        *error = QString("%1: the folder can't be created").arg(filePath());
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
    takeWrite(triggerPath(), &m_trigger);
    takeWrite(commandPath(), &m_command);
    m_commandTaken = true;
    m_timer.start();
}

void ReaderDrive::setStatus(const ShownStatus& status)
{
    // Older statuses that wouldn't become visible earlier never become visible.
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
    // Not QSaveFile, which waits until the bytes are on the disk: on a USB stick that takes longer than several polls
    // of the status.
    const QString beside = filePath(name) + ".new";
    return writeInPlace(beside, bytes) && moveInto(beside, name);
}

bool ReaderDrive::moveInto(const QString& from, const QString& name)
{
    const QString renameError = Platform::rename(from, filePath(name));
    return renameError.isEmpty() || fail(QString("%1: %2").arg(filePath(name), renameError));
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
        // Fails if another program writes the file at this moment; the next check tries again.
        if (!QFileInfo(it.key()).isDir()) {
            QFile::remove(it.key());
            QDir().mkdir(it.key());
        }
        ++it;
    }
}

bool ReaderDrive::removeDrive(bool wholeDrive)
{
    m_timer.stop();
    m_rest.stop();
    m_statuses.clear();
    // The lock file is moved along with the drive and couldn't be removed later.
    m_lock->unlock();
    const auto [place, away] = placesOf(wholeDrive);
    const QString renameError = Platform::rename(place, away);
    return renameError.isEmpty() || fail(QString("%1: can't be removed: %2").arg(place, renameError));
}

std::pair<QString, QString> ReaderDrive::placesOf(bool wholeDrive) const
{
    if (wholeDrive)
        return {m_path, m_path + ".away"};
    return {filePath(), m_path + "/." + ReaderNames::Folder + ".away"};
}

/// Undoes removeDrive() and block(), also those of an earlier run.
bool ReaderDrive::restore(QString* error)
{
    for (const bool wholeDrive : {true, false}) {
        const auto [place, away] = placesOf(wholeDrive);
        if (!QFileInfo(away).isDir())
            continue;
        // Removes a folder that another program has created in its place, if it is empty.
        QDir().rmdir(place);
        const QString renameError = Platform::rename(away, place);
        if (!renameError.isEmpty()) {
            *error = QString("%1: can't be restored as %2: %3").arg(away, place, renameError);
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

void ReaderDrive::checkFiles()
{
    if (!QFileInfo(filePath()).isDir()) {
        fail(QString("%1: the folder was removed").arg(filePath()));
        return;
    }
    keepBlocked();
    // The watcher only saves the wait for the next check. It stops watching a file that is replaced.
    if (m_watcher.files().isEmpty())
        m_watcher.addPath(triggerPath());
    checkTrigger();
    checkCommand();
}

void ReaderDrive::checkTrigger()
{
    if (!takeWrite(triggerPath(), &m_trigger))
        return;
    int due = 0;
    for (ShownStatus& status : m_statuses)
        due += --status.triggers <= 0;
    if (due > 0) {
        const ShownStatus newest = m_statuses.at(due - 1);
        m_statuses.remove(0, due);
        show(newest);
    }
    Q_EMIT triggered();
}

void ReaderDrive::checkCommand()
{
    if (takeWrite(commandPath(), &m_command)) {
        m_unchangedChecks = 0;
        m_commandTaken = false;
    }
    QFile file(commandPath());
    if (m_commandTaken || !file.open(QIODevice::ReadOnly))
        return;
    const QByteArray bytes = file.readAll();
    ++m_unchangedChecks;
    QString fault;
    if (m_unchangedChecks >= (parseCommandFile(bytes, &fault) ? ChecksIfValid : ChecksIfInvalid)) {
        m_commandTaken = true;
        Q_EMIT commandWritten(bytes);
    }
}
