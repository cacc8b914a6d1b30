// SPDX-FileCopyrightText: 2026 The Merivo Connections developers
// SPDX-License-Identifier: MIT
#include "toolkit/LmMessageBox.h"

#include <QDialogButtonBox>
#include <QFontMetricsF>
#include <QGridLayout>
#include <QPushButton>

namespace {

constexpr int TitleMargin = 100;
constexpr int ButtonMargin = 50;
constexpr int MinButtonWidth = 60;

/// Returns the width in whole pixels, rounded after half a pixel is added: 100.2 yields 101.
int textWidth(const QWidget& widget, const QString& text)
{
    return qRound(QFontMetricsF(widget.font()).horizontalAdvance(text) + 0.5);
}

} // namespace

LmMessageBox::LmMessageBox(QWidget* parent)
    : QMessageBox(parent)
    , LmLogProxy(dynamic_cast<LmLogProxy*>(parent))
{
    fitWidthToTitle();
}

LmMessageBox::LmMessageBox(QMessageBox::Icon icon, const QString& title, const QString& text,
                           QMessageBox::StandardButtons buttons, QWidget* parent)
    : QMessageBox(icon, title, text, buttons, parent, Qt::Dialog | Qt::MSWindowsFixedSizeDialogHint)
    , LmLogProxy(dynamic_cast<LmLogProxy*>(parent))
{
    fitWidthToTitle();
}

LmMessageBox::~LmMessageBox() = default;

void LmMessageBox::fitWidthToTitle()
{
    // Effective until the message box is shown: QMessageBox then fixes its size, with a margin of 50 for the title.
    if (qobject_cast<QGridLayout*>(layout()))
        setMinimumWidth(textWidth(*this, windowTitle()) + TitleMargin);
}

void LmMessageBox::setButtonText(int button, const QString& text)
{
    QMessageBox::setButtonText(button, text);
    if (!qobject_cast<QGridLayout*>(layout()))
        return;

    if (const auto* box = findChild<QDialogButtonBox*>()) {
        if (QPushButton* const target = box->button(static_cast<QDialogButtonBox::StandardButton>(button)))
            target->setMinimumWidth(qMax(textWidth(*this, text) + ButtonMargin, MinButtonWidth));
    }
    // Set again, since the text must be set after the final width.
    QMessageBox::setButtonText(button, text);
}

void LmMessageBox::logDisplayedMessage()
{
    switch (icon()) {
    case QMessageBox::Critical:
        logCritical(windowTitle(), text(), QString());
        break;
    case QMessageBox::Warning:
        logWarning(windowTitle(), text(), QString());
        break;
    case QMessageBox::Information:
        logInformation(windowTitle(), text(), QString());
        break;
    case QMessageBox::Question:
    case QMessageBox::NoIcon:
        break;
    }
}
