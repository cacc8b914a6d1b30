// SPDX-FileCopyrightText: 2026 The Merivo Connections developers
// SPDX-License-Identifier: MIT
#pragma once

#include <QIcon>
#include <QString>

/// What every extension of the host shows of itself. The order of the virtual operations is part of the binary
/// contract with the host. GUI thread only.
class IExtension
{
public:
    IExtension() = default;
    virtual ~IExtension();
    Q_DISABLE_COPY_MOVE(IExtension)

    /// Short text; "?" where an extension has none.
    virtual QString title() const;
    /// Longer text; "???" where an extension has none.
    virtual QString description() const;
    /// Copyright line; "??" where an extension has none.
    virtual QString copyright() const;
    /// A further text for the host; empty where an extension has none.
    virtual QString extraText() const;
    /// Version text; "x.x.x.x" where an extension has none.
    virtual QString version() const;
    /// Null icon where an extension has none.
    virtual QIcon icon() const;
    virtual bool isFlagged() const;
};
