// SPDX-FileCopyrightText: 2026 The Merivo Connections developers
// SPDX-License-Identifier: MIT
#include "toolkit/LmDriveSpaceObserver.h"

#include <QDebug>
#include <QTimerEvent>

#include <chrono>

LmDriveSpaceObserver::LmDriveSpaceObserver(QObject* parent)
    : QObject(parent)
    , m_timerId(startTimer(std::chrono::minutes(5), Qt::CoarseTimer))
{}

LmDriveSpaceObserver::~LmDriveSpaceObserver()
{
    killTimer(m_timerId);
}

void LmDriveSpaceObserver::observe(QString pathType, QString pathName)
{
    const LmDriveSpace drive = LmDriveSpace::driveInfo(pathName);
    qInfo() << "==> Observe path" << pathName;
    qDebug() << "    -> type  :" << pathType;
    qDebug() << "    -> drive :" << drive.path();

    const auto known = m_drives.find(pathType);
    if (known != m_drives.end() && known->path() == drive.path()) {
        if (known->refresh())
            Q_EMIT driveSpaceChanged(LmDriveSpace(*known));
        return;
    }
    m_drives.insert(pathType, drive);
    Q_EMIT driveSpaceChanged(drive);
}

void LmDriveSpaceObserver::timerEvent(QTimerEvent* event)
{
    if (event->timerId() != m_timerId) {
        QObject::timerEvent(event);
        return;
    }
    // Iterates over copied keys, since a receiver of the signal may call observe().
    const QStringList types = m_drives.keys();
    for (const QString& type : types) {
        LmDriveSpace& drive = m_drives[type];
        if (drive.refresh())
            Q_EMIT driveSpaceChanged(LmDriveSpace(drive));
    }
}
