// SPDX-FileCopyrightText: 2026 The Merivo Connections developers
// SPDX-License-Identifier: MIT
#pragma once

#include "hostapi/IExtension.h"
#include "hostapi/PluginIdentity.h"

#include <QDir>
#include <QList>
#include <QtPlugin>

class IComponent;
class IElement;
class IExtensionPoint;
class IExtensionRegistry;
class QSettings;

/// A plug-in. The host calls it on the GUI thread, in this order:
///
/// 1. It reads the library's metadata, compares the interface id and gets the instance.
/// 2. setExtensionRegistry(): the plug-in looks up the host's extension points. Events can arrive from now on.
/// 3. initialize(): the plug-in's settings and directory. The log requires IServices from step 2.
/// 4. installTranslator(): the plug-in's translation. May be repeated, for example after a change of language.
/// 5. components(): the menu entries, shown with icon() and title().
/// 6. IComponent::execute() each time the user selects an entry. IEventPublisher::diarySessionOpened() has reported the
///    patient before.
/// 7. The instance is deleted when the library is unloaded.
///
/// The plug-in does not own the objects that the host passes in; IDeviceAdmin and EventsObserver document the
/// exceptions.
class IPlugin : public IExtension
{
public:
    IPlugin() = default;
    ~IPlugin() override;

    bool isFlagged() const override;

    /// Returns the plug-in's key, which is the entry of the metadata's "keys".
    virtual QString pluginName() const = 0;
    /// Provides the host's registry. @p registry is not owned and may be null.
    virtual void setExtensionRegistry(IExtensionRegistry* registry);
    /// Provides the plug-in's @p settings, for use during the call only, and the @p directory of the plug-in.
    virtual void initialize(QSettings& settings, const QDir& directory);
    /// Receives a notice with an opaque argument. Does nothing by default.
    virtual void onHostNotice(void* notice);
    /// Loads the plug-in's translation. Does nothing by default.
    virtual void installTranslator();
    /// Returns the extension points that the plug-in itself provides; none by default.
    virtual QList<IExtensionPoint*> extensionPoints() const;
    /// Returns the menu entries, which the plug-in owns.
    virtual QList<IComponent*> components() const;
    /// Returns further elements; none by default.
    virtual QList<IElement*> elements() const;

protected:
    IExtensionRegistry* m_registry = nullptr;
    QDir m_dir;
    bool m_flag = false;
};

Q_DECLARE_INTERFACE(IPlugin, MERIVO_PLUGIN_IID)
