// SPDX-FileCopyrightText: 2026 The Merivo Connections developers
// SPDX-License-Identifier: MIT
#include "workbench/reader/TrafficAnonymiser.h"

#include "workbench/reader/ReaderCommand.h"
#include "workbench/reader/ReaderDrive.h"

#include <QCryptographicHash>
#include <QFile>
#include <QRegularExpression>
#include <QTextCodec>
#include <QXmlStreamReader>

#include <algorithm>
#include <functional>

namespace {

using Numbers = Anonymiser::Numbers;

constexpr int CommandLabel = 4;
constexpr int ValueLabel = 10;
constexpr int VersionLine = 4;
constexpr int ShortStem = 3; ///< would be known only where it stands alone, which it never does
constexpr int PrivateUse = 0xe000;
constexpr int LongestCode = 3; ///< behind another label than the reader's own
const QString CodeLabel = QStringLiteral("Error code -");
const QByteArray ByteOrderMark = QByteArrayLiteral("\xef\xbb\xbf");
/// The one pump name that isn't somebody's choice: the plug-in goes by it.
const QString ProductName = QStringLiteral("Cygnara");

/// The computer writes in the codec of its locale. Where that isn't UTF-8 nobody knows which bytes above ASCII are
/// letters, so all of them are taken for some; no word with them is kept.
QString decoded(const QByteArray& bytes, bool* isUtf8)
{
    // With the size given, since a zero byte ends the text otherwise. The mark at the begin would be dropped.
    const QByteArray mark = bytes.startsWith(ByteOrderMark) ? ByteOrderMark : QByteArray();
    QString text = QString::fromUtf8(bytes.constData() + mark.size(), bytes.size() - mark.size());
    *isUtf8 = mark + text.toUtf8() == bytes;
    if (*isUtf8)
        return mark.isEmpty() ? text : QChar(QChar::ByteOrderMark) + text;
    text = QString::fromLatin1(bytes.constData(), bytes.size());
    for (QChar& c : text)
        if (c.unicode() >= 0x80)
            c = QChar(PrivateUse + c.unicode());
    return text;
}

/// An exchange file's name without what makes it one, as in "I*.xml".
QString stemOf(const QString& exchangeName)
{
    constexpr int Marks = 5;
    return exchangeName.mid(1, exchangeName.size() - Marks);
}

QString commandWordOf(const QStringList& statusLines)
{
    return statusLines.value(1).mid(CommandLabel).trimmed().toUpper();
}

/// True if the command's result is a serial number or a confirmation code.
bool isIdOf(const QString& commandWord)
{
    return commandWord == QLatin1String("BTISPAIRED") || commandWord == QLatin1String("BTPAIR");
}

/// What stands between two tags, with its entities and CDATA sections resolved; up to the fault if there is one.
QString plainText(const QString& content, bool* isSound)
{
    *isSound = true;
    static const QRegularExpression marks(QStringLiteral("[&<]|\\]\\]>"));
    if (!content.contains(marks))
        return content;
    QXmlStreamReader xml(QLatin1String("<a>") + content + QLatin1String("</a>"));
    const QString text = xml.readNextStartElement() ? xml.readElementText() : QString();
    *isSound = !xml.hasError();
    return text;
}

/// Calls @p part for each piece of a device list, tag by tag: the name of the start tag ahead of it, empty for a tag
/// or comment itself and for what stands elsewhere; the piece. A list may break off inside a value.
void eachPart(const QString& list, const std::function<void(const QString&, const QString&)>& part)
{
    static const QRegularExpression Tag(QStringLiteral("<(?!!\\[CDATA)[^<>]*>"));
    static const QRegularExpression End(QStringLiteral("[\\s/>]"));
    QString element;
    int at = 0;
    for (auto tags = Tag.globalMatch(list); tags.hasNext();) {
        const QRegularExpressionMatch tag = tags.next();
        part(element, list.mid(at, tag.capturedStart() - at));
        part({}, tag.captured());
        if (!tag.captured().startsWith(QLatin1String("<!")))
            element = tag.captured().mid(1).section(End, 0, 0);
        at = tag.capturedEnd();
    }
    part(element, list.mid(at));
}

/// A tag such as a list begins with, which names no encoding but one that there is.
bool isDeclaration(const QString& tag)
{
    static const QRegularExpression Form(
        QStringLiteral("^<\\?xml\\s+version\\s*=\\s*[\"']1\\.[01][\"'](?:\\s+encoding\\s*=\\s*[\"']([\\w.-]+)[\"'])?"
                       "(?:\\s+standalone\\s*=\\s*[\"'](?:yes|no)[\"'])?\\s*\\?>$"));
    const QRegularExpressionMatch match = Form.match(tag);
    const QByteArray encoding = match.captured(1).toLatin1();
    return match.hasMatch() && (encoding.isEmpty() || QTextCodec::codecForName(encoding));
}

bool isIdentity(const QString& element)
{
    return element == QLatin1String("NAME") || element == QLatin1String("SERIALNR") ||
           element == QLatin1String("BTADR") || element == QLatin1String("PATIENT_ID");
}

/// True for what says that there is nobody, or that isn't anybody's.
bool isNobodys(const QString& value)
{
    return value.isEmpty() || value == QLatin1String("0") || value == ProductName;
}

} // namespace

void TrafficAnonymiser::learn(const QVector<TrafficEntry>& entries)
{
    const auto know = [this](const QString& value) {
        if (!isNobodys(value))
            m_words.know(value);
    };
    for (const TrafficEntry& entry : entries) {
        // As the name stands in a log, behind its "I".
        const bool isPersonal = isExchangeName(entry.name()) && !Anonymiser::isPlain(entry.name());
        if (isPersonal && stemOf(entry.name()).size() > ShortStem)
            m_words.knowName(stemOf(entry.name()));
        bool isUtf8 = false;
        const QString text = decoded(entry.bytes.value_or(QByteArray()), &isUtf8);
        if (entry.isCommand()) {
            QString fault;
            const ReaderCommand given = parseCommandFile(text.toUtf8(), &fault).value_or(ReaderCommand());
            for (const QString& value : {given.serialNumber, given.address, given.patientId})
                know(value);
        } else if (entry.isStatus()) {
            const QStringList lines = text.split(QLatin1Char('\n'));
            if (isIdOf(commandWordOf(lines)))
                know(lines.value(3).mid(ValueLabel).trimmed());
        } else if (entry.name() == ReaderNames::DeviceList) {
            eachPart(text, [&know](const QString& element, const QString& content) {
                bool isSound = false;
                if (isIdentity(element))
                    know(plainText(content, &isSound));
            });
        }
    }
}

TrafficEntry TrafficAnonymiser::anonymised(const TrafficEntry& entry)
{
    TrafficEntry result = entry;
    if (!entry.name().isEmpty())
        result.file = ReaderNames::Folder + QLatin1Char('/') + nameOf(entry.name());
    if (isExchangeName(entry.name()) && (entry.bytes || entry.filler)) {
        const QByteArray content = entry.content().value_or(QByteArray());
        const QByteArray hash = QCryptographicHash::hash(content, QCryptographicHash::Sha256);
        result.filler = TrafficFiller{content.size(), m_fillers.value(hash, m_fillers.size() + 1)};
        m_fillers.insert(hash, result.filler->number);
        result.bytes.reset();
    } else if (entry.bytes) {
        bool isUtf8 = false;
        const QString text = contentOf(entry, decoded(*entry.bytes, &isUtf8));
        result.bytes = isUtf8 ? text.toUtf8() : text.toLatin1();
    }
    return result;
}

/// What a file is made of, labels, words and tags, stays as it is, also if somebody's name is among it.
QString TrafficAnonymiser::marksOf(const QString& text)
{
    return Anonymiser::isPlain(text) ? text : m_words.scrub(text, Numbers::Hide);
}

QString TrafficAnonymiser::nameOf(const QString& name)
{
    if (isExchangeName(name))
        return exchangeName(name);
    if (Anonymiser::isPlain(name))
        return name;
    // A firmware log: what makes it one stays. No number does, as another one's replacement may be the same.
    const QString ending = QStringLiteral(".log");
    const int at = name.indexOf(ending, 1, Qt::CaseInsensitive);
    return name.left(1) + m_words.scrub(name.mid(1, at - 1), Numbers::Hide) + name.mid(at, ending.size()) +
           m_words.scrub(name.mid(at + ending.size()), Numbers::Hide);
}

QString TrafficAnonymiser::exchangeName(const QString& name)
{
    const QString stem = stemOf(name);
    return name.left(1) + m_words.hide(stem) + name.mid(1 + stem.size());
}

QString TrafficAnonymiser::contentOf(const TrafficEntry& entry, const QString& text)
{
    // Letters with zero bytes between them make no words that could be told apart.
    if (text.contains(QChar(0)))
        return m_words.hide(text);
    if (entry.isCommand())
        return command(text);
    if (entry.isStatus())
        return status(text);
    return entry.name() == ReaderNames::DeviceList ? deviceList(text) : firmwareLog(text);
}

QString TrafficAnonymiser::command(const QString& text)
{
    const QString mark = QStringLiteral("Command=");
    const int at = text.indexOf(mark);
    if (at < 0)
        return m_words.scrub(text, Numbers::Hide);
    const QString given = text.mid(at + mark.size());
    const QString word = given.section(QLatin1Char(' '), 0, 0);
    const QString rest = given.mid(word.size());
    static const QStringList Constants = {QStringLiteral("SEARCH 00100"), QStringLiteral("BTPAIRCONFIRM 0"),
                                          QStringLiteral("BTPAIRCONFIRM 1")};
    return marksOf(text.left(at)) + mark + marksOf(word) + (Constants.contains(given) ? rest : m_words.hide(rest));
}

QString TrafficAnonymiser::status(const QString& text)
{
    QStringList lines = text.split(QLatin1Char('\n'));
    const QString command = commandWordOf(lines);
    for (int i = 0; i < lines.size(); ++i) {
        QString& line = lines[i];
        const QString lineEnd = line.endsWith(QLatin1Char('\r')) ? QStringLiteral("\r") : QString();
        line.chop(lineEnd.size());
        const int label = i == 1 ? CommandLabel : ValueLabel;
        const QString value = line.mid(label);
        if (i == 0 || i > 4) {
            line = m_words.scrub(line, Numbers::Hide);
        } else if (i == 3) {
            const QString result = value.trimmed();
            line = marksOf(line.left(label)) + (isNobodys(result) ? value
                                                : isExchangeName(result)
                                                    ? QString(value).replace(result, exchangeName(result))
                                                : isIdOf(command) ? m_words.hide(value)
                                                                  : m_words.scrub(value));
        } else if (i == 4) {
            // The code stands between the last hyphen and one last character.
            const int code = line.lastIndexOf(QLatin1Char('-')) + 1;
            bool isNumber = false;
            line.midRef(code).chopped(std::min(1, line.size() - code)).toInt(&isNumber);
            isNumber = isNumber && !line.back().isLetterOrNumber(); // or it is one word with what stands before it
            // Behind other words than the reader's it may be the end of a serial number.
            const bool isPart = code > 1 && line.at(code - 2).isLetterOrNumber() &&
                                (!Anonymiser::isPlain(line.left(code)) || m_words.holdsKnown(line));
            const bool isShort = line.size() - code <= LongestCode + 1;
            const bool isCode = isNumber && (line.left(code) == CodeLabel || (isShort && !isPart));
            line = marksOf(line.left(code)) + (isCode ? line.mid(code) : m_words.scrub(line.mid(code), Numbers::Hide));
        } else {
            line = marksOf(line.left(label)) + marksOf(value);
        }
        line += lineEnd;
    }
    return lines.join(QLatin1Char('\n'));
}

QString TrafficAnonymiser::deviceList(const QString& text)
{
    QString result;
    eachPart(text, [&](const QString& element, const QString& part) {
        bool isSound = true;
        const QString plain = element.isEmpty() ? part : plainText(part, &isSound);
        if (isDeclaration(part))
            result += part;
        else if (element.isEmpty())
            result += part.startsWith(QLatin1String("<!")) ? m_words.scrub(part, Numbers::Hide) : marksOf(part);
        else if (!isSound) // where an XML reader stops it has to stop again
            result += m_words.hide(part);
        else if (isIdentity(element))
            result += isNobodys(plain) ? plain : m_words.hide(plain).toHtmlEscaped();
        else
            result += m_words.scrub(plain, Numbers::Hide).toHtmlEscaped();
    });
    return result;
}

QString TrafficAnonymiser::firmwareLog(const QString& text)
{
    static const QRegularExpression Version(QStringLiteral("(?<= )\\d{1,3}(\\.\\d{1,3}){1,3}(?=\\r?$)"));
    QStringList lines = text.split(QLatin1Char('\n'));
    for (int i = 0; i < lines.size(); ++i) {
        const int version = i == VersionLine ? lines.at(i).indexOf(Version) : -1;
        const int end = version < 0 ? lines.at(i).size() : version;
        lines[i] = m_words.scrub(lines.at(i).left(end)) + lines.at(i).mid(end);
    }
    return lines.join(QLatin1Char('\n'));
}

bool anonymiseRecording(const QString& from, const QString& to, QStringList* errors)
{
    const std::optional<QVector<TrafficEntry>> entries = loadTraffic(from, errors);
    if (!entries)
        return false;
    TrafficAnonymiser anonymiser;
    anonymiser.learn(*entries);
    QFile file(to);
    bool isWhole = file.open(QIODevice::WriteOnly | QIODevice::NewOnly);
    const bool isOurs = isWhole;
    for (auto entry = entries->cbegin(); isWhole && entry != entries->cend(); ++entry) {
        const QByteArray line = trafficLine(anonymiser.anonymised(*entry));
        isWhole = file.write(line) == line.size();
    }
    if (isWhole && file.flush())
        return true;
    errors->append(QStringLiteral("%1: %2").arg(to, file.errorString()));
    if (isOurs)
        file.remove();
    return false;
}
