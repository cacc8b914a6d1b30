// SPDX-FileCopyrightText: 2026 The Merivo Connections developers
// SPDX-License-Identifier: MIT
#include "tools/host/TrafficKeeper.h"

#include "tools/traffic/TrafficRecorder.h"

#include <QDateTime>
#include <QRegularExpression>

namespace {

const QString NameForm = "traffic-%1.jsonl";
const QString TimeForm = "yyyyMMdd-hhmmss-zzz";

/// Matches only digits for the time, so that other files in the folder are neither deleted nor reported.
QStringList nameFilter()
{
    static const QRegularExpression letter("[A-Za-z]");
    return {NameForm.arg(QString(TimeForm).replace(letter, "[0-9]"))};
}

} // namespace

TrafficKeeper::TrafficKeeper(const QString& folder, const TrafficLimits& limits, QObject* parent)
    : QObject(parent)
    , m_folder(folder)
    , m_limits(limits)
    , m_worker(new QObject)
{
    m_worker->moveToThread(&m_thread);
    connect(&m_thread, &QThread::finished, m_worker, &QObject::deleteLater);
    m_thread.start();
}

TrafficKeeper::~TrafficKeeper()
{
    m_thread.quit();
    m_thread.wait();
}

void TrafficKeeper::begin(const QString& drivePath)
{
    end();
    makeRoom();
    const QString file = m_folder.filePath(NameForm.arg(QDateTime::currentDateTime().toString(TimeForm)));
    QMetaObject::invokeMethod(m_worker, [this, drivePath, file] {
        auto* recorder = new TrafficRecorder(drivePath, m_worker);
        connect(recorder, &TrafficRecorder::failed, this, &TrafficKeeper::failed);
        recorder->setLimits(m_limits.fileBytes, m_limits.contentBytes);
        QString error;
        if (!recorder->start(file, &error))
            Q_EMIT recorder->failed(error);
    });
}

void TrafficKeeper::end()
{
    QMetaObject::invokeMethod(m_worker, [this] { qDeleteAll(m_worker->children()); });
}

/// Removes files that are too old, and then the oldest ones until there is space for another file.
void TrafficKeeper::makeRoom() const
{
    const QFileInfoList files = m_folder.entryInfoList(nameFilter(), QDir::Files, QDir::Name);
    qint64 total = m_limits.fileBytes;
    for (const QFileInfo& file : files)
        total += file.size();
    const QDateTime earliest = QDateTime::currentDateTime().addSecs(-3600LL * m_limits.hours);
    for (const QFileInfo& file : files) {
        if ((total > m_limits.totalBytes || file.lastModified() < earliest) && QFile::remove(file.filePath()))
            total -= file.size();
    }
}

QStringList TrafficKeeper::recordingsIn(const QString& folder)
{
    return QDir(folder).entryList(nameFilter(), QDir::Files, QDir::Name);
}
