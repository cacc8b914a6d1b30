// SPDX-FileCopyrightText: 2026 The Merivo Connections developers
// SPDX-License-Identifier: MIT
#include "reader/CommandWord.h"

#include <set>

CommandWord& CommandWord::operator=(const QString& word)
{
    m_word.store(intern(word), std::memory_order_release);
    return *this;
}

const QString* CommandWord::intern(const QString& word)
{
    // Never freed, as a reader may hold an element at any time; a set's elements stay where they are.
    static auto& words = *new std::set<QString>;
    return &*words.insert(word).first;
}
