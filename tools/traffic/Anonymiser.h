// SPDX-FileCopyrightText: 2026 The Merivo Connections developers
// SPDX-License-Identifier: MIT
#pragma once

#include <QHash>
#include <QRandomGenerator>
#include <QSet>
#include <QString>

/// Replaces words that may identify a person, a device or a key by words of the same form: each digit by a digit, each
/// letter by an ASCII letter of the same case. Each word has one replacement, which no other word has, during the
/// object's lifetime. The replacements are random and not stored, so they can't be reversed.
///
/// Every word of a text outside the vocabulary of plug-in, host and reader is replaced, whether it is known to be
/// personal or not.
class Anonymiser final
{
public:
    enum class Numbers {
        /// Keeps up to three digits (counts, seconds, versions, error codes) unless they are joined by a hyphen, slash
        /// or
        /// underscore to other words, or by another mark to a word that is replaced.
        KeepShort,
        Hide,
    };

    /// Adds a value whose words are always replaced, also words of the vocabulary and short numbers.
    void know(const QString& value);

    /// Returns a text in which all words outside the vocabulary are replaced.
    QString scrub(const QString& text, Numbers numbers = Numbers::KeepShort);
    /// Returns a text in which every word is replaced.
    QString hide(const QString& text);

    /// Returns true if every word of the text is in the vocabulary.
    static bool isPlain(const QString& text);

private:
    QString scrubbedChain(const QString& chain, Numbers numbers);
    QString replacementOf(const QString& word);

    QSet<QString> m_known;                  // in lower case
    QHash<QString, QString> m_replacements; // of words, both in lower case
    QSet<QString> m_drawn;                  // the replacements
    // A predictable sequence is safe, as replacements don't depend on the replaced words; the system's generator is
    // slow.
    QRandomGenerator m_random = QRandomGenerator::securelySeeded();
};
