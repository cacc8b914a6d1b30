// SPDX-FileCopyrightText: 2026 The Merivo Connections developers
// SPDX-License-Identifier: MIT
#pragma once

#include "hostapi/IComponent.h"

#include <QIcon>
#include <QObject>
#include <QPixmap>
#include <QVector>

class CommandController;
class MerivoConnectionsPlugin;

/// The plug-in's only menu entry. A run of the plug-in is one call of execute(). GUI thread only.
class MerivoConnectionsComponent final : public QObject, public IComponent
{
    // No Q_INTERFACES: the host casts to IComponent by its class name, for which the base class is enough.
    Q_OBJECT
    Q_DISABLE_COPY_MOVE(MerivoConnectionsComponent)

public:
    /// Neither argument is owned; both must outlive the component.
    MerivoConnectionsComponent(CommandController* commandController, MerivoConnectionsPlugin* plugin);

    QString title() const override;
    QIcon icon() const override;
    IPlugin* plugin() const override;

    /// Checks that a patient is open, that a reader is connected and that its firmware is new enough, then runs the
    /// main dialog modally. Returns true if the main dialog was shown. Otherwise shows a message box over @p parent,
    /// logs the failure and cleans up. It is also a failure if the diary is closed, or replaced by that of another
    /// patient, before the main dialog opens.
    ///
    /// Runs a nested event loop, also before and after the main dialog is open. A nested execute() is logged and
    /// returns false.
    bool execute(QWidget* parent) override;

    /// Loads the large pictures of the dialogs in the next turns of the event loop, so that the dialogs open without a
    /// noticeable pause. Does nothing after the first call, or in an application without widgets.
    void loadPictures();

    /// Returns true unless one of the reader's log files on that drive reports a firmware below 3.2.23. A drive without
    /// log files passes. A missing or non-numeric part of a version counts as 0.
    static bool checkFirmware(const QString& drivePath);

private:
    bool fail(QWidget* parent, const QString& text, const QString& logLine) const;

    CommandController* m_commandController;
    MerivoConnectionsPlugin* m_plugin;
    QIcon m_icon;
    QVector<QPixmap> m_pictures; ///< Keeps the pictures in Qt's cache.
    bool m_hasLoadedPictures = false;
    bool m_isRunning = false;

public:
    /// The folder that replaces the reader's drive in all runs; empty if simulation is disabled.
    QString m_simulationPath;
};
