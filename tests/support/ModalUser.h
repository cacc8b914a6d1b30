// SPDX-FileCopyrightText: 2026 The Merivo Connections developers
// SPDX-License-Identifier: MIT
#pragma once

#include <QApplication>
#include <QTimer>
#include <QWidget>

#include <functional>

/// Simulates a user of modal windows: calls a function with the visible one every few milliseconds. Code that opens a
/// modal window blocks until that function has closed it.
class ModalUser final
{
public:
    explicit ModalUser(const std::function<void(QWidget& modal)>& act)
    {
        QObject::connect(&m_timer, &QTimer::timeout, &m_timer, [act] {
            QWidget* modal = QApplication::activeModalWidget();
            if (modal && modal->isVisible())
                act(*modal);
        });
        m_timer.start(5);
    }

private:
    QTimer m_timer;
};
