// SPDX-FileCopyrightText: 2026 The Merivo Connections developers
// SPDX-License-Identifier: MIT
#include "dialogs/DialogLooks.h"

#include <QAccessible>
#include <QHeaderView>
#include <QLabel>
#include <QProgressBar>
#include <QPushButton>
#include <QTableView>
#include <QTest>

#include <algorithm>

namespace {

/// The room that the content of a widget needs at the width that it has.
QSize neededRoom(const QWidget& widget)
{
    if (const auto* label = qobject_cast<const QLabel*>(&widget)) {
        const QSize smallest = label->minimumSizeHint(); // with word wrap: the widest word
        return label->wordWrap() ? QSize(smallest.width(), label->heightForWidth(label->width())) : smallest;
    }
    if (qobject_cast<const QPushButton*>(&widget) || qobject_cast<const QProgressBar*>(&widget))
        return {widget.minimumSizeHint().width(), widget.fontMetrics().height()};
    const auto* header = qobject_cast<const QHeaderView*>(&widget);
    const auto* table = header ? qobject_cast<const QTableView*>(header->parentWidget()) : nullptr;
    // With large fonts on a screen that isn't scaled the serial number alone must be whole.
    const int columns = table && header->orientation() == Qt::Horizontal ? header->count() : 0;
    for (int i = 0; i < (widget.logicalDpiX() > 96 ? qMin(columns, 1) : columns); ++i) {
        const QAbstractItemView* cells = table; // where the hint is public
        if (qMax(header->sectionSizeHint(i), cells->sizeHintForColumn(i)) > header->sectionSize(i) &&
            !table->isColumnHidden(i))
            return {header->width() + 1, 0};
    }
    return {0, 0};
}

bool isPicture(const QWidget* widget)
{
    const auto* label = qobject_cast<const QLabel*>(widget);
    return label && (label->movie() || !label->pixmap(Qt::ReturnByValue).isNull());
}

/// Buttons of a box have no object name of their own.
QString nameOf(const QWidget* widget)
{
    const auto* button = qobject_cast<const QPushButton*>(widget);
    return widget->objectName().isEmpty() && button ? button->text() : widget->objectName();
}

} // namespace

QStringList cutTexts(const QWidget& window)
{
    QStringList found;
    const QList<QWidget*> widgets = window.findChildren<QWidget*>();
    for (const QWidget* widget : widgets) {
        if (!widget->isVisible())
            continue;
        const QSize needed = neededRoom(*widget);
        if (needed.boundedTo(widget->size()) != needed)
            found.append(QStringLiteral("%1 needs %2 x %3 and has %4 x %5")
                             .arg(widget->objectName())
                             .arg(needed.width())
                             .arg(needed.height())
                             .arg(widget->width())
                             .arg(widget->height()));
        if (!window.rect().contains(QRect(widget->mapTo(&window, QPoint(0, 0)), widget->size())))
            found.append(widget->objectName() + QStringLiteral(" reaches beyond the window"));
    }
    return found;
}

QStringList namelessWidgets(const QWidget& window)
{
    QStringList found;
    const QList<QWidget*> widgets = window.findChildren<QWidget*>();
    for (QWidget* widget : widgets) {
        const bool needsName = isPicture(widget) || qobject_cast<QPushButton*>(widget) ||
                               qobject_cast<QProgressBar*>(widget) || qobject_cast<QTableView*>(widget);
        if (needsName && widget->isVisible() &&
            QAccessible::queryAccessibleInterface(widget)->text(QAccessible::Name).isEmpty())
            found.append(nameOf(widget));
    }
    return found;
}

QStringList tabOrder(QWidget& window)
{
    QStringList walked;
    for (;;) {
        QTest::keyClick(&window, Qt::Key_Tab);
        const QString name = window.focusWidget() ? nameOf(window.focusWidget()) : QString();
        if (name.isEmpty() || walked.contains(name))
            break;
        walked.append(name);
    }
    // A round has no begin of its own: begin with what is read first.
    const QStringList expected = readingOrder(window);
    const auto first = expected.isEmpty() ? walked.end() : std::find(walked.begin(), walked.end(), expected.first());
    std::rotate(walked.begin(), first, walked.end());
    return walked;
}

QStringList readingOrder(const QWidget& window)
{
    QList<QWidget*> widgets = window.findChildren<QWidget*>();
    widgets.erase(std::remove_if(widgets.begin(), widgets.end(),
                                 [](const QWidget* widget) {
                                     return !widget->isVisible() || !widget->isEnabled() ||
                                            !(widget->focusPolicy() & Qt::TabFocus);
                                 }),
                  widgets.end());
    std::sort(widgets.begin(), widgets.end(), [&window](const QWidget* left, const QWidget* right) {
        const QRect a(left->mapTo(&window, QPoint(0, 0)), left->size());
        const QRect b(right->mapTo(&window, QPoint(0, 0)), right->size());
        const bool sameRow = a.top() <= b.bottom() && b.top() <= a.bottom();
        return sameRow ? a.left() < b.left() : a.top() < b.top();
    });
    QStringList names;
    for (const QWidget* widget : qAsConst(widgets))
        names.append(nameOf(widget));
    return names;
}
