// SPDX-FileCopyrightText: 2026 The Merivo Connections developers
// SPDX-License-Identifier: MIT
#pragma once

class IExtensionPoint;
class QString;

/// Where the host's extension points are found by name: "ServicesExtensionPoint", "DeviceAdminExtensionPoint",
/// "CommandHandlerExtensionPoint", "EventPublisherExtensionPoint", "DatabaseExtensionPoint".
class IExtensionRegistry
{
public:
    /// Holds the first place in the order of operations; never called by a plug-in.
    virtual void* reserved0() = 0;
    /// The extension point of that name, or null. It stays the host's.
    virtual IExtensionPoint* extensionPoint(const QString& name) = 0;

protected:
    ~IExtensionRegistry() = default;
};
