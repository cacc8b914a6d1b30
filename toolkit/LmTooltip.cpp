// SPDX-FileCopyrightText: 2026 The Merivo Connections developers
// SPDX-License-Identifier: MIT
#include "toolkit/LmTooltip.h"

#include <QApplication>
#include <QDesktopWidget>
#include <QLabel>
#include <QMouseEvent>
#include <QVBoxLayout>

namespace {

// QDesktopWidget is deprecated, but its replacements differ: QGuiApplication::screenAt() returns null where this
// returns the nearest screen, and QGuiApplication::screens() has no entry for -1, which is the primary screen here.
QT_WARNING_PUSH
QT_WARNING_DISABLE_DEPRECATED

int screenCount()
{
    return QApplication::desktop()->screenCount();
}

QRect screenGeometry(int screen)
{
    return QApplication::desktop()->screenGeometry(screen);
}

int screenOfOrigin()
{
    return QApplication::desktop()->screenNumber(QPoint(0, 0));
}

QT_WARNING_POP

} // namespace

LmTooltip::LmTooltip(QWidget* parent)
    : QDialog(parent, Qt::WindowFlags())
{
    setWindowFlags(Qt::ToolTip);
    setProperty("LmTooltip", true);

    auto* const box = new QVBoxLayout;
    setLayout(box);
    m_label = new QLabel(QString(), this);
    box->addWidget(m_label);

    setAttribute(Qt::WA_MouseTracking, true);
    // Mouse events over the label go to the window, which handles dragging.
    m_label->setAttribute(Qt::WA_TransparentForMouseEvents, true);
}

LmTooltip::~LmTooltip() = default;

void LmTooltip::setText(const QString& text)
{
    m_label->setText(text);
}

QString LmTooltip::text() const
{
    return m_label->text();
}

void LmTooltip::mousePressEvent(QMouseEvent* event)
{
    const QPoint hold = event->localPos().toPoint();
    m_dragOffsetX = hold.x();
    m_dragOffsetY = hold.y();
    m_dragging = true;
}

void LmTooltip::mouseReleaseEvent(QMouseEvent*)
{
    m_dragging = false;
}

void LmTooltip::mouseMoveEvent(QMouseEvent* event)
{
    if (!m_dragging)
        return;
    const QPoint mouse = event->screenPos().toPoint();
    moveWithinScreens(mouse.x() - m_dragOffsetX, mouse.y() - m_dragOffsetY, false, -1);
}

void LmTooltip::resizeEvent(QResizeEvent*)
{
    updateGeometry();
    // Uses the limits of the screen at the origin, wherever the window is.
    moveWithinScreens(pos().x(), pos().y(), true, screenOfOrigin());
}

void LmTooltip::showEvent(QShowEvent* event)
{
    m_dragOffsetX = 0;
    m_dragOffsetY = 0;
    QDialog::showEvent(event);
}

void LmTooltip::moveWithinScreens(int x, int y, bool clampVertically, int screen)
{
    int leftmost = 100000;
    int rightmost = -100000;
    for (int i = 0; i < screenCount(); ++i) {
        const QRect limits = screenGeometry(i);
        leftmost = qMin(leftmost, limits.left());
        rightmost = qMax(rightmost, limits.right());
    }

    // The right and bottom edges of a QRect are inclusive, and the window intentionally stops one pixel before them.
    // Left and top are checked last, so that they win if the window is larger than the screens.
    if (x + width() > rightmost)
        x = rightmost - width();
    if (x < leftmost)
        x = leftmost;

    if (clampVertically) {
        const QRect limits = screenGeometry(screen);
        if (y + height() > limits.bottom())
            y = limits.bottom() - height();
        if (y < limits.top())
            y = limits.top();
    }
    move(x, y);
}
