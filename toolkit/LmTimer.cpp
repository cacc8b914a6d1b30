// SPDX-FileCopyrightText: 2026 The Merivo Connections developers
// SPDX-License-Identifier: MIT
#include "toolkit/LmTimer.h"

LmTimer::LmTimer(QObject* parent)
    : QTimer(parent)
{}
