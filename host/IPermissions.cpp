// SPDX-FileCopyrightText: 2026 The Merivo Connections developers
// SPDX-License-Identifier: MIT
#include "host/IPermissions.h"

IPermissions::IPermissions(QObject* parent)
    : QObject(parent)
{}

IPermissions::~IPermissions() = default;
