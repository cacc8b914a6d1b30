// SPDX-FileCopyrightText: 2026 The Merivo Connections developers
// SPDX-License-Identifier: MIT
#include "tools/traffic/Anonymiser.h"

#include <QRegularExpression>

#include <algorithm>

namespace {

/// What plug-in, host and reader write themselves: the words of their log records, the labels of the reader's files.
/// No word that is also a person's name, and none of a single letter but the first one of an exchange file's name.
const char* const Words =
    "abort aborted about adapter add after again all already an and another answer answers app application are as "
    "assigned at away base battery be been before begin being birthday boot box btadr btdeleteaddr btispaired btpair "
    "btpairconfirm btpumpreassign btread bus busy but by byte bytes can cancel canceled canceling changed check class "
    "cleared closed cmd code command commandfile component confirm connect connected connection connections "
    "continued controller count created cygnara damaged data database db decline deprecated detected device devicelist "
    "devicereader devices devlist diagnostics dialog diary directory disabled disk dispose done drive dropped due "
    "during empty enabled encoding end ended err error exchange executed execution exists extension failed failure "
    "false "
    "file files finished finishing firmware folder for found free from full further gone guid had handed hardware "
    "has have held hold holds host id if import imported in info information initialized inside installed instance "
    "interface into is isn it its known larger left length library limit line linear list loaded loader lock locked "
    "log lost lumo mac main many mcp menu merivo merivoconnections message messages mib misc misccommand "
    "miscnocommand misconnected missing modelnr module msec must name names network new newer no nocommand none not "
    "note nothing notified number observed observer of off old on one only open opened operation or original "
    "out over pair paired pairing parser path patient pc percent permission pid plug plugged plugin polling prepare "
    "process program progress puid pump pumps qd17 qt query radio read reader reading readout reassign record "
    "recording refused remotecontrol remote remove removed removing report requested responding result revision "
    "root running sanvio saved schema search searching sec secs serial serialnr serves session set settings simulation "
    "size snapshot snr so some source space sqlite start started state status stop stopped stored submitted succeeded "
    "such support system takes temporary than that the them then there this time timeout timeouts to too took trace "
    "translation translations translator "
    "trigger true txt type unable unfinished unknown unplugged unstarted unsupported up update usb utf value verified "
    "version waiting warning was when which while window with within word write written wrong writer catalog xml cdata "
    "doctype I C";

constexpr int MaxNumberLength = 3;

const QSet<QString>& vocabulary()
{
    static const QSet<QString> words = [] {
        const QStringList list = QString::fromLatin1(Words).split(' ');
        return QSet<QString>(list.cbegin(), list.cend());
    }();
    return words;
}

/// Returns true also for surrogates, so that no script is treated as punctuation.
bool isOfWord(QChar c)
{
    return c.isLetterOrNumber() || c.isMark() || c.isSurrogate() || c.category() == QChar::Other_PrivateUse;
}

bool isNumber(const QString& word)
{
    return std::all_of(word.cbegin(), word.cend(), [](QChar c) { return c >= '0' && c <= '9'; });
}

bool isOfVocabulary(const QString& word)
{
    return vocabulary().contains(word) || vocabulary().contains(word.toLower());
}

/// Returns true for addresses, GUIDs, MACs and keys: twelve hexadecimal digits or more, also in separated pairs.
bool isHexadecimal(const QString& text)
{
    static const QRegularExpression form("\\A(?:[0-9A-Fa-f]{2}[:-]?){5,}[0-9A-Fa-f]{2}\\z");
    return form.match(text).hasMatch();
}

/// Splits a text into its words and the single characters between them.
QStringList piecesOf(const QString& text)
{
    QStringList pieces;
    for (int at = 0, end = 0; at < text.size(); at = end) {
        while (end < text.size() && isOfWord(text.at(end)))
            ++end;
        end = std::max(end, at + 1);
        pieces.append(text.mid(at, end - at));
    }
    return pieces;
}

bool isWord(const QString& piece)
{
    return isOfWord(piece.at(0));
}

/// Returns the end of the words at @p at that are joined by single marks, as in an address, a date or a path.
int endOfChain(const QString& text, int at)
{
    while (at < text.size() && isOfWord(text.at(at))) {
        const bool isJoined = at + 2 < text.size() && QString("-/_.:").contains(text.at(at + 1));
        at += isJoined && isOfWord(text.at(at + 2)) ? 2 : 1;
    }
    return at;
}

/// Returns a text with each chain of words replaced by the result of @p replace.
template <class Replace>
QString withChains(const QString& text, Replace replace)
{
    QString result;
    for (int at = 0, end = 0; at < text.size(); at = end) {
        end = endOfChain(text, at);
        if (end > at)
            result += replace(text.mid(at, end - at));
        else
            result += text.at(end++);
    }
    return result;
}

} // namespace

void Anonymiser::know(const QString& value)
{
    m_known.insert(value.toLower());
    // The day and month of a birthday are replaced only as part of the date; otherwise most small numbers would be.
    for (const QString& piece : piecesOf(value))
        if (isWord(piece) && (piece == value || !isNumber(piece) || piece.size() > MaxNumberLength))
            m_known.insert(piece.toLower());
}

bool Anonymiser::isPlain(const QString& text)
{
    const QStringList pieces = piecesOf(text);
    return std::all_of(pieces.cbegin(), pieces.cend(),
                       [](const QString& piece) { return !isWord(piece) || isOfVocabulary(piece); });
}

QString Anonymiser::scrub(const QString& text, Numbers numbers)
{
    return withChains(text, [&](const QString& chain) { return scrubbedChain(chain, numbers); });
}

QString Anonymiser::hide(const QString& text)
{
    return withChains(text, [this](const QString& chain) {
        QString result;
        for (const QString& piece : isHexadecimal(chain) ? QStringList(chain) : piecesOf(chain))
            result += isWord(piece) ? replacementOf(piece) : piece;
        return result;
    });
}

QString Anonymiser::scrubbedChain(const QString& chain, Numbers numbers)
{
    static const QRegularExpression joint("[-/_]");
    if (m_known.contains(chain.toLower()) || isHexadecimal(chain))
        return hide(chain);
    // Short numbers are counts, seconds, versions or error codes unless they are part of a chain that is replaced.
    bool keepsNumbers = numbers == Numbers::KeepShort && !chain.contains(joint);
    const auto isKept = [&](const QString& word) {
        if (m_known.contains(word.toLower()))
            return false;
        return isNumber(word) ? keepsNumbers && word.size() <= MaxNumberLength : isOfVocabulary(word);
    };
    const QStringList pieces = piecesOf(chain);
    keepsNumbers = std::all_of(pieces.cbegin(), pieces.cend(),
                               [&](const QString& piece) { return !isWord(piece) || isKept(piece); });
    QString result;
    for (const QString& piece : pieces) {
        if (!isWord(piece) || isKept(piece))
            result += piece;
        else if (piece.startsWith('I') && m_known.contains(piece.mid(1).toLower())) // an exchange file's name
            result += 'I' + replacementOf(piece.mid(1));
        else
            result += replacementOf(piece);
    }
    return result;
}

QString Anonymiser::replacementOf(const QString& word)
{
    // Values that differ only in case or in the separators of an address are equal.
    const QString key = word.toLower().remove(':').remove('-');
    const int letters = isHexadecimal(word) ? 6 : 26;
    QString& replacement = m_replacements[key];
    for (int tries = 0; replacement.isEmpty(); ++tries) {
        QString drawn;
        for (const QChar c : key)
            drawn += c.isDigit() ? QChar('0' + m_random.bounded(10)) : QChar('a' + m_random.bounded(letters));
        // There are few words of one or two letters. When they are used up, a replacement may be a word of the
        // vocabulary, and then a longer one, but never that of another word.
        drawn += QString(tries / 10000, 'x');
        const bool isGood = !m_known.contains(drawn) && !vocabulary().contains(drawn);
        if (drawn != key && !m_drawn.contains(drawn) && (isGood || tries > 1000))
            replacement = drawn;
    }
    m_drawn.insert(replacement);
    QString result;
    int next = 0;
    for (const QChar c : word) {
        const bool isMark = c == ':' || c == '-';
        const QChar drawn = isMark ? c : replacement.at(next++);
        result += c.isUpper() ? drawn.toUpper() : drawn;
    }
    return result + replacement.mid(next);
}
