// SPDX-FileCopyrightText: 2026 The Merivo Connections developers
// SPDX-License-Identifier: MIT
#pragma once

#include "host/IComponent.h"

#include <QIcon>
#include <QObject>
#include <QPixmap>
#include <QVector>

class CommandController;
class MerivoConnectionsPlugin;

/// The plug-in's one menu entry: a user's whole work with the plug-in is one execute(). GUI thread only.
class MerivoConnectionsComponent final : public QObject, public IComponent
{
    // No Q_INTERFACES: the host casts to IComponent by its class name, which the base alone brings.
    Q_OBJECT
    Q_DISABLE_COPY_MOVE(MerivoConnectionsComponent)

public:
    /// Neither is owned, and both outlive the component.
    MerivoConnectionsComponent(CommandController* commandController, MerivoConnectionsPlugin* plugin);

    QString title() const override;
    QIcon icon() const override;
    IPlugin* plugin() const override;

    /// Checks that a patient is open, that a reader is there and that its firmware is new enough, then runs the main
    /// dialog modally and returns when the user is done. Returns true if the main dialog was shown. Otherwise shows a
    /// message box over @p parent, logs the failure and cleans up. A diary that is closed or replaced by another
    /// patient's before the main dialog opens is a failure too.
    ///
    /// The event loop turns in here, also before and after the main dialog is open. A call from there leaves a line in
    /// the log, returns false at once and disturbs nothing.
    bool execute(QWidget* parent) override;

    /// Loads the large pictures of the dialogs at the first call, in the next turns of the event loop, so that the
    /// dialogs open without a noticeable pause. Does nothing in an application without widgets.
    void loadPictures();

    /// True unless one of the reader's log files on that drive tells of a firmware below 3.2.23. A drive without such a
    /// file passes; in a version text a part that is missing, or no number, counts as 0.
    static bool checkFirmware(const QString& drivePath);

private:
    bool fail(QWidget* parent, const QString& text, const QString& logLine) const;

    CommandController* m_commandController;
    MerivoConnectionsPlugin* m_plugin;
    QIcon m_icon;
    QVector<QPixmap> m_pictures; ///< Keeps them in Qt's cache.
    bool m_hasLoadedPictures = false;
    bool m_isRunning = false;

public:
    /// Empty, or the folder that takes the place of the reader's drive in all runs.
    QString m_simulationPath;
};
