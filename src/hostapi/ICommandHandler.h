// SPDX-FileCopyrightText: 2026 The Merivo Connections developers
// SPDX-License-Identifier: MIT
#pragma once

#include "hostapi/IExtensionPoint.h"

class ICommand;

/// The host's command processor, "CommandHandlerExtensionPoint". GUI thread only.
class ICommandHandler : public IExtensionPoint
{
public:
    ICommandHandler() = default;
    ~ICommandHandler() override;

    /// Takes ownership of @p command and executes it. The plug-in ignores the result. The plug-in contains the
    /// command's code: the host must delete the command before it unloads the library.
    virtual bool execute(ICommand* command) = 0;
};
