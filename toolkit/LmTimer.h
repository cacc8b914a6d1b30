// SPDX-FileCopyrightText: 2026 The Merivo Connections developers
// SPDX-License-Identifier: MIT
#pragma once

#include <QTimer>

/// A QTimer with a class name of its own.
class LmTimer : public QTimer
{
    Q_OBJECT
    Q_DISABLE_COPY_MOVE(LmTimer)

public:
    explicit LmTimer(QObject* parent = nullptr);
};
