// SPDX-FileCopyrightText: 2026 The Merivo Connections developers
// SPDX-License-Identifier: MIT
#include "workbench/reader/Anonymiser.h"

#include <algorithm>
#include <functional>
#include <iterator>

namespace {

/// What plug-in, host and reader write of themselves: the words of their log records, the marks of the reader's files.
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

constexpr int HeadLength = 4;
constexpr int LongestNumber = 3;

const QSet<QString>& vocabulary()
{
    static const QSet<QString> words = [] {
        const QStringList list = QString::fromLatin1(Words).split(QLatin1Char(' '));
        return QSet<QString>(list.cbegin(), list.cend());
    }();
    return words;
}

/// Also halves of characters that don't fit into one, so that no script passes for punctuation.
bool isOfWord(QChar c)
{
    return c.isLetterOrNumber() || c.isMark() || c.isSurrogate() || c.category() == QChar::Other_PrivateUse;
}

/// Of the same length, unlike that of QString::toCaseFolded().
QString folded(QString text)
{
    std::transform(text.begin(), text.end(), text.begin(), [](QChar c) { return c.toCaseFolded(); });
    return text;
}

/// The first characters of a value as a number, since every place of a text is looked up by them.
quint64 headOf(const QString& text, int at, int length)
{
    quint64 head = 0;
    for (int i = 0; i < length; ++i)
        head = head << 16 | text.at(at + i).unicode();
    return head;
}

bool isKept(const QString& word, Anonymiser::Numbers numbers)
{
    const bool isNumber =
        std::all_of(word.cbegin(), word.cend(), [](QChar c) { return c.unicode() < 0x80 && c.isDigit(); });
    if (isNumber)
        return numbers == Anonymiser::Numbers::KeepShort && word.size() <= LongestNumber;
    return vocabulary().contains(word) || vocabulary().contains(word.toLower());
}

/// Addresses, GUIDs, MACs and keys: twelve hexadecimal digits or more, in pairs or not. No regular expression, which
/// would go through all the rest of the text for each word.
int hexadecimalAt(const QString& text, int at)
{
    constexpr int LeastPairs = 6;
    if (at > 0 && isOfWord(text.at(at - 1)))
        return 0;
    const auto isDigit = [&text](int place) {
        const char c = place < text.size() ? text.at(place).toLatin1() : '\0';
        return (c >= '0' && c <= '9') || (c >= 'A' && c <= 'F') || (c >= 'a' && c <= 'f');
    };
    int length = 0;
    int pairs = 0;
    for (int next = at; isDigit(next) && isDigit(next + 1);) {
        next += 2;
        ++pairs;
        if (next == text.size() || !isOfWord(text.at(next)))
            length = pairs < LeastPairs ? 0 : next - at;
        if (next < text.size() && (text.at(next) == QLatin1Char(':') || text.at(next) == QLatin1Char('-')))
            ++next;
    }
    return length;
}

/// Whether a hyphen, a slash or an underscore joins what stands there to another word, as in a serial number.
bool isJoined(const QString& text, int at, int end)
{
    const auto joins = [&text](int mark, int beyond) {
        return mark >= 0 && beyond >= 0 && mark < text.size() && beyond < text.size() &&
               QLatin1String("-/_").contains(text.at(mark)) && isOfWord(text.at(beyond));
    };
    return joins(at - 1, at - 2) || joins(end, end + 1);
}

int wordAt(const QString& text, int at)
{
    int end = at;
    while (end < text.size() && isOfWord(text.at(end)))
        ++end;
    return end - at;
}

} // namespace

/// Returns what is known from now on.
QString Anonymiser::learn(const QString& value)
{
    // Without the marks at its ends, as a text is searched from where a word begins.
    const auto begin = std::find_if(value.cbegin(), value.cend(), isOfWord);
    const auto end = std::find_if(value.crbegin(), std::make_reverse_iterator(begin), isOfWord).base();
    const QString known = folded(QString(begin, static_cast<int>(end - begin)));
    // Zero stands for nobody and for no pump.
    if (known.isEmpty() || known == QLatin1String("0") || m_known.contains(known))
        return known;
    m_known.insert(known);
    QVector<int>& lengths = m_lengths[headOf(known, 0, std::min(HeadLength, known.size()))];
    if (!lengths.contains(known.size()))
        lengths.insert(std::upper_bound(lengths.begin(), lengths.end(), known.size(), std::greater<>()), known.size());
    m_taken.insert(known);
    for (int at = 0; at < known.size(); ++at) {
        const int length = wordAt(known, at);
        m_taken.insert(known.mid(at, length));
        at += length;
    }
    return known;
}

bool Anonymiser::isPlain(const QString& text)
{
    for (int at = 0; at < text.size(); ++at) {
        const int length = wordAt(text, at);
        if (length > 0 && !isKept(text.mid(at, length), Numbers::Hide))
            return false;
        at += length;
    }
    return true;
}

/// The length of the longest known value of at most that length that begins there; 0: none.
int Anonymiser::knownAt(const QString& folded, int at, int most) const
{
    const bool isAtBegin = at == 0 || !isOfWord(folded.at(at - 1));
    for (int head = std::min(HeadLength, folded.size() - at); head > 0; --head) {
        if (head < HeadLength && !isAtBegin)
            break;
        const auto found = m_lengths.find(headOf(folded, at, head));
        if (found == m_lengths.cend())
            continue;
        for (const int length : found->second) {
            const int end = at + length;
            if (length > most || end > folded.size() ||
                (length < HeadLength && end < folded.size() && isOfWord(folded.at(end))))
                continue;
            if (m_known.contains(folded.mid(at, length)))
                return length;
        }
    }
    return 0;
}

bool Anonymiser::holdsKnown(const QString& text) const
{
    const QString key = folded(text);
    for (int at = 0; at < key.size(); ++at)
        if (isOfWord(key.at(at)) && knownAt(key, at, key.size()) > 0)
            return true;
    return false;
}

QString Anonymiser::replace(const QString& text, Numbers numbers, bool keepVocabulary)
{
    QString result;
    const QString key = folded(text);
    for (int at = 0; at < text.size();) {
        if (!isOfWord(text.at(at))) {
            result += text.at(at++);
            continue;
        }
        // A word ends where a known value begins in its middle.
        int end = at + 1;
        int length = std::max(knownAt(key, at, key.size()), hexadecimalAt(text, at));
        const bool isKnown = length > 0;
        if (!isKnown) {
            while (end < text.size() && isOfWord(text.at(end)) && knownAt(key, end, key.size()) == 0)
                ++end;
            length = end - at;
        }
        const QString word = text.mid(at, length);
        // What is left of a word behind a known value, as of an id that another one begins with, counts nothing.
        const bool isRest = at > 0 && isOfWord(text.at(at - 1));
        const bool isPart = isRest || isJoined(text, at, at + length);
        at += length;
        const bool isCut = isPart || (at < text.size() && isOfWord(text.at(at)));
        if (!isKnown && keepVocabulary && isKept(word, isCut ? Numbers::Hide : numbers)) {
            result += word;
            continue;
        }
        result += replacementOfPieces(word, m_names.contains(folded(word)));
    }
    return result;
}

/// Piece by piece, so that a piece on its own gets what it got inside the whole. Known values are pieces of names
/// alone: of two numbers that were cut in different places the replacements could be the same.
QString Anonymiser::replacementOfPieces(const QString& word, bool isName)
{
    QString result;
    const QString key = folded(word);
    const auto innerAt = [&](int at) {
        return isName ? knownAt(key, at, key.size() - 1) : 0;
    };
    for (int at = 0; at < word.size();) {
        int length = isOfWord(word.at(at)) ? innerAt(at) : 0;
        if (length > 0) {
            result += replacementOfPieces(word.mid(at, length), false);
        } else if (length = hexadecimalAt(word, at); length > 0) {
            result += replacementOf(word.mid(at, length));
        } else if (!isOfWord(word.at(at))) {
            result += word.at(at);
        } else {
            for (length = 1; at + length < word.size() && isOfWord(word.at(at + length)) && innerAt(at + length) == 0;)
                ++length;
            result += replacementOf(word.mid(at, length));
        }
        at += std::max(length, 1);
    }
    return result;
}

QString Anonymiser::replacementOf(const QString& word)
{
    // Neither case nor the marks between the pairs of an address make another value.
    QString key = folded(word);
    key.remove(QLatin1Char(':')).remove(QLatin1Char('-'));
    const bool isHexadecimal = hexadecimalAt(key, 0) == key.size();
    QString& replacement = m_replacements[key];
    for (int tries = 0; replacement.isEmpty(); ++tries) {
        QString drawn;
        for (const QChar c : qAsConst(key)) {
            const ushort least = QLatin1Char(c.isDigit() ? '0' : 'a').unicode();
            const int count = c.isDigit() ? 10 : isHexadecimal ? 6 : 26;
            drawn += QChar(least + m_random.bounded(count));
        }
        // There are few words of a letter or two. Where they run out a replacement may be a word that means something,
        // and then a longer one, but never that of another word.
        drawn += QString(tries / 10000, QLatin1Char('x'));
        const bool isGood = !m_taken.contains(drawn) && !vocabulary().contains(drawn);
        if (drawn != key && !m_drawn.contains(drawn) && (isGood || tries > 1000))
            replacement = drawn;
    }
    m_drawn.insert(replacement);
    QString result;
    int next = 0;
    for (const QChar c : word) {
        const bool isMark = c == QLatin1Char(':') || c == QLatin1Char('-');
        const QChar drawn = isMark ? c : replacement.at(next++);
        result += c.isUpper() ? drawn.toUpper() : drawn;
    }
    return result + replacement.mid(next);
}
