// SPDX-FileCopyrightText: 2026 The Merivo Connections developers
// SPDX-License-Identifier: MIT
#pragma once

#include "toolkit/LmDriveSpace.h"

#include <QMap>
#include <QObject>
#include <QString>

/// Watches how full the drives are that an application writes to, by looking every five minutes. One drive for each
/// type of path, whatever the application calls them ("data", "backup"). GUI thread only; a look blocks for as long as
/// the drives take.
class LmDriveSpaceObserver final : public QObject
{
    Q_OBJECT
    Q_DISABLE_COPY_MOVE(LmDriveSpaceObserver)

public:
    explicit LmDriveSpaceObserver(QObject* parent = nullptr);
    ~LmDriveSpaceObserver() override;

public Q_SLOTS:
    /// Watches the drive of @p pathName as that of @p pathType, in place of any other drive. Looks at once and emits
    /// driveSpaceChanged() for a drive that is new to this type, or whose figures have changed.
    void observe(QString pathType, QString pathName);

Q_SIGNALS:
    /// The figures of a watched drive have changed, or are known for the first time.
    void driveSpaceChanged(LmDriveSpace driveSpace);

protected:
    void timerEvent(QTimerEvent* event) override;

private:
    QMap<QString, LmDriveSpace> m_drives; ///< By type of path.
    int m_timerId;
};
