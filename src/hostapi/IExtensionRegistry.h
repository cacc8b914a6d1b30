// SPDX-FileCopyrightText: 2026 The Merivo Connections developers
// SPDX-License-Identifier: MIT
#pragma once

class IExtensionPoint;
class QString;

/// Finds the host's extension points by name: "ServicesExtensionPoint", "DeviceAdminExtensionPoint",
/// "CommandHandlerExtensionPoint", "EventPublisherExtensionPoint", "DatabaseExtensionPoint".
class IExtensionRegistry
{
public:
    /// Keeps the first place in the virtual table; never called by a plug-in.
    virtual void* reserved0() = 0;
    /// Returns the extension point of that name, or null. Not owned.
    virtual IExtensionPoint* extensionPoint(const QString& name) = 0;

protected:
    ~IExtensionRegistry() = default;
};
