// SPDX-FileCopyrightText: 2026 The Merivo Connections developers
// SPDX-License-Identifier: MIT
#pragma once

#include <QApplication>
#include <QMap>
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
QMap<QString, QPushButton*> pressableButtons(const QWidget& window);

/// Clicks one of the pressableButtons(), if there is one of that name, and returns whether there is. The click is
/// queued, so that it doesn't block the caller while a window that it opens is shown.
bool pressButton(const QWidget& window, const QString& name);
