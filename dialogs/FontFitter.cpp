// SPDX-FileCopyrightText: 2026 The Merivo Connections developers
// SPDX-License-Identifier: MIT
#include "dialogs/FontFitter.h"

#include <QDialog>
#include <QEvent>
#include <QFontInfo>
#include <QLayout>
#include <QPushButton>
#include <QVector>

#include <algorithm>

namespace {

constexpr int SmallestPixelSize = 10;
constexpr qreal Step = 0.5;

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
    // All fonts first: a widget without a font of its own follows its parent's, and would take the step twice.
    const QList<QWidget*> widgets = m_dialog->findChildren<QWidget*>();
    QVector<QFont> fonts;
    for (const QWidget* widget : widgets)
        fonts.append(widget->font());

    bool shrunk = false;
    for (int i = 0; i < widgets.size(); ++i) {
        QFont& font = fonts[i];
        if (QFontInfo(font).pixelSize() <= SmallestPixelSize)
            continue;
        if (font.pointSizeF() > 0) // a style sheet may have it in pixels
            font.setPointSizeF(font.pointSizeF() - Step);
        else
            font.setPixelSize(font.pixelSize() - 1);
        widgets.at(i)->setFont(font);
        shrunk = true;
    }
    m_dialog->layout()->activate();
    return shrunk;
}

void FontFitter::fit()
{
    bool shrunk = false;
    while (m_stepsLeft > 0 && !fits()) {
        --m_stepsLeft;
        if (shrink())
            shrunk = true;
        else
            m_stepsLeft = 0;
    }
    // The layout's own minimum may have pushed the dialog to a larger size before.
    if (shrunk)
        m_dialog->resize(m_room);
}
