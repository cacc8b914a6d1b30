// SPDX-FileCopyrightText: 2026 The Merivo Connections developers
// SPDX-License-Identifier: MIT
#include "toolkit/LmClickFrame.h"

#include <QStyle>
#include <QVariant>

LmClickFrame::LmClickFrame(QWidget* parent)
    : QFrame(parent)
{}

void LmClickFrame::setClickStyle(bool on)
{
    if (property("ClickStyle").isValid() && clickStyle() == on)
        return;
    setProperty("ClickStyle", on);
    style()->unpolish(this);
    style()->polish(this);
    update();
}

bool LmClickFrame::clickStyle() const
{
    return property("ClickStyle").toBool();
}

void LmClickFrame::setId(int id)
{
    m_id = id;
}

int LmClickFrame::id() const
{
    return m_id;
}

// Both events are accepted. The base class would pass them on to the parent.
void LmClickFrame::mouseReleaseEvent(QMouseEvent*)
{
    if (m_id >= 0)
        Q_EMIT clicked(m_id);
    else
        Q_EMIT clicked();
}

void LmClickFrame::mouseDoubleClickEvent(QMouseEvent*)
{
    if (m_id >= 0)
        Q_EMIT doubleClicked(m_id);
    else
        Q_EMIT doubleClicked();
}
