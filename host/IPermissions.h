// SPDX-FileCopyrightText: 2026 The Merivo Connections developers
// SPDX-License-Identifier: MIT
#pragma once

#include "host/IExtensionPoint.h"

#include <QObject>

/// The host's permissions: declared beside the others, looked up by nothing here.
class IPermissions : public QObject, public IExtensionPoint
{
    Q_OBJECT

public:
    explicit IPermissions(QObject* parent = nullptr);
    ~IPermissions() override;

Q_SIGNALS:
    void changed();
};
