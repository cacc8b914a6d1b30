// SPDX-FileCopyrightText: 2026 The Merivo Connections developers
// SPDX-License-Identifier: MIT
#pragma once

#include <QApplication>
#include <QDialogButtonBox>
#include <QMap>
#include <QMessageBox>
#include <QMetaEnum>
#include <QPushButton>
#include <QTimer>

#include <functional>

/// Simulates a user of modal windows: calls a function with the visible one at an interval. Code that opens a
/// modal window blocks until that function has closed it.
class ModalUser final
{
public:
    explicit ModalUser(const std::function<void(QWidget& modal)>& act, int intervalMs = 5)
    {
        QObject::connect(&m_timer, &QTimer::timeout, &m_timer, [act] {
            QWidget* modal = QApplication::activeModalWidget();
            if (modal && modal->isVisible())
                act(*modal);
        });
        m_timer.start(intervalMs);
    }

private:
    QTimer m_timer;
};

/// Returns the buttons that a user of the window can press: those of a button box by the names of their standard
/// buttons ("Ok"), the others by their object names.
inline QMap<QString, QPushButton*> pressableButtons(const QWidget& window)
{
    static const QMetaEnum standardButtons = QMetaEnum::fromType<QDialogButtonBox::StandardButtons>();
    QMap<QString, QPushButton*> pressable;
    for (auto* button : window.findChildren<QPushButton*>()) {
        const auto* box = qobject_cast<QDialogButtonBox*>(button->parentWidget());
        const char* standardName = box ? standardButtons.valueToKey(box->standardButton(button)) : nullptr;
        if (button->isVisible() && button->isEnabled())
            pressable[box ? standardName : button->objectName()] = button;
    }
    return pressable;
}

/// Answers the message boxes that are opened while it exists, and records what they showed.
class BoxAnswerer final
{
public:
    struct Box
    {
        QMessageBox::Icon icon;
        QString title;
        QString text;
        QMessageBox::StandardButtons buttons;
        QWidget* parent;
        QSize size;
    };

    /// Appends a line "box|title|text" to @p journal, if any, for each message box before it is answered.
    explicit BoxAnswerer(QStringList* journal = nullptr)
        : m_user([this, journal](QWidget& modal) {
            auto* box = qobject_cast<QMessageBox*>(&modal);
            if (!box)
                return;
            seen.append({box->icon(), box->windowTitle(), box->text(), box->standardButtons(), box->parentWidget(),
                         box->size()});
            if (journal)
                journal->append("box|" + box->windowTitle() + '|' + box->text());
            const auto given = std::exchange(answer, QMessageBox::NoButton);
            QAbstractButton* button = box->button(given);
            (button ? button : box->buttons().constFirst())->click();
        })
    {}

    /// The button to press in the next message box; NoButton: its first one.
    QMessageBox::StandardButton answer = QMessageBox::NoButton;
    QList<Box> seen;

private:
    ModalUser m_user;
};
