// SPDX-FileCopyrightText: 2026 The Merivo Connections developers
// SPDX-License-Identifier: MIT
#pragma once

#include "host/IExtension.h"
#include "host/PluginIdentity.h"

#include <QDir>
#include <QList>
#include <QtPlugin>

class IComponent;
class IElement;
class IExtensionPoint;
class IExtensionRegistry;
class QSettings;

/// A plug-in as the host drives it, on the host's GUI thread and in this order:
///
/// 1. The host reads the library's metadata, compares the interface id and takes the instance.
/// 2. setExtensionRegistry(): the plug-in looks up the host's extension points. From here on events can arrive.
/// 3. initialize(): the plug-in's settings and directory. The log needs the services of step 2.
/// 4. installTranslator(): the plug-in's language. May be repeated, as after a change of language.
/// 5. components(): the menu entries, shown with icon() and title().
/// 6. IComponent::execute() each time that the user picks an entry. The open patient has come before, through
///    IEventPublisher::diarySessionOpened().
/// 7. The instance is deleted at unload.
///
/// The plug-in never owns what it gets of the host, but for what IDeviceAdmin and EventsObserver tell.
class IPlugin : public IExtension
{
public:
    IPlugin() = default;
    ~IPlugin() override;

    /// Answers the flag that the plug-in object carries.
    bool isFlagged() const override;

    /// The plug-in's key, equal to the entry of the metadata's "keys".
    virtual QString pluginName() const = 0;
    /// The host's way in. @p registry stays the host's; null is allowed.
    virtual void setExtensionRegistry(IExtensionRegistry* registry);
    /// @p settings are the plug-in's own and are read during the call alone; @p directory is where the plug-in lies.
    virtual void initialize(QSettings& settings, const QDir& directory);
    /// A notice of the host, with one opaque argument. Does nothing.
    virtual void onHostNotice(void* notice);
    /// Loads the plug-in's language. Does nothing here.
    virtual void installTranslator();
    /// Extension points that the plug-in itself would give: none.
    virtual QList<IExtensionPoint*> extensionPoints() const;
    /// The menu entries; they stay the plug-in's.
    virtual QList<IComponent*> components() const;
    /// Further elements: none.
    virtual QList<IElement*> elements() const;

protected:
    IExtensionRegistry* m_registry = nullptr;
    QDir m_dir;
    bool m_flag = false;
};

Q_DECLARE_INTERFACE(IPlugin, MERIVO_PLUGIN_IID)
