// SPDX-FileCopyrightText: 2026 The Merivo Connections developers
// SPDX-License-Identifier: MIT
#pragma once

#include "host/IExtension.h"

class IPlugin;
class QWidget;

/// A part of a plug-in. Of the texts that an extension shows, an element answers those of its plug-in, or an empty
/// text and false where it has none; title() and icon() are its own.
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

    /// The plug-in that the element belongs to, or null. Not owned.
    virtual IPlugin* plugin() const = 0;
    virtual bool isEnabled() const;
    /// The text of the menu entry: the element's title().
    virtual QString menuText() const;
    /// Carries the element out, modally; @p parent is the host's window. Tells whether it ran.
    virtual bool execute(QWidget* parent) = 0;
    /// The plug-in's name, or title() where there is no plug-in.
    virtual QString elementKey() const;
};
