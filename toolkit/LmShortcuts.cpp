// SPDX-FileCopyrightText: 2026 The Merivo Connections developers
// SPDX-License-Identifier: MIT
#include "toolkit/LmShortcuts.h"

#include <QAction>
#include <QKeySequence>
#include <QMetaEnum>

QMap<QString, QAction*> lmActionShortcuts(QObject* root)
{
    QMap<QString, QAction*> actions;
    if (!root)
        return actions;
    const QList<QAction*> all = root->findChildren<QAction*>();
    for (QAction* const action : all) {
        if (!action->shortcut().isEmpty())
            actions.insert(action->shortcut().toString(QKeySequence::PortableText), action);
    }
    return actions;
}

QMap<QString, QString> lmStandardKeys()
{
    constexpr int End = 70; // QKeySequence::Cancel, the last standard key, which isn't included.
    const QMetaEnum names = QMetaEnum::fromType<QKeySequence::StandardKey>();
    QMap<QString, QString> keys;
    for (int value = 0; value < End; ++value) {
        const QKeySequence sequence(static_cast<QKeySequence::StandardKey>(value));
        if (!sequence.isEmpty())
            keys.insert(QLatin1String(names.valueToKey(value)), sequence.toString(QKeySequence::PortableText));
    }
    return keys;
}
