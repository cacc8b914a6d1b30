// SPDX-FileCopyrightText: 2026 The Merivo Connections developers
// SPDX-License-Identifier: MIT
#include "dialogs/FormScale.h"

#include <QBoxLayout>
#include <QDialog>
#include <QLabel>
#include <QPushButton>
#include <QScreen>
#include <QTextDocument>
#include <QVariant>

namespace {

constexpr int FormDpi = 96;
/// Screens without a configured scale report up to 100 dpi.
constexpr int MaxUnscaledDpi = 100;
constexpr char MaxLinesProperty[] = "MaxLines";
constexpr int MaxForeignLength = 300; // no label is large enough for more characters

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

/// Limits @p size to the screen, but not to less than the present size of the dialog.
QSize boundedByScreen(const QDialog& dialog, QSize size)
{
    return size.boundedTo(dialog.screen()->availableSize().expandedTo(dialog.size()));
}

void scaleSizes(QDialog* dialog, qreal factor)
{
    const QList<QBoxLayout*> layouts = dialog->findChildren<QBoxLayout*>();
    for (QBoxLayout* layout : layouts) {
        if (!layout->objectName().isEmpty()) // the layout of a button box is set by the style
            scaleLayout(layout, factor);
    }
    const QList<QWidget*> widgets = dialog->findChildren<QWidget*>() << dialog;
    for (QWidget* widget : widgets) {
        widget->setMinimumSize(widget->minimumSize() * factor);
        widget->setMaximumSize((widget->maximumSize() * factor).boundedTo({QWIDGETSIZE_MAX, QWIDGETSIZE_MAX}));
        auto* button = qobject_cast<QPushButton*>(widget);
        if (button && !button->objectName().isEmpty())
            button->setIconSize(button->iconSize() * factor);
    }
    dialog->resize(boundedByScreen(*dialog, dialog->size() * factor));
}

/// Sets the geometry of the widgets before the dialog is shown.
void layOut(QDialog* dialog)
{
    const QList<QLayout*> layouts = dialog->findChildren<QLayout*>();
    for (QLayout* layout : layouts)
        layout->invalidate();
    for (QLayout* layout : layouts)
        layout->activate();
}

bool fits(const QLabel& label, const QString& text)
{
    const int maxLines = label.property(MaxLinesProperty).toInt();
    const QFontMetrics metrics = label.fontMetrics();
    const QRect space(0, 0, label.width(), QWIDGETSIZE_MAX);
    const QSize needed = metrics.boundingRect(space, Qt::TextWordWrap, text).size();
    // A line can be a fraction of a pixel higher than the spacing.
    return needed.width() <= space.width() && needed.height() < (maxLines + 1) * metrics.lineSpacing();
}

/// Shortens the label's text until it fits.
void shorten(QLabel* label)
{
    const QString text = label->text();
    if (text.size() <= MaxForeignLength && fits(*label, text))
        return;
    int fitting = 1;
    for (int tooLong = qMin(text.size(), MaxForeignLength); fitting + 1 < tooLong;) {
        const int middle = (fitting + tooLong) / 2;
        (fits(*label, elided(text, middle)) ? fitting : tooLong) = middle;
    }
    label->setText(elided(text, fitting));
    label->setToolTip(Qt::convertFromPlainText(text, Qt::WhiteSpaceNormal)); // a name may look like markup
    label->setAccessibleDescription(text);                                   // would be the tool tip's markup
}

/// Returns the size below which texts of @p widget are cut. An icon may extend into the margins of its button.
QSize neededSize(const QWidget& widget)
{
    QSize needed = widget.minimumSizeHint();
    const auto* button = qobject_cast<const QPushButton*>(&widget);
    if (button && !button->icon().isNull())
        needed.rheight() -= qMax(0, button->iconSize().height() - button->fontMetrics().height());
    return needed;
}

/// Resizes the dialog to @p size, or more if its texts need it. With a style sheet or a large font they may even need
/// more than a maximum size, which is then increased.
void growToTexts(QDialog* dialog, QSize size)
{
    const QList<QWidget*> widgets = dialog->findChildren<QWidget*>();
    for (QWidget* widget : widgets) {
        const QSize needed = neededSize(*widget);
        if (needed.width() > widget->maximumWidth())
            widget->setMinimumWidth(needed.width());
        widget->setMaximumSize(widget->maximumSize().expandedTo(needed));
    }
    layOut(dialog);
    const QLayout* layout = dialog->layout();
    const QSize smallest = layout->totalMinimumSize();
    const int width = qMax(size.width(), smallest.width());
    dialog->resize(size); // the foreign texts may have enlarged it before they were shortened
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
    dialog->ensurePolished(); // with its children: a style sheet may change fonts
    scaleSizes(dialog, formScale(dialog));
    const QSize size = dialog->size();
    layOut(dialog);
    const QList<QLabel*> labels = dialog->findChildren<QLabel*>();
    for (QLabel* label : labels) {
        if (label->property(MaxLinesProperty).isValid())
            shorten(label);
    }
    growToTexts(dialog, size);
}

QString elided(const QString& text, int length)
{
    if (text.at(length - 1).isHighSurrogate())
        --length;
    return text.left(length) + QChar(0x2026);
}

void showForeignText(QLabel* label, const QString& text, int maxLines)
{
    label->setProperty(MaxLinesProperty, maxLines);
    label->setMinimumWidth(1);
    label->setText(text);
    label->setToolTip({});
    label->setAccessibleDescription({});
    if (label->isVisible()) {
        label->parentWidget()->layout()->activate();
        shorten(label);
    }
}
