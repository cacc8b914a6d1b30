// SPDX-FileCopyrightText: 2026 The Merivo Connections developers
// SPDX-License-Identifier: MIT
#include "workbench/reader/ReaderDrive.h"

#include "workbench/reader/ReaderCommand.h"
#include "workbench/support/Platform.h"

#include <QDateTime>
#include <QDir>
#include <QFile>
#include <QFileInfo>

#include <filesystem>
#include <system_error>

namespace {

const int LookEveryMs = 10;
/// A command file is emptied first and written then. One of good form is whole at its second look; anything else gets
/// the time that a busy writer may need between the two.
const int LooksForGood = 2;
const int LooksForBad = 10;

} // namespace

FileStamp FileStamp::of(const QString& path)
{
    const QFileInfo info(path);
    return info.exists() ? FileStamp{info.lastModified().toMSecsSinceEpoch(), info.size()} : FileStamp();
}

ReaderDrive::ReaderDrive(const QString& path, QObject* parent)
    : QObject(parent)
    , m_path(QDir(path).absolutePath())
{
    m_timer.setInterval(LookEveryMs);
    m_timer.setTimerType(Qt::PreciseTimer);
    connect(&m_timer, &QTimer::timeout, this, &ReaderDrive::look);
    connect(&m_watcher, &QFileSystemWatcher::fileChanged, this, &ReaderDrive::onFileChanged);
}

QString ReaderDrive::filePath(const QString& name) const
{
    const QString folder = m_path + QLatin1Char('/') + ReaderNames::Folder;
    return name.isEmpty() ? folder : folder + QLatin1Char('/') + name;
}

bool ReaderDrive::open(QString* error)
{
    if (!QFileInfo(m_path).isDir()) {
        *error = QStringLiteral("%1: there is no such folder").arg(m_path);
        return false;
    }
    if (!QDir().mkpath(filePath())) {
        *error = QStringLiteral("%1: the folder can't be made").arg(filePath());
        return false;
    }
    m_lock = std::make_unique<QLockFile>(m_path + QStringLiteral("/.merivo-reader.lock"));
    m_lock->setStaleLockTime(0);
    if (!m_lock->tryLock()) {
        *error = m_lock->error() == QLockFile::LockFailedError
                     ? QStringLiteral("%1: another reader serves this drive").arg(m_path)
                     : QStringLiteral("%1: the drive can't be written").arg(m_path);
        return false;
    }
    return true;
}

void ReaderDrive::listen()
{
    m_triggerStamp = FileStamp::of(m_path + QLatin1Char('/') + ReaderNames::Trigger);
    m_commandStamp = FileStamp::of(filePath(ReaderNames::Command));
    m_commandTaken = true;
    m_timer.start();
}

void ReaderDrive::setStatus(const QByteArray& bytes)
{
    m_status = bytes;
}

void ReaderDrive::showStatus()
{
    if (m_status != m_shownStatus && replaceFile(ReaderNames::Status, m_status))
        m_shownStatus = m_status;
}

bool ReaderDrive::replaceFile(const QString& name, const QByteArray& bytes)
{
    // QSaveFile would do the same, but it waits until the bytes are on the disk, which on a stick takes several ticks
    // of whoever polls the status.
    const QString beside = filePath(name) + QStringLiteral(".new");
    QFile file(beside);
    if (!file.open(QIODevice::WriteOnly) || file.write(bytes) != bytes.size() || !file.flush())
        return fail(QStringLiteral("%1: %2").arg(beside, file.errorString()));
    file.close();
    return moveInto(beside, name);
}

bool ReaderDrive::moveInto(const QString& from, const QString& name)
{
    std::error_code error;
    std::filesystem::rename(Platform::nativePath(from), Platform::nativePath(filePath(name)), error);
    return !error || fail(QStringLiteral("%1: %2").arg(filePath(name), QString::fromStdString(error.message())));
}

void ReaderDrive::removeFile(const QString& name)
{
    QFile::remove(filePath(name));
}

bool ReaderDrive::fail(const QString& what)
{
    m_timer.stop();
    Q_EMIT failed(what);
    return false;
}

void ReaderDrive::onFileChanged(const QString& path)
{
    // On a drive whose time stamps are coarse (two seconds on FAT) the notification alone tells two writes apart. Where
    // there are no notifications the stamps have to do.
    if (path.endsWith(ReaderNames::Trigger)) {
        m_triggered = true;
        lookAtTrigger();
    } else {
        m_quietLooks = 0;
        m_commandTaken = false;
    }
}

void ReaderDrive::look()
{
    if (!QFileInfo(filePath()).isDir()) {
        fail(QStringLiteral("%1: the folder has gone").arg(filePath()));
        return;
    }
    // The watcher follows a file only while it exists, and loses it when someone replaces it.
    const QString paths[] = {m_path + QLatin1Char('/') + ReaderNames::Trigger, filePath(ReaderNames::Command)};
    for (const QString& path : paths) {
        if (!m_watcher.files().contains(path) && QFileInfo::exists(path))
            m_watcher.addPath(path);
    }
    lookAtTrigger();
    lookAtCommand();
}

void ReaderDrive::lookAtTrigger()
{
    const FileStamp stamp = FileStamp::of(m_path + QLatin1Char('/') + ReaderNames::Trigger);
    if (!m_triggered && stamp == m_triggerStamp)
        return;
    m_triggerStamp = stamp;
    m_triggered = false;
    if (!stamp.exists())
        return;
    showStatus();
    Q_EMIT triggered();
}

void ReaderDrive::lookAtCommand()
{
    const QString path = filePath(ReaderNames::Command);
    const FileStamp stamp = FileStamp::of(path);
    if (stamp != m_commandStamp) {
        m_commandStamp = stamp;
        m_quietLooks = 0;
        m_commandTaken = !stamp.exists();
    }
    if (m_commandTaken)
        return;

    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return;
    const QByteArray bytes = file.readAll();
    if (bytes != m_commandBytes)
        m_quietLooks = 0;
    m_commandBytes = bytes;
    ++m_quietLooks;

    QString fault;
    if (m_quietLooks >= (parseCommandFile(bytes, &fault) ? LooksForGood : LooksForBad)) {
        m_commandTaken = true;
        Q_EMIT commandWritten(bytes);
    }
}
