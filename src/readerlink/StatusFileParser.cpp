// SPDX-FileCopyrightText: 2026 The Merivo Connections developers
// SPDX-License-Identifier: MIT
#include "readerlink/StatusFileParser.h"

#include "base/Logger.h"
#include "base/QueuedCall.h"
#include "readerlink/CommandFileWriter.h"

#include <QCoreApplication>
#include <QDateTime>
#include <QFile>
#include <QFileInfo>
#include <QLoggingCategory>
#include <QTextStream>
#include <QTimer>

#include <algorithm>
#include <cmath>

namespace {

constexpr int WatcherReleaseMs = 200;

StatusFileParser* s_instance = nullptr;

/// The category of qDebug(). Unlike qDebug(), qCDebug() costs nothing if it is disabled.
const QLoggingCategory& defaultCategory()
{
    return *QLoggingCategory::defaultCategory();
}

} // namespace

StatusFileParser* StatusFileParser::create(const QString& drivePath)
{
    delete s_instance;
    s_instance = new StatusFileParser(drivePath);
    return s_instance;
}

StatusFileParser* StatusFileParser::instance()
{
    return s_instance;
}

StatusFileParser::StatusFileParser(const QString& drivePath)
    : m_path(drivePath + QStringLiteral("/MISC"))
    , m_statusFile(m_path + QStringLiteral("/STATUS.TXT"))
    // No separator: the file is MISCNoCommand.txt in the root of the drive, next to the folder.
    , m_triggerFile(m_path + QStringLiteral("NoCommand.txt"))
{
    logTrace(QStringLiteral("Status file parser initialized."), m_path);
    moveToThread(&m_thread);
    startThread(m_thread, QThread::InheritPriority);
    connect(this, &StatusFileParser::pollingRequested, this, &StatusFileParser::preparePolling, Qt::QueuedConnection);

    // Diagnostic only: change notifications from drives are unreliable, so nothing depends on them.
    connect(m_watcher.get(), &QFileSystemWatcher::fileChanged, &m_guiContext, [](const QString& path) {
        qCDebug(defaultCategory).noquote() << QStringLiteral("File '%1' has changed.").arg(path);
    });
    connect(m_watcher.get(), &QFileSystemWatcher::directoryChanged, &m_guiContext, [](const QString& path) {
        qCDebug(defaultCategory).noquote() << QStringLiteral("Directory '%1' has changed.").arg(path);
    });
    m_watcher->addPaths({m_statusFile, m_path});
}

StatusFileParser::~StatusFileParser()
{
    logTrace(QStringLiteral("Status file parser finishing."), m_path);
    s_instance = nullptr;
    quitAndWait(m_thread);
    logTrace(QStringLiteral("Status file parser finished."), m_path);

    // On Linux, the kernel blocks for up to 25 ms if a watcher is deleted right after its paths were removed. The slot
    // is named by text because the plug-in may be unloaded before the call, and a member pointer would call code of the
    // plug-in.
    m_watcher->removePaths({m_statusFile, m_path});
    m_watcher->setParent(QCoreApplication::instance()); // deletes it if the application ends first
    QTimer::singleShot(WatcherReleaseMs, m_watcher.release(), SLOT(deleteLater()));
}

void StatusFileParser::start(int timeoutSec, int startingSec, int delayMs)
{
    if (delayMs == 0)
        delayMs = 5 * m_pollIntervalMs;

    // Usually still the status of the previous command; a new status is one that differs from it.
    const StatusRecord snapshot = readStatus();
    if (!snapshot.header.isEmpty())
        logTrace(QStringLiteral("=?= <%1> status snapshot.").arg(snapshot.toLogText()));
    logTrace(QStringLiteral("=== Observer start requested (in %1 msec).").arg(delayMs));

    // Queued before the request, so that the snapshot is set when the polling begins.
    invokeQueued(this, [this, snapshot] { m_snapshot = snapshot; });
    Q_EMIT pollingRequested(timeoutSec, startingSec, delayMs);
}

void StatusFileParser::cancel()
{
    logTrace(QStringLiteral("=== Observer canceling."));
    // Starting a polling doesn't clear the request: one that came too late cancels the next polling.
    if (m_state != Ended)
        m_cancelRequested = true;
}

bool StatusFileParser::triggerFileSystemUpdate() const
{
    QFile file(m_triggerFile);
    if (!file.open(QIODevice::WriteOnly | QIODevice::Truncate)) {
        qCDebug(defaultCategory).noquote().nospace()
            << "Could not write NoCommand.txt to device reader within " << m_path;
        return false;
    }
    file.close();
    return true;
}

StatusRecord StatusFileParser::readStatus() const
{
    // The drive is cached: without the trigger it may show an old status forever.
    if (!triggerFileSystemUpdate()) {
        logFailure(QStringLiteral("=!= Trigger file system update failed on device reader."), m_path);
        return {};
    }
    QFileInfo(m_path).refresh(); // discards what Qt has cached

    QFile file(m_statusFile);
    if (!file.open(QIODevice::ReadOnly)) {
        logFailure(QStringLiteral("=!= Status file open failed on device reader."), file.fileName());
        return {};
    }
    QTextStream stream(&file);
    const StatusRecord record = StatusRecord::parse(stream);
    qCDebug(defaultCategory).noquote().nospace()
        << "StatusFile: '" << record.header << "' # " << record.command
        << ", Status: " << static_cast<int>(record.status) << ", Error: " << record.error;
    file.close();
    return record;
}

// The functions from here on run on the worker thread.

void StatusFileParser::preparePolling(int timeoutSec, int startingSec, int delayMs)
{
    m_stopTimeoutMs = timeoutSec * 1000;
    m_startTimeoutMs = startingSec > 0 ? startingSec * 1000 : m_stopTimeoutMs;
    QTimer::singleShot(delayMs, this, &StatusFileParser::beginPolling);
}

void StatusFileParser::beginPolling()
{
    m_startTime = QDateTime::currentMSecsSinceEpoch();
    m_startDeadline = m_startTime + m_startTimeoutMs;
    m_stopDeadline = m_startTime + m_stopTimeoutMs;
    m_state = Waiting;
    if (m_startDeadline == m_stopDeadline) {
        logTrace(QStringLiteral("=== Observer polling started with timeout of '%1'secs.").arg(m_stopTimeoutMs / 1000));
    } else {
        logTrace(QStringLiteral("=== Observer polling started with timeouts of '%1' (Start) and '%2' (Stop) secs.")
                     .arg(m_startTimeoutMs / 1000)
                     .arg(m_stopTimeoutMs / 1000));
    }
    continuePolling();
}

void StatusFileParser::continuePolling()
{
    const qint64 now = QDateTime::currentMSecsSinceEpoch();
    const qint64 elapsed = now - m_startTime;
    const qint64 total = m_stopDeadline - m_startTime;
    const qint64 percentageOfTime = total > 0 ? 100 * elapsed / total : 100;
    const QString linear =
        QStringLiteral("linear progress: %1 of %2 = %3%").arg(elapsed).arg(total).arg(percentageOfTime);
    const auto endText = [this, &linear](const QString& pattern) {
        return pattern.arg(linear, QString::number(isChanged() ? 1 : 0));
    };

    if (!updateStatus()) {
        logFailure(endText(QStringLiteral("--- Error during polling (%1) detected/notified [changed=%2].")));
        Q_EMIT timeout();
        return;
    }
    if (m_cancelRequested.exchange(false)) {
        StatusRecord canceled = m_latest;
        canceled.status = CommandStatus::Canceled;
        setLatest(canceled);
        logFailure(endText(QStringLiteral("--- Cancel during polling (%1) detected/notified [changed=%2].")));
        Q_EMIT finished(true);
        return;
    }
    if (m_state == Ended) {
        logTrace(endText(QStringLiteral("--- Stop during polling (%1) detected/notified [changed=%2].")));
        Q_EMIT finished(isChanged());
        return;
    }
    // Checked before the start limit, so that this one is reported if both are exceeded.
    if (now > m_stopDeadline) {
        logFailure(endText(
            QStringLiteral("--- 'Unfinished command' timeout during polling (%1) detected/notified [changed=%2].")));
        Q_EMIT timeout();
        return;
    }
    if (now > m_startDeadline && m_state == Waiting) {
        logFailure(endText(
            QStringLiteral("--- 'Unstarted command' timeout during polling (%1) detected/notified [changed=%2].")));
        Q_EMIT timeout();
        return;
    }

    qCDebug(defaultCategory).noquote() << "void StatusFileParser::continuePolling()"
                                       << QStringLiteral("Polling continued (%1)").arg(linear);
    // The curve is at 52 at a tenth of the limit, and at 90 at half of it. At the limit, or after the clock was set
    // back, it can reach 100 or more, but 100 is reserved for a command that has ended.
    const double weight = 9.0 * static_cast<double>(elapsed);
    const double curve = std::abs(100.0 * (static_cast<double>(elapsed) + weight) /
                                  (static_cast<double>(std::max<qint64>(total, 1)) + weight));
    Q_EMIT progress(static_cast<int>(std::min(curve, 99.0)));
    QTimer::singleShot(m_pollIntervalMs, this, &StatusFileParser::continuePolling);
}

/// Returns false if the read failed. A status of an earlier command never changes m_state.
bool StatusFileParser::updateStatus()
{
    const StatusRecord record = readStatus();
    if (record.header.isEmpty())
        return false;

    if (record != m_snapshot && record != m_latest)
        logTrace(QStringLiteral("==> <%1> observed.").arg(record.toLogText()));
    setLatest(record);
    if (!isChanged() && !isAborted())
        return true;

    switch (record.status) {
    case CommandStatus::Running:
        if (m_state == Waiting) {
            logTrace(QStringLiteral("Observed operation started."));
            m_state = Started;
        }
        break;
    case CommandStatus::Failed:
    case CommandStatus::Done:
    case CommandStatus::Canceled:
        logTrace(QStringLiteral("Observed operation finished."));
        m_state = Ended;
        break;
    case CommandStatus::Unknown:
        break;
    }
    return true;
}

void StatusFileParser::setLatest(const StatusRecord& record)
{
    if (record == m_latest)
        return;
    m_latest = record;
    invokeQueued(&m_guiContext, [this, record] { m_lastStatus = record; });
}

/// Returns true if the latest status is new and belongs to the command that was submitted last, ignoring case.
bool StatusFileParser::isChanged() const
{
    const QString submitted = CommandFileWriter::instance()->m_lastCommand;
    return m_latest != m_snapshot && m_latest.command.toUpper() == submitted.toUpper();
}

/// Returns true if the latest status is new and reports a completed ABORT, which ends any polling.
bool StatusFileParser::isAborted() const
{
    return m_latest != m_snapshot && m_latest.command.toUpper() == QLatin1String("ABORT") &&
           m_latest.status == CommandStatus::Done;
}
