// SPDX-FileCopyrightText: 2026 The Merivo Connections developers
// SPDX-License-Identifier: MIT
#pragma once

#include <QObject>

/// Turns the system's wish that the program end (interrupt, terminate) into a signal of the event loop, so that it ends
/// as from within, files whole and removed what is temporary.
class StopSignals final : public QObject
{
    Q_OBJECT
    Q_DISABLE_COPY_MOVE(StopSignals)

public:
    /// One at a time in a process.
    explicit StopSignals(QObject* parent = nullptr);
    ~StopSignals() override;

Q_SIGNALS:
    void stopRequested();
};
