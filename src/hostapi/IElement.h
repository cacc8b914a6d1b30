// SPDX-FileCopyrightText: 2026 The Merivo Connections developers
// SPDX-License-Identifier: MIT
#pragma once

#include "hostapi/IExtension.h"

class IPlugin;
class QWidget;

/// A part of a plug-in. It has a title and an icon of its own; by default the other properties are those of its
/// plug-in, or empty and false without a plug-in.
class IElement : public IExtension
{
public:
    IElement() = default;
    ~IElement() override;

    QString description() const override;
    QString copyright() const override;
    QString extraText() const override;
    QString version() const override;
    bool isFlagged() const override;

    /// Returns the plug-in that the element belongs to, or null. Not owned.
    virtual IPlugin* plugin() const = 0;
    virtual bool isEnabled() const;
    /// Returns the text of the menu entry; title() by default.
    virtual QString menuText() const;
    /// Executes the element modally and returns true if it ran. @p parent is the host's window.
    virtual bool execute(QWidget* parent) = 0;
    /// Returns the name of the plug-in, or title() without a plug-in.
    virtual QString elementKey() const;
};
