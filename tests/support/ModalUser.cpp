// SPDX-FileCopyrightText: 2026 The Merivo Connections developers
// SPDX-License-Identifier: MIT
#include "support/ModalUser.h"

#include <QDialogButtonBox>
#include <QMetaEnum>

QMap<QString, QPushButton*> pressableButtons(const QWidget& window)
{
    static const QMetaEnum standardButtons = QMetaEnum::fromType<QDialogButtonBox::StandardButtons>();
    QMap<QString, QPushButton*> pressable;
    for (auto* button : window.findChildren<QPushButton*>()) {
        const auto* box = qobject_cast<QDialogButtonBox*>(button->parentWidget());
        const char* standardName = box ? standardButtons.valueToKey(box->standardButton(button)) : nullptr;
        if (button->isVisible() && button->isEnabled())
            pressable[box ? standardName : button->objectName()] = button;
    }
    return pressable;
}

bool pressButton(const QWidget& window, const QString& name)
{
    QPushButton* button = pressableButtons(window).value(name);
    return button && QMetaObject::invokeMethod(button, &QPushButton::click, Qt::QueuedConnection);
}
