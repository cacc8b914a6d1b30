// SPDX-FileCopyrightText: 2026 The Merivo Connections developers
// SPDX-License-Identifier: MIT
#include "dialogs/FormScale.h"

#include <QBoxLayout>
#include <QDialog>
#include <QLabel>
#include <QPushButton>
#include <QScreen>
#include <QVariant>

namespace {

constexpr int FormDpi = 96;
/// Screens that nobody has configured report up to 100 dpi, and are the ones that the forms are drawn for.
constexpr int MaxUnscaledDpi = 100;
/// The property that holds how many lines the text of a label may have.
constexpr char MaxLines[] = "MaxLines";
/// More never fit into a label.
constexpr int MaxForeignLength = 300;

QSize scaledMaximum(QSize size, qreal factor)
{
    const auto scaled = [factor](int length) {
        return length < QWIDGETSIZE_MAX ? qRound(length * factor) : length;
    };
    return {scaled(size.width()), scaled(size.height())};
}

void scaleLayout(QBoxLayout* layout, qreal factor)
{
    layout->setContentsMargins(layout->contentsMargins() * factor);
    layout->setSpacing(qRound(layout->spacing() * factor));
    for (int i = 0; i < layout->count(); ++i) {
        QSpacerItem* spacer = layout->itemAt(i)->spacerItem();
        if (!spacer)
            continue;
        const QSize size = spacer->sizeHint() * factor;
        const QSizePolicy policy = spacer->sizePolicy();
        spacer->changeSize(size.width(), size.height(), policy.horizontalPolicy(), policy.verticalPolicy());
    }
}

/// The size of the form itself is left as it is, however small the screen.
QSize boundedByScreen(const QDialog& dialog, QSize size)
{
    return size.boundedTo(dialog.screen()->availableSize().expandedTo(dialog.size()));
}

void scaleSizes(QDialog* dialog, qreal factor)
{
    const QList<QBoxLayout*> layouts = dialog->findChildren<QBoxLayout*>();
    for (QBoxLayout* layout : layouts) {
        if (!layout->objectName().isEmpty()) // that of a button box follows the style
            scaleLayout(layout, factor);
    }
    const QList<QWidget*> widgets = dialog->findChildren<QWidget*>();
    for (QWidget* widget : widgets) {
        widget->setMinimumSize(widget->minimumSize() * factor);
        widget->setMaximumSize(scaledMaximum(widget->maximumSize(), factor));
        auto* button = qobject_cast<QPushButton*>(widget);
        if (button && !button->objectName().isEmpty())
            button->setIconSize(button->iconSize() * factor);
    }
    dialog->setMaximumSize(scaledMaximum(dialog->maximumSize(), factor));
    dialog->resize(boundedByScreen(*dialog, dialog->size() * factor));
}

/// Gives the widgets their places before the dialog is shown.
void layOut(QDialog* dialog)
{
    const QList<QLayout*> layouts = dialog->findChildren<QLayout*>();
    for (QLayout* layout : layouts) {
        layout->invalidate();
        layout->parentWidget()->updateGeometry();
    }
    for (QLayout* layout : layouts)
        layout->activate();
}

bool fits(const QLabel& label, const QString& text)
{
    const int maxLines = label.property(MaxLines).toInt();
    const QFontMetrics metrics = label.fontMetrics();
    const QRect room(0, 0, label.width(), QWIDGETSIZE_MAX);
    const QSize needed = metrics.boundingRect(room, Qt::TextWordWrap, text).size();
    // Lines can be some fractions of a pixel higher than the spacing.
    return needed.width() <= room.width() && needed.height() < (maxLines + 1) * metrics.lineSpacing();
}

void shorten(QLabel* label)
{
    const QString text = label->text();
    QString shown = text;
    for (int length = qMin(text.size(), MaxForeignLength); !fits(*label, shown) && length > 0; --length)
        shown = text.left(length) + QChar(0x2026);
    label->setText(shown);
    label->setToolTip(shown == text ? QString() : text);
}

/// Gives the dialog @p size, or more if its texts need it: with a style sheet or a large font also more than a maximum.
void growToTexts(QDialog* dialog, QSize size)
{
    const QList<QWidget*> widgets = dialog->findChildren<QWidget*>();
    for (QWidget* widget : widgets) {
        widget->setMaximumSize(widget->maximumSize().expandedTo(widget->minimumSizeHint()));
        if (widget->layout() && widget->minimumWidth() > 0)
            widget->setMinimumWidth(qMax(widget->minimumWidth(), widget->minimumSizeHint().width()));
    }
    layOut(dialog);
    const QLayout* layout = dialog->layout();
    const QSize smallest = layout->totalMinimumSize();
    const int width = qMax(size.width(), smallest.width());
    dialog->resize(size); // the whole foreign texts may have pushed it
    const QSize needed = boundedByScreen(*dialog, smallest.expandedTo({0, layout->minimumHeightForWidth(width)}));
    dialog->setMaximumSize(dialog->maximumSize().expandedTo(needed));
    dialog->resize(size.expandedTo(needed));
}

} // namespace

qreal formScale(const QWidget* widget)
{
    const int dpi = widget->logicalDpiY();
    return dpi > MaxUnscaledDpi ? qreal(dpi) / FormDpi : 1;
}

void scaleForm(QDialog* dialog)
{
    dialog->ensurePolished(); // a style sheet may change fonts
    const QList<QWidget*> widgets = dialog->findChildren<QWidget*>();
    for (QWidget* widget : widgets)
        widget->ensurePolished();
    scaleSizes(dialog, formScale(dialog));
    const QSize size = dialog->size();
    layOut(dialog);
    const QList<QLabel*> labels = dialog->findChildren<QLabel*>();
    for (QLabel* label : labels) {
        if (label->property(MaxLines).isValid())
            shorten(label);
    }
    growToTexts(dialog, size);
}

void showForeignText(QLabel* label, const QString& text, int maxLines)
{
    label->setProperty(MaxLines, maxLines);
    label->setMinimumWidth(1);
    label->setText(text);
    label->setToolTip({});
    if (label->isVisible()) {
        label->parentWidget()->layout()->activate();
        shorten(label);
    }
}
