// SPDX-FileCopyrightText: 2026 The Merivo Connections developers
// SPDX-License-Identifier: MIT
#pragma once

#include <QKeySequence>
#include <QList>
#include <QMap>
#include <QMenu>

#include <memory>

/// A menu that survives a right-to-left layout, where a shortcut would be drawn in the wrong place: while it is open
/// there, each action's text shows its first shortcut at the end, and the action itself has none. When the menu closes,
/// before an action picked in it is triggered, texts and shortcuts are as they were. GUI thread only.
///
/// A style sheet may select on two properties, which tell at each opening where the items need room: "leftPadding" and
/// "rightPadding". On the side where reading begins it is for the mark of a checkable action, in a right-to-left layout
/// for icons too; on the other side it is where no action has a shortcut that would make room by itself.
///
/// A direction that is turned round while the menu is open leaves the actions without their shortcuts for good.
class LmMenu : public QMenu
{
    Q_OBJECT
    Q_DISABLE_COPY_MOVE(LmMenu)

public:
    explicit LmMenu(QWidget* parent = nullptr);
    explicit LmMenu(const QString& title, QWidget* parent = nullptr);

    QSize sizeHint() const override;

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    void connectOpening();
    void onAboutToShow();
    void onAboutToHide();
    void moveShortcutIntoText(QAction* action);

    QMap<QAction*, QList<QKeySequence>> m_savedShortcuts; ///< Of the actions that are without while the menu is open.
    std::unique_ptr<QObject> m_watcher;                   ///< Hears of their end; there while the menu is open.
};
