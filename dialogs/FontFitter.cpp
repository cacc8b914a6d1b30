// SPDX-FileCopyrightText: 2026 The Merivo Connections developers
// SPDX-License-Identifier: MIT
#include "dialogs/FontFitter.h"

#include <QDialog>
#include <QEvent>
#include <QFontInfo>
#include <QLayout>
#include <QPushButton>

#include <algorithm>

namespace {

constexpr int SmallestPixelSize = 10;
constexpr qreal Step = 0.5;
constexpr int MostSteps = 40;

} // namespace

FontFitter::FontFitter(QDialog* dialog)
    : QObject(dialog)
    , m_dialog(dialog)
    , m_room(dialog->size())
{
    dialog->installEventFilter(this);
}

bool FontFitter::eventFilter(QObject* watched, QEvent* event)
{
    if (watched == m_dialog && (event->type() == QEvent::Show || event->type() == QEvent::LayoutRequest))
        fit();
    return QObject::eventFilter(watched, event);
}

bool FontFitter::fits() const
{
    const QLayout* layout = m_dialog->layout();
    const QSize needed = layout->totalMinimumSize().expandedTo({0, layout->minimumHeightForWidth(m_room.width())});
    if (needed.boundedTo(m_room) != needed)
        return false;

    // A column that can't become wider squeezes its buttons without the layout's minimum showing it.
    const QList<QPushButton*> buttons = m_dialog->findChildren<QPushButton*>();
    return std::all_of(buttons.cbegin(), buttons.cend(), [](const QPushButton* button) {
        return !button->isVisible() || button->sizeHint().width() <= button->width();
    });
}

bool FontFitter::shrink()
{
    bool shrunk = false;
    // Each widget for itself: under a style sheet of the application a widget's font doesn't follow its parent's.
    const QList<QWidget*> widgets = m_dialog->findChildren<QWidget*>();
    for (QWidget* widget : widgets) {
        QFont font = widget->font();
        if (font.pointSizeF() <= Step || QFontInfo(font).pixelSize() <= SmallestPixelSize)
            continue;
        font.setPointSizeF(font.pointSizeF() - Step);
        widget->setFont(font);
        shrunk = true;
    }
    m_dialog->layout()->activate();
    return shrunk;
}

void FontFitter::fit()
{
    if (fits())
        return;
    // Bounded: a style sheet can hold a font where it is.
    for (int step = 0; step < MostSteps && !fits() && shrink(); ++step)
        ;
    // The layout's own minimum may have pushed the dialog to a larger size before.
    m_dialog->resize(m_room);
}
