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
/// Buttons with names of their own, so that a style sheet can address them: "LmPushButton { ... }". GUI thread only.

/// A QPushButton that resets its style before it is destroyed. An application may set a proxy style for a single
/// button, and may delete that style before or after the button.
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

/// A LmPushButton with its own name for style sheets. Not checkable by default.
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

/// A QToolButton with its own name for style sheets.
class LmToolButton : public QToolButton
{
    Q_OBJECT
    Q_DISABLE_COPY_MOVE(LmToolButton)

public:
    explicit LmToolButton(QWidget* parent = nullptr);
};

/// A tool button that shows one of several named icons. A style sheet can select on the dynamic property "IconStyle",
/// which is the name of the icon that is shown.
///
/// Each icon is stored in a dynamic property of its name, so that a name must be ASCII and differ from the names of all
/// other properties.
class LmBalticButton : public LmToolButton
{
    Q_OBJECT
    Q_DISABLE_COPY_MOVE(LmBalticButton)

public:
    explicit LmBalticButton(QWidget* parent = nullptr);

    /// Stores @p icon under the name @p propertyName. The icon that is shown stays unchanged until setIconStyle().
    void setIconFor(const char* propertyName, const QIcon& icon);
    /// Shows the icon that is stored under the name @p propertyName. A name without an icon is ignored.
    void setIconStyle(const char* propertyName);
};

/// A QToolButton that repeats every 200 milliseconds while it is held down, after the initial delay of QAbstractButton.
class LmHoldButton : public QToolButton
{
    Q_OBJECT
    Q_DISABLE_COPY_MOVE(LmHoldButton)

public:
    explicit LmHoldButton(QWidget* parent = nullptr);
};

/// A QDialogButtonBox that resets its style before it is destroyed, like LmPushButton.
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

/// A QCheckBox with its own name for style sheets.
class LmBigCheckBox : public QCheckBox
{
    Q_OBJECT
    Q_DISABLE_COPY_MOVE(LmBigCheckBox)

public:
    explicit LmBigCheckBox(QWidget* parent = nullptr);
    explicit LmBigCheckBox(const QString& text, QWidget* parent = nullptr);
};
