// SPDX-FileCopyrightText: 2026 The Merivo Connections developers
// SPDX-License-Identifier: MIT
#include "toolkit/LmMenu.h"

#include "toolkit/LmBidiText.h"
#include "toolkit/LmWidgets.h"

#include <QAction>
#include <QVariant>

#include <utility>

namespace {

/// Separates the text of an action from its shortcut.
const QString s_shortcutSeparator = QStringLiteral("        %1").arg(LmBidi::RLM);

} // namespace

LmMenu::LmMenu(QWidget* parent)
    : QMenu(parent)
{
    connectOpening();
}

LmMenu::LmMenu(const QString& title, QWidget* parent)
    : QMenu(title, parent)
{
    connectOpening();
}

LmMenu::~LmMenu()
{
    // QMenu doesn't emit aboutToHide() when it is deleted while it is open.
    onAboutToHide();
}

QSize LmMenu::sizeHint() const
{
    return QMenu::sizeHint();
}

void LmMenu::paintEvent(QPaintEvent* event)
{
    QMenu::paintEvent(event);
}

void LmMenu::connectOpening()
{
    connect(this, &QMenu::aboutToShow, this, &LmMenu::onAboutToShow);
    connect(this, &QMenu::aboutToHide, this, &LmMenu::onAboutToHide);
}

void LmMenu::onAboutToShow()
{
    const bool rightToLeft = layoutDirection() == Qt::RightToLeft;
    if (!m_watcher)
        m_watcher = std::make_unique<QObject>();
    int icons = 0;
    int checkables = 0;
    int shortcuts = 0;
    const QList<QAction*> actions = this->actions();
    for (QAction* action : actions) {
        if (!action)
            continue;
        if (rightToLeft && !action->shortcuts().isEmpty())
            moveShortcutIntoText(action);
        icons += action->isIconVisibleInMenu() && !action->icon().isNull() ? 1 : 0;
        checkables += action->isCheckable() ? 1 : 0;
        shortcuts += action->shortcuts().isEmpty() ? 0 : 1;
    }

    // Icons count only in a right-to-left layout.
    setProperty("leftPadding", rightToLeft ? shortcuts == 0 : checkables > 0);
    setProperty("rightPadding", rightToLeft ? checkables + icons > 0 : shortcuts == 0);
    lmRepolish(this);
}

void LmMenu::moveShortcutIntoText(QAction* action)
{
    action->setText(QStringLiteral("%1%2%3").arg(action->text(), s_shortcutSeparator,
                                                 action->shortcuts().constFirst().toString(QKeySequence::NativeText)));
    m_savedShortcuts.insert(action, action->shortcuts());
    action->setShortcuts(QList<QKeySequence>());
    // An action may be deleted while the menu is open. QMenu disconnects it from itself before destroyed() is emitted,
    // so that the connection needs another context object.
    connect(action, &QObject::destroyed, m_watcher.get(), [this, action] { m_savedShortcuts.remove(action); });
}

void LmMenu::onAboutToHide()
{
    m_watcher.reset();
    const auto saved = std::exchange(m_savedShortcuts, {});
    if (layoutDirection() != Qt::RightToLeft)
        return;
    for (auto entry = saved.cbegin(); entry != saved.cend(); ++entry) {
        QAction* const action = entry.key();
        const QStringList parts = action->text().split(s_shortcutSeparator);
        if (parts.size() > 1)
            action->setText(parts.constFirst());
        action->setShortcuts(entry.value());
    }
}
