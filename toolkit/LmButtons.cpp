// SPDX-FileCopyrightText: 2026 The Merivo Connections developers
// SPDX-License-Identifier: MIT
#include "toolkit/LmButtons.h"

#include "toolkit/LmWidgets.h"

#include <QVariant>

LmPushButton::LmPushButton(QWidget* parent)
    : QPushButton(parent)
{}

LmPushButton::LmPushButton(const QString& text, QWidget* parent)
    : QPushButton(text, parent)
{}

LmPushButton::LmPushButton(const QIcon& icon, const QString& text, QWidget* parent)
    : QPushButton(icon, text, parent)
{}

LmPushButton::~LmPushButton()
{
    setStyle(nullptr);
}

LmCheckButton::LmCheckButton(QWidget* parent)
    : LmPushButton(parent)
{}

LmCheckButton::LmCheckButton(const QString& text, QWidget* parent)
    : LmPushButton(text, parent)
{}

LmCheckButton::LmCheckButton(const QIcon& icon, const QString& text, QWidget* parent)
    : LmPushButton(icon, text, parent)
{}

LmCheckButton::~LmCheckButton()
{
    setStyle(nullptr);
}

LmToolButton::LmToolButton(QWidget* parent)
    : QToolButton(parent)
{}

LmBalticButton::LmBalticButton(QWidget* parent)
    : LmToolButton(parent)
{}

void LmBalticButton::setIconFor(const char* propertyName, const QIcon& icon)
{
    setProperty(propertyName, icon);
}

void LmBalticButton::setIconStyle(const char* propertyName)
{
    const QVariant icon = property(propertyName);
    if (!icon.canConvert<QIcon>())
        return;
    setIcon(icon.value<QIcon>());
    setProperty("IconStyle", QString::fromLatin1(propertyName));
    lmRepolish(this);
}

LmHoldButton::LmHoldButton(QWidget* parent)
    : QToolButton(parent)
{
    setAutoRepeat(true);
    setAutoRepeatInterval(200);
}

LmDialogButtonBox::LmDialogButtonBox(QWidget* parent)
    : QDialogButtonBox(parent)
{}

LmDialogButtonBox::LmDialogButtonBox(Qt::Orientation orientation, QWidget* parent)
    : QDialogButtonBox(orientation, parent)
{}

LmDialogButtonBox::LmDialogButtonBox(StandardButtons buttons, Qt::Orientation orientation, QWidget* parent)
    : QDialogButtonBox(buttons, orientation, parent)
{}

LmDialogButtonBox::~LmDialogButtonBox()
{
    setStyle(nullptr);
}

LmBigCheckBox::LmBigCheckBox(QWidget* parent)
    : QCheckBox(parent)
{}

LmBigCheckBox::LmBigCheckBox(const QString& text, QWidget* parent)
    : QCheckBox(text, parent)
{}
