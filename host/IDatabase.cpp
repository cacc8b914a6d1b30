// SPDX-FileCopyrightText: 2026 The Merivo Connections developers
// SPDX-License-Identifier: MIT
#include "host/IDatabase.h"

IDatabase::IDatabase(QObject* parent)
    : QObject(parent)
{}

IDatabase::~IDatabase() = default;
