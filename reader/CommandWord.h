// SPDX-FileCopyrightText: 2026 The Merivo Connections developers
// SPDX-License-Identifier: MIT
#pragma once

#include <QString>

#include <atomic>

/// A command word that the GUI thread sets and that the polling thread reads at each tick, without a lock: a reader
/// sees the word that was set last, whole.
///
/// The words that were ever set are kept for the life of the process. They are the few words of the reader's commands.
class CommandWord final
{
    Q_DISABLE_COPY_MOVE(CommandWord)

public:
    CommandWord() = default;

    /// GUI thread only.
    CommandWord& operator=(const QString& word);
    /// Any thread.
    operator QString() const // NOLINT(google-explicit-constructor): stands for the text wherever one is read
    {
        return *m_word.load(std::memory_order_acquire);
    }

private:
    static const QString* intern(const QString& word);

    std::atomic<const QString*> m_word{intern({})};
};
