// SPDX-FileCopyrightText: 2026 The Merivo Connections developers
// SPDX-License-Identifier: MIT
#pragma once

#include "hostapi/IExtensionPoint.h"

#include <QObject>

/// The host's permissions. The plug-in doesn't use them.
class IPermissions : public QObject, public IExtensionPoint
{
    Q_OBJECT

public:
    explicit IPermissions(QObject* parent = nullptr);
    ~IPermissions() override;

Q_SIGNALS:
    void changed();
};
