// SPDX-FileCopyrightText: 2026 The Merivo Connections developers
// SPDX-License-Identifier: MIT
#include "dialogs/FontFitter.h"

#include <QDialog>
#include <QEvent>
#include <QFontInfo>
#include <QLabel>
#include <QLayout>
#include <QPushButton>
#include <QVariant>
#include <QVector>

#include <algorithm>

namespace {

constexpr int SmallestPixelSize = 10;
constexpr qreal Step = 0.5;
/// Each step asks for a new layout, and that for the next look. A style sheet of the application can hold a font where
/// it is, so that no step helps: their number is bounded for the dialog's whole life.
constexpr int MostSteps = 40;
/// The property in which a widget's steps are counted.
constexpr char StepsTaken[] = "FontFitterSteps";

/// False for a font that is small enough already.
bool stepDown(QFont& font)
{
    if (QFontInfo(font).pixelSize() <= SmallestPixelSize)
        return false;
    if (font.pointSizeF() > 0) // a style sheet may have it in pixels
        font.setPointSizeF(font.pointSizeF() - Step);
    else
        font.setPixelSize(font.pixelSize() - 1);
    return true;
}

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

/// Takes the widgets to the present number of steps, also those that have come since, such as a button box's new
/// buttons. False if no font became smaller.
bool FontFitter::shrink()
{
    // All fonts first: a widget without a font of its own follows its parent's, and would take the step twice.
    const QList<QWidget*> widgets = m_dialog->findChildren<QWidget*>();
    QVector<QFont> fonts;
    for (const QWidget* widget : widgets)
        fonts.append(widget->font());

    bool shrunk = false;
    for (int i = 0; i < widgets.size(); ++i) {
        const int steps = m_steps - widgets.at(i)->property(StepsTaken).toInt();
        widgets.at(i)->setProperty(StepsTaken, m_steps);
        for (int step = 0; step < steps && stepDown(fonts[i]); ++step)
            shrunk = true;
        if (steps > 0)
            widgets.at(i)->setFont(fonts.at(i));
    }
    if (shrunk)
        layOut();
    return shrunk;
}

/// At once, for the next look: a change within the page of a stack would else be seen by the dialog's layout only
/// later.
void FontFitter::layOut()
{
    const QList<QLayout*> layouts = m_dialog->findChildren<QLayout*>();
    for (QLayout* layout : layouts) {
        layout->invalidate();
        layout->parentWidget()->updateGeometry();
    }
    m_dialog->layout()->activate();
}

/// Whether the text would take half of the width, or a sixth of the height, even at the smallest font.
bool FontFitter::isHopeless(const QLabel& label) const
{
    const qreal shrinking = qreal(SmallestPixelSize) / qMax(SmallestPixelSize, QFontInfo(label.font()).pixelSize());
    const qreal width = label.minimumSizeHint().width() * shrinking;
    // Both shorter lines and fewer of them; -1 without word wrap.
    const qreal height = label.heightForWidth(m_room.width()) * shrinking * shrinking;
    return width > m_room.width() / 2.0 || height > m_room.height() / 6.0;
}

bool FontFitter::cutHopelessTexts()
{
    bool hasCut = false;
    const QList<QLabel*> labels = m_dialog->findChildren<QLabel*>();
    for (QLabel* label : labels) {
        // The texts with markup are the dialogs' own. A label that was cut stays so, as a font that was shrunk does.
        if (label->textFormat() != Qt::PlainText || label->sizePolicy().horizontalPolicy() == QSizePolicy::Ignored ||
            !isHopeless(*label))
            continue;
        label->setToolTip(label->text());
        label->setWordWrap(false);
        label->setAlignment(Qt::AlignLeft | (label->alignment() & Qt::AlignVertical_Mask));
        label->setMaximumHeight(label->fontMetrics().lineSpacing());
        label->setSizePolicy(QSizePolicy::Ignored, label->sizePolicy().verticalPolicy());
        layOut();
        hasCut = true;
    }
    return hasCut;
}

void FontFitter::fit()
{
    bool changed = cutHopelessTexts();
    changed |= m_steps > 0 && shrink();
    while (m_steps < MostSteps && !fits()) {
        ++m_steps;
        if (shrink())
            changed = true;
        else
            m_steps = MostSteps;
    }
    // The layout's own minimum may have pushed the dialog to a larger size before.
    if (changed)
        m_dialog->resize(m_room);
}
