// SPDX-FileCopyrightText: 2026 The Merivo Connections developers
// SPDX-License-Identifier: MIT
#include "tools/robot/WidgetFinder.h"

#include <QAbstractButton>
#include <QApplication>
#include <QDialogButtonBox>
#include <QMessageBox>
#include <QMetaEnum>
#include <QPushButton>
#include <QTextDocument>
#include <QTextDocumentFragment>

#include <algorithm>

namespace {

bool hasName(const QWidget* window, const QString& name)
{
    return window->objectName() == name || QLatin1String(window->metaObject()->className()) == name ||
           window->windowTitle() == name;
}

QWidgetList openWindows()
{
    QWidgetList windows = QApplication::topLevelWidgets();
    const auto end = std::remove_if(windows.begin(), windows.end(), [](const QWidget* candidate) {
        return !candidate->isVisible() || !candidate->isWindow();
    });
    windows.erase(end, windows.end());
    return windows;
}

/// Returns the best of the widgets of that name: in the input window, then any visible one, then any.
QWidget* bestOf(const QWidgetList& candidates, const QString& name)
{
    const QWidget* input = WidgetFinder::inputWindow();
    const auto rank = [input, &name](const QWidget* candidate) {
        if (candidate->objectName() != name)
            return 0;
        return 1 + (candidate->isVisible() ? 1 : 0) + (candidate->window() == input ? 2 : 0);
    };
    const auto best =
        std::max_element(candidates.cbegin(), candidates.cend(),
                         [&rank](const QWidget* left, const QWidget* right) { return rank(left) < rank(right); });
    return best == candidates.cend() || rank(*best) == 0 ? nullptr : *best;
}

} // namespace

QWidget* WidgetFinder::inputWindow()
{
    if (QWidget* modal = QApplication::activeModalWidget())
        return modal;
    if (QWidget* active = QApplication::activeWindow())
        return active;
    // Without a window manager no window becomes active when the active one closes.
    return openWindows().value(0);
}

QWidget* WidgetFinder::window(const QString& name)
{
    QWidgetList windows = openWindows();
    if (QWidget* input = inputWindow())
        windows.prepend(input);
    const auto found = std::find_if(windows.cbegin(), windows.cend(),
                                    [&name](const QWidget* candidate) { return hasName(candidate, name); });
    return found == windows.cend() ? nullptr : *found;
}

QWidget* WidgetFinder::widget(const QString& path)
{
    QStringList names = path.split('/');
    const QString first = names.takeFirst();
    QWidget* found = window(first);
    if (!found)
        found = bestOf(QApplication::allWidgets(), first);
    for (const QString& name : qAsConst(names)) {
        if (!found)
            break;
        QWidget* inBox = button(found, name);
        found = inBox ? inBox : bestOf(found->findChildren<QWidget*>(), name);
    }
    return found;
}

QAbstractButton* WidgetFinder::button(QWidget* parent, const QString& name)
{
    auto* box = qobject_cast<QDialogButtonBox*>(parent);
    if (!box)
        box = parent->findChild<QDialogButtonBox*>();
    if (!box)
        return nullptr;
    const QMetaEnum names = QMetaEnum::fromType<QDialogButtonBox::StandardButtons>();
    const QList<QAbstractButton*> buttons = box->buttons();
    const auto found = std::find_if(buttons.cbegin(), buttons.cend(), [&](QAbstractButton* candidate) {
        return names.valueToKey(box->standardButton(candidate)) == name || candidate->text().remove('&') == name;
    });
    return found == buttons.cend() ? nullptr : *found;
}

QString WidgetFinder::textOf(const QWidget* widget)
{
    QString text = widget->windowTitle();
    for (const char* property : {"title", "currentText", "plainText", "text"})
        if (const QVariant value = widget->property(property); value.isValid())
            text = value.toString();
    return Qt::mightBeRichText(text) ? QTextDocumentFragment::fromHtml(text).toPlainText() : text;
}

QString WidgetFinder::describeWindows()
{
    QStringList parts;
    const QWidgetList windows = openWindows();
    for (const QWidget* candidate : windows) {
        QString part =
            QString("%1 '%2'").arg(QLatin1String(candidate->metaObject()->className()), candidate->windowTitle());
        if (qobject_cast<const QMessageBox*>(candidate))
            part += QString(" with text '%1'").arg(textOf(candidate));
        parts.append(part);
    }
    return parts.isEmpty() ? "no window is open" : "open: " + parts.join(", ");
}
