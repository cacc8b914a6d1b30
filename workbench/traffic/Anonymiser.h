// SPDX-FileCopyrightText: 2026 The Merivo Connections developers
// SPDX-License-Identifier: MIT
#pragma once

#include <QHash>
#include <QRandomGenerator>
#include <QSet>
#include <QString>

/// Replaces words that may identify a person, a device or a key by words of the same form: each digit by a digit, each
/// letter by an ASCII letter of the same case; all else stays. While the object lives a word has one replacement, and
/// no two words share one. The replacements are drawn at random and kept nowhere, so nothing leads back.
///
/// Nothing is trusted: in a text every word is replaced that isn't one of the vocabulary that the plug-in, the host and
/// the reader write themselves, whether it is known to be personal or not.
class Anonymiser final
{
public:
    enum class Numbers {
        /// Up to three digits stay unless hyphen, slash or underscore join them to other words, or another mark to one
        /// that is replaced: they count, or are of seconds, versions and error codes.
        KeepShort,
        Hide,
    };

    /// Adds a value whose words are always replaced, also words of the vocabulary and short numbers.
    void know(const QString& value);

    /// Returns a text with all but the vocabulary replaced.
    QString scrub(const QString& text, Numbers numbers = Numbers::KeepShort);
    /// Returns a text with every word replaced.
    QString hide(const QString& text);

    /// Returns true if every word of the text is one of the vocabulary.
    static bool isPlain(const QString& text);

private:
    QString scrubbedChain(const QString& chain, Numbers numbers);
    QString replacementOf(const QString& word);

    QSet<QString> m_known;                  // in lower case
    QHash<QString, QString> m_replacements; // of words, both in lower case
    QSet<QString> m_drawn;                  // the replacements
    // What is drawn doesn't depend on what it replaces, so a predictable sequence serves; the system's own source is
    // slow.
    QRandomGenerator m_random = QRandomGenerator::securelySeeded();
};
