// SPDX-FileCopyrightText: 2026 The Merivo Connections developers
// SPDX-License-Identifier: MIT
#pragma once

#include <QCheckBox>
#include <QDialogButtonBox>
#include <QIcon>
#include <QPushButton>
#include <QString>
#include <QToolButton>

/// @file
/// Buttons under names of their own, so that a style sheet can address them: "LmPushButton { ... }". They behave as
/// the classes that they extend but for what is said here. GUI thread only.

/// An application may give it a proxy style of its own, which must be able to go before or after the button: the
/// destructor lets go of it first.
class LmPushButton : public QPushButton
{
    Q_OBJECT
    Q_DISABLE_COPY_MOVE(LmPushButton)

public:
    explicit LmPushButton(QWidget* parent = nullptr);
    explicit LmPushButton(const QString& text, QWidget* parent = nullptr);
    LmPushButton(const QIcon& icon, const QString& text, QWidget* parent = nullptr);
    ~LmPushButton() override;
};

/// Checkable only if the application makes it so.
class LmCheckButton : public LmPushButton
{
    Q_OBJECT
    Q_DISABLE_COPY_MOVE(LmCheckButton)

public:
    explicit LmCheckButton(QWidget* parent = nullptr);
    explicit LmCheckButton(const QString& text, QWidget* parent = nullptr);
    LmCheckButton(const QIcon& icon, const QString& text, QWidget* parent = nullptr);
    ~LmCheckButton() override;
};

class LmToolButton : public QToolButton
{
    Q_OBJECT
    Q_DISABLE_COPY_MOVE(LmToolButton)

public:
    explicit LmToolButton(QWidget* parent = nullptr);
};

/// A button that shows one of several icons, each under a name, and tells a style sheet which: it may select on the
/// property "IconStyle", the name of the icon shown.
///
/// The icons lie in dynamic properties of those names. A name is thus also one that no other property has, in ASCII.
class LmBalticButton : public LmToolButton
{
    Q_OBJECT
    Q_DISABLE_COPY_MOVE(LmBalticButton)

public:
    explicit LmBalticButton(QWidget* parent = nullptr);

    /// Keeps @p icon under the name. What the button shows stays as it is until setIconStyle().
    void setIconFor(const char* propertyName, const QIcon& icon);
    /// Shows the icon that is kept under the name. A name without an icon changes nothing.
    void setIconStyle(const char* propertyName);
};

/// Repeats while it is held down: after the initial delay of any button that repeats, every 200 milliseconds.
class LmHoldButton : public QToolButton
{
    Q_OBJECT
    Q_DISABLE_COPY_MOVE(LmHoldButton)

public:
    explicit LmHoldButton(QWidget* parent = nullptr);
};

/// Lets go of a style of its own before it goes, as LmPushButton does.
class LmDialogButtonBox : public QDialogButtonBox
{
    Q_OBJECT
    Q_DISABLE_COPY_MOVE(LmDialogButtonBox)

public:
    explicit LmDialogButtonBox(QWidget* parent = nullptr);
    explicit LmDialogButtonBox(Qt::Orientation orientation, QWidget* parent = nullptr);
    LmDialogButtonBox(StandardButtons buttons, Qt::Orientation orientation, QWidget* parent = nullptr);
    ~LmDialogButtonBox() override;
};

class LmBigCheckBox : public QCheckBox
{
    Q_OBJECT
    Q_DISABLE_COPY_MOVE(LmBigCheckBox)

public:
    explicit LmBigCheckBox(QWidget* parent = nullptr);
    explicit LmBigCheckBox(const QString& text, QWidget* parent = nullptr);
};
