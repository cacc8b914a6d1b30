// SPDX-FileCopyrightText: 2026 The Merivo Connections developers
// SPDX-License-Identifier: MIT
#pragma once

#include "toolkit/LmDriveSpace.h"

#include <QMap>
#include <QObject>
#include <QString>

/// Checks the size and the free space of an application's drives every five minutes. Watches one drive for each type of
/// path; the application chooses the types, such as "data". GUI thread only; a check blocks for as long as the drives
/// take.
class LmDriveSpaceObserver : public QObject
{
    Q_OBJECT
    Q_DISABLE_COPY_MOVE(LmDriveSpaceObserver)

public:
    explicit LmDriveSpaceObserver(QObject* parent = nullptr);
    ~LmDriveSpaceObserver() override;

public Q_SLOTS:
    /// Watches the drive of @p pathName for the type @p pathType, in place of another drive of this type. Reads the
    /// figures at once, and emits driveSpaceChanged() if the drive is new to the type or its figures have changed.
    void observe(QString pathType, QString pathName);

Q_SIGNALS:
    /// Emitted when the figures of a watched drive have changed or were read for the first time.
    void driveSpaceChanged(LmDriveSpace driveSpace);

protected:
    void timerEvent(QTimerEvent* event) override;

private:
    QMap<QString, LmDriveSpace> m_drives; ///< By type of path.
    int m_timerId;
};
