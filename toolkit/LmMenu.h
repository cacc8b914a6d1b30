// SPDX-FileCopyrightText: 2026 The Merivo Connections developers
// SPDX-License-Identifier: MIT
#pragma once

#include <QKeySequence>
#include <QList>
#include <QMap>
#include <QMenu>

#include <memory>

/// A menu for right-to-left layouts, where QMenu draws a shortcut in the wrong place. While the menu is open there, the
/// text of each action ends with its first shortcut, and the action has no shortcuts. Texts and shortcuts are restored
/// when the menu closes, before a selected action is triggered, and when the menu is deleted while it is open. GUI
/// thread only.
///
/// Each time it opens, sets the dynamic properties "leftPadding" and "rightPadding", which style sheets can use to pad
/// the items. The one of the leading side is true if an action is checkable or, in a right-to-left layout, has a
/// visible icon. The one of the trailing side is true if no action has a shortcut.
///
/// If the layout direction changes while the menu is open, the actions permanently lose their shortcuts.
class LmMenu : public QMenu
{
    Q_OBJECT
    Q_DISABLE_COPY_MOVE(LmMenu)

public:
    explicit LmMenu(QWidget* parent = nullptr);
    explicit LmMenu(const QString& title, QWidget* parent = nullptr);
    ~LmMenu() override;

    QSize sizeHint() const override;

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    void connectOpening();
    void onAboutToShow();
    void onAboutToHide();
    void moveShortcutIntoText(QAction* action);

    QMap<QAction*, QList<QKeySequence>> m_savedShortcuts; ///< Of the actions in the open menu.
    std::unique_ptr<QObject> m_watcher;                   ///< Context of connections to destroyed(); null if closed.
};
