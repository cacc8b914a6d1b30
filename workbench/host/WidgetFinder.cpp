// SPDX-FileCopyrightText: 2026 The Merivo Connections developers
// SPDX-License-Identifier: MIT
#include "workbench/host/WidgetFinder.h"

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

template <class Box>
QAbstractButton* standardButton(const Box* box, const QString& name)
{
    bool isStandard = false;
    const int value =
        QMetaEnum::fromType<typename Box::StandardButtons>().keyToValue(name.toLatin1().constData(), &isStandard);
    return isStandard ? box->button(static_cast<typename Box::StandardButton>(value)) : nullptr;
}

QAbstractButton* buttonByText(const QList<QAbstractButton*>& buttons, const QString& text)
{
    for (QAbstractButton* candidate : buttons)
        if (candidate->text().remove('&') == text)
            return candidate;
    return nullptr;
}

bool hasName(const QWidget* window, const QString& name)
{
    return window->objectName() == name || QLatin1String(window->metaObject()->className()) == name ||
           window->windowTitle() == name;
}

QString withoutMarkUp(const QString& text)
{
    return Qt::mightBeRichText(text) ? QTextDocumentFragment::fromHtml(text).toPlainText() : text;
}

/// The best of the widgets of that name: in the input window, then any visible one, then any.
QWidget* bestOf(const QWidgetList& candidates, const QString& name)
{
    const QWidget* input = WidgetFinder::inputWindow();
    QWidget* best = nullptr;
    int bestRank = -1;
    for (QWidget* candidate : candidates) {
        if (candidate->objectName() != name)
            continue;
        const int rank = (candidate->window() == input ? 2 : 0) + (candidate->isVisible() ? 1 : 0);
        if (rank > bestRank) {
            best = candidate;
            bestRank = rank;
        }
    }
    return best;
}

} // namespace

QWidget* WidgetFinder::inputWindow()
{
    if (QWidget* modal = QApplication::activeModalWidget())
        return modal;
    if (QWidget* active = QApplication::activeWindow())
        return active;
    // Without a window manager none becomes active when the active one closes.
    const QWidgetList windows = QApplication::topLevelWidgets();
    const auto found = std::find_if(windows.cbegin(), windows.cend(), [](const QWidget* candidate) {
        return candidate->isVisible() && candidate->isWindow();
    });
    return found == windows.cend() ? nullptr : *found;
}

QWidget* WidgetFinder::window(const QString& name)
{
    QWidget* input = inputWindow();
    if (input && hasName(input, name))
        return input;
    const QWidgetList windows = QApplication::topLevelWidgets();
    const auto found = std::find_if(windows.cbegin(), windows.cend(), [&name](const QWidget* candidate) {
        return candidate->isVisible() && candidate->isWindow() && hasName(candidate, name);
    });
    return found == windows.cend() ? nullptr : *found;
}

QWidget* WidgetFinder::widget(const QString& path)
{
    const QStringList names = path.split('/');
    QWidget* found = nullptr;
    for (int i = 0; i < names.size(); ++i) {
        const QString& name = names.at(i);
        if (found) {
            QAbstractButton* inBox = button(found, name);
            found = inBox ? inBox : bestOf(found->findChildren<QWidget*>(), name);
        } else {
            found = names.size() > 1 ? window(name) : nullptr;
            if (!found)
                found = bestOf(QApplication::allWidgets(), name);
        }
        if (!found)
            return nullptr;
    }
    return found;
}

QAbstractButton* WidgetFinder::button(QWidget* box, const QString& name)
{
    if (const auto* messageBox = qobject_cast<QMessageBox*>(box)) {
        QAbstractButton* standard = standardButton(messageBox, name);
        return standard ? standard : buttonByText(messageBox->buttons(), name);
    }
    if (const auto* buttonBox = qobject_cast<QDialogButtonBox*>(box)) {
        QAbstractButton* standard = standardButton(buttonBox, name);
        return standard ? standard : buttonByText(buttonBox->buttons(), name);
    }
    return nullptr;
}

QString WidgetFinder::textOf(const QWidget* widget)
{
    for (const char* property : {"text", "plainText", "currentText", "title"}) {
        const QVariant value = widget->property(property);
        if (value.isValid())
            return value.toString();
    }
    return widget->windowTitle();
}

bool WidgetFinder::textEquals(const QString& text, const QString& part)
{
    return text == part || withoutMarkUp(text) == part;
}

bool WidgetFinder::textContains(const QString& text, const QString& part)
{
    return text.contains(part) || withoutMarkUp(text).contains(part);
}

QString WidgetFinder::describeWindows()
{
    QStringList parts;
    const QWidgetList windows = QApplication::topLevelWidgets();
    for (const QWidget* candidate : windows) {
        if (!candidate->isVisible() || !candidate->isWindow())
            continue;
        QString part =
            QString("%1 '%2'").arg(QLatin1String(candidate->metaObject()->className()), candidate->windowTitle());
        if (const auto* box = qobject_cast<const QMessageBox*>(candidate))
            part += QString(" with text '%1'").arg(withoutMarkUp(box->text()));
        parts.append(part);
    }
    return parts.isEmpty() ? "no window is open" : "open: " + parts.join(", ");
}
