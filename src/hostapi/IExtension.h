// SPDX-FileCopyrightText: 2026 The Merivo Connections developers
// SPDX-License-Identifier: MIT
#pragma once

#include <QIcon>
#include <QString>

/// Describes an extension of the host. The defaults are placeholders, such as "?" for the title. The order of the
/// virtual operations is part of the binary contract with the host. GUI thread only.
class IExtension
{
public:
    IExtension() = default;
    virtual ~IExtension();
    Q_DISABLE_COPY_MOVE(IExtension)

    virtual QString title() const;
    virtual QString description() const;
    virtual QString copyright() const;
    virtual QString extraText() const;
    virtual QString version() const;
    virtual QIcon icon() const;
    virtual bool isFlagged() const;
};
