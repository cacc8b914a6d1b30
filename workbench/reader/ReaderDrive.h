// SPDX-FileCopyrightText: 2026 The Merivo Connections developers
// SPDX-License-Identifier: MIT
#pragma once

#include "workbench/traffic/ReaderNames.h"

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

/// A status, and how it becomes visible. The defaults are those of a drive without a fault.
struct ShownStatus
{
    QByteArray bytes;
    /// From which trigger on, counted from when it was set, the status is seen.
    int triggers = 1;
    /// If above 0, the file is rewritten in place: that many bytes are there for a moment before the rest follows.
    int firstBytes = 0;
    /// A folder takes the file's place.
    bool isFolder = false;
};

/// The reader's end of its drive: takes command files in, and gives the reader's files out.
///
/// The drive is cached. A status that is set stays with the reader until the trigger file is written the next time, so
/// whoever reads STATUS.TXT without writing the trigger sees an old one. Every file is replaced in one step.
///
/// What spoils the drive (a status with other values than the defaults, block(), goAway()) is made good by open().
class ReaderDrive final : public QObject
{
    Q_OBJECT
    Q_DISABLE_COPY_MOVE(ReaderDrive)

public:
    /// @p path is the drive's root, which must exist by the time of open().
    explicit ReaderDrive(const QString& path, QObject* parent = nullptr);

    /// Brings back what an earlier run took away, makes the folder MISC if need be and claims the drive, so that no
    /// second reader serves it. False with a sentence that names the file if that isn't possible.
    bool open(QString* error);

    /// Begins to look at the drive. A command file that lies there already counts as an old one.
    void listen();

    QString path() const { return m_path; }
    /// The path of a file in MISC, or of MISC itself.
    QString filePath(const QString& name = {}) const;

    /// Keeps the newest status, to be shown at the next trigger.
    void setStatus(const ShownStatus& status);
    /// Shows the newest status at once, as a reader does that has just been connected.
    void showStatus();
    /// True if no status waits for its trigger.
    bool isStatusShown() const { return m_statuses.isEmpty(); }

    bool replaceFile(const QString& name, const QByteArray& bytes);
    /// Gives the file @p from, a path beside MISC's files, the name @p name in one step.
    bool moveInto(const QString& from, const QString& name);
    /// Removes a file of MISC, or a folder that has nothing in it.
    void removeFile(const QString& name);

    QString commandPath() const { return filePath(ReaderNames::Command); }
    QString triggerPath() const { return m_path + '/' + ReaderNames::Trigger; }
    /// Keeps an empty folder in the place of the file @p path, which so can't be written; for good with @p ms 0.
    void block(const QString& path, int ms);

    /// Takes the whole drive away, or MISC alone, until open() is called, and gives up the claim to it. False, with
    /// failed(), if that isn't possible.
    bool goAway(bool wholeDrive);

Q_SIGNALS:
    /// A command file was written and has rested long enough to be whole.
    void commandWritten(const QByteArray& bytes);
    /// The trigger file was written, and the status that it brings to light is shown by now.
    void triggered();
    /// The drive can't be written any more; nothing will work from here on.
    void failed(const QString& error);

private:
    bool comeBack(QString* error);
    /// The path of the drive or of MISC, and the one that it has while it is away.
    std::pair<QString, QString> placesOf(bool wholeDrive) const;
    void show(const ShownStatus& status);
    bool writeInPlace(const QString& path, const QByteArray& bytes);
    void keepBlocked();
    void look();
    void lookAtTrigger();
    void lookAtCommand();
    bool fail(const QString& what);

    const QString m_path;
    std::unique_ptr<QLockFile> m_lock;
    QFileSystemWatcher m_watcher;
    QTimer m_timer;

    /// Those that wait for a trigger, each for a later one than its neighbour in front.
    QVector<ShownStatus> m_statuses;
    QByteArray m_halfStatus;
    QTimer m_rest;
    QHash<QString, QDeadlineTimer> m_blocked;

    FileStamp m_triggerStamp;
    FileStamp m_commandStamp;
    int m_quietLooks = 0;
    bool m_commandTaken = true;
};
