// SPDX-FileCopyrightText: 2026 The Merivo Connections developers
// SPDX-License-Identifier: MIT
#pragma once

#include <QChar>
#include <QHash>
#include <QRandomGenerator>
#include <QSet>
#include <QString>
#include <QVector>

#include <unordered_map>

/// Replaces what could tell of a person, a device or a key by something of the same form: each digit by a digit, each
/// letter by an ASCII letter of the same case, all else stays. The same word gets the same replacement as long as the
/// object lives, two words never get the same one. The replacements are drawn at random and kept nowhere, so nothing
/// leads back.
///
/// Nothing is trusted: in a text every word goes that isn't one of the vocabulary that the plug-in, the host and the
/// reader write themselves, also if nobody has told that it is personal. Telling what is known makes the replacement
/// hold inside longer words too, such as a serial number in a file's name.
class Anonymiser final
{
public:
    enum class Numbers {
        /// Up to three digits stay where no hyphen, slash or underscore joins them to a word: they count, or tell
        /// seconds, versions and error codes.
        KeepShort,
        Hide,
    };

    /// A value that must not be seen: from here on it is also found inside words. In up to three characters it counts
    /// only if it stands alone. Tell all values before the first text.
    void know(const QString& value) { learn(value); }
    /// The same for a name that may be made of such values, which are in it what they are elsewhere.
    void knowName(const QString& name) { m_names.insert(learn(name)); }

    /// True if a known value stands in the text.
    bool holdsKnown(const QString& text) const;

    /// A text with all but the vocabulary replaced.
    QString scrub(const QString& text, Numbers numbers = Numbers::KeepShort) { return replace(text, numbers, true); }
    /// A text with every word replaced.
    QString hide(const QString& text) { return replace(text, Numbers::Hide, false); }

    /// True if every word of the text is one of the vocabulary.
    static bool isPlain(const QString& text);

private:
    QString replace(const QString& text, Numbers numbers, bool keepVocabulary);
    int knownAt(const QString& folded, int at, int most) const;
    QString learn(const QString& value);
    QString replacementOfPieces(const QString& word, bool isName);
    QString replacementOf(const QString& word);

    QSet<QString> m_known; // case-folded, as are the names
    QSet<QString> m_names;
    // Of the known values by their first characters, longest first. Not a QHash, whose hash of such a number throws the
    // first two characters and the next two together.
    std::unordered_map<quint64, QVector<int>> m_lengths;
    QHash<QString, QString> m_replacements; // case-folded words to lower-case ones
    // What is drawn doesn't depend on what it replaces, so a sequence that could be told serves; the system's own
    // source is slow.
    QRandomGenerator m_random = QRandomGenerator::securelySeeded();
    QSet<QString> m_drawn; // the replacements
    QSet<QString> m_taken; // known values and their words, which no replacement may be
};
