// SPDX-FileCopyrightText: 2026 The Merivo Connections developers
// SPDX-License-Identifier: MIT
#pragma once

#include <QString>

#include <atomic>
#include <forward_list>

/// A text that the GUI thread sets and that any thread reads without a lock. Keeps every text that it was set to
/// until it is destroyed itself, so that no text is destroyed while it is read; no thread may read it then.
class AtomicString final
{
    Q_DISABLE_COPY_MOVE(AtomicString)

public:
    AtomicString() = default;

    /// GUI thread only.
    AtomicString& operator=(const QString& text)
    {
        if (text != m_texts.front()) {
            m_texts.push_front(text);
            m_current.store(&m_texts.front(), std::memory_order_release);
        }
        return *this;
    }

    /// Returns the text that was set last. Thread-safe.
    operator QString() const // NOLINT(google-explicit-constructor): used like a QString
    {
        return *m_current.load(std::memory_order_acquire);
    }

private:
    std::forward_list<QString> m_texts{QString()};
    std::atomic<const QString*> m_current{&m_texts.front()};
};
