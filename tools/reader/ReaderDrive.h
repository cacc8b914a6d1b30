// SPDX-FileCopyrightText: 2026 The Merivo Connections developers
// SPDX-License-Identifier: MIT
#pragma once

#include "tools/traffic/ReaderNames.h"

#include <QByteArray>
#include <QDeadlineTimer>
#include <QFileSystemWatcher>
#include <QHash>
#include <QLockFile>
#include <QObject>
#include <QString>
#include <QTimer>
#include <QVector>

#include <memory>
#include <utility>

/// A status and how it becomes visible. The defaults are those of a drive without faults.
struct ShownStatus
{
    QByteArray bytes;
    /// The trigger after setStatus() that makes the status visible, counted from 1.
    int triggers = 1;
    /// If above 0, the file is rewritten in place: first that many bytes, the rest a moment later.
    int firstBytes = 0;
    /// Shows a folder in place of the file.
    bool isFolder = false;
};

/// A file of the plug-in, as the reader saw it last.
struct SeenFile
{
    FileStamp stamp;
    bool isSetBack = true; ///< False if the reader couldn't set the file's time back yet.
};

/// The reader's side of its drive: receives command files and writes the reader's files.
///
/// The drive is cached: a status becomes visible only when the trigger file is written the next time. Every file is
/// replaced atomically. open() undoes all faults (a status without the default values, block(), removeDrive()).
class ReaderDrive final : public QObject
{
    Q_OBJECT
    Q_DISABLE_COPY_MOVE(ReaderDrive)

public:
    /// @p path is the drive's root, which must exist when open() is called.
    explicit ReaderDrive(const QString& path, QObject* parent = nullptr);

    /// Restores what an earlier run removed, creates the folder MISC if it is missing, and locks the drive for this
    /// reader. Returns false with an error that names the file if that fails.
    bool open(QString* error);

    /// Starts to watch the drive. Ignores a command file that exists already.
    void listen();

    QString path() const { return m_path; }
    /// Returns the path of a file in MISC, or of MISC itself.
    QString filePath(const QString& name = {}) const;

    /// Sets the status that the next triggers make visible.
    void setStatus(const ShownStatus& status);
    /// Shows the latest status at once, as a reader does that has just been connected.
    void showStatus();
    /// Returns true if no status waits for its trigger.
    bool isStatusShown() const { return m_statuses.isEmpty(); }

    bool replaceFile(const QString& name, const QByteArray& bytes);
    /// Renames the file with the path @p from to @p name in MISC, atomically.
    bool moveInto(const QString& from, const QString& name);
    /// Removes a file or an empty folder from MISC.
    void removeFile(const QString& name);

    QString commandPath() const { return filePath(ReaderNames::Command); }
    QString triggerPath() const { return m_path + '/' + ReaderNames::Trigger; }
    /// Puts an empty folder in place of the file @p path, which then can't be written; permanently if @p ms is 0.
    void block(const QString& path, int ms);

    /// Removes the whole drive, or only MISC, until open() is called, and unlocks it. Emits failed() and returns false
    /// if that fails.
    bool removeDrive(bool wholeDrive);

Q_SIGNALS:
    /// Emitted when a command file was written and hasn't changed for a while, so that it is complete.
    void commandWritten(const QByteArray& bytes);
    /// Emitted when the trigger file was written and the status that it makes visible is shown.
    void triggered();
    /// Emitted when the drive can't be written any more; it is no longer served.
    void failed(const QString& error);

private:
    bool restore(QString* error);
    /// Returns the path of the drive or of MISC, and its path while it is removed.
    std::pair<QString, QString> placesOf(bool wholeDrive) const;
    void show(const ShownStatus& status);
    bool writeInPlace(const QString& path, const QByteArray& bytes);
    void keepBlocked();
    void checkFiles();
    void checkTrigger();
    void checkCommand();
    bool fail(const QString& what);

    const QString m_path;
    std::unique_ptr<QLockFile> m_lock;
    QFileSystemWatcher m_watcher;
    QTimer m_timer;

    /// The statuses that wait for a trigger, in the order of their triggers.
    QVector<ShownStatus> m_statuses;
    QByteArray m_halfStatus;
    QTimer m_rest;
    QHash<QString, QDeadlineTimer> m_blocked;

    SeenFile m_trigger;
    SeenFile m_command;
    int m_unchangedChecks = 0;
    bool m_commandTaken = true;
};
