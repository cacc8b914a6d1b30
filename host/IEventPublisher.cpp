// SPDX-FileCopyrightText: 2026 The Merivo Connections developers
// SPDX-License-Identifier: MIT
#include "host/IEventPublisher.h"

IEventPublisher::IEventPublisher(QObject* parent)
    : QObject(parent)
{}

IEventPublisher::~IEventPublisher() = default;
