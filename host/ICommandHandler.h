// SPDX-FileCopyrightText: 2026 The Merivo Connections developers
// SPDX-License-Identifier: MIT
#pragma once

#include "host/IExtensionPoint.h"

class ICommand;

/// The host's command processor: "CommandHandlerExtensionPoint". GUI thread only.
class ICommandHandler : public IExtensionPoint
{
public:
    ICommandHandler() = default;
    ~ICommandHandler() override;

    /// Takes the command and its ownership, and carries it out. The result is the host's own affair. The command's code
    /// lies in the plug-in: a host that keeps it frees it before it unloads the library.
    virtual bool execute(ICommand* command) = 0;
};
