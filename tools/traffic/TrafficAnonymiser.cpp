// SPDX-FileCopyrightText: 2026 The Merivo Connections developers
// SPDX-License-Identifier: MIT
#include "tools/traffic/TrafficAnonymiser.h"

#include "tools/traffic/ReaderCommand.h"

#include <QCryptographicHash>
#include <QFile>
#include <QRegularExpression>
#include <QXmlStreamReader>
#include <QXmlStreamWriter>

namespace {

using Numbers = Anonymiser::Numbers;

constexpr int CommandLabel = 4;
constexpr int ValueLabel = 10;
constexpr int VersionLine = 4;

/// Returns true for values that identify nobody, and for the default pump name, on which the plug-in depends.
bool isNobodys(const QString& value)
{
    return value.isEmpty() || value == "0" || value == "Cygnara";
}

} // namespace

void TrafficAnonymiser::learn(const QVector<TrafficEntry>& entries)
{
    m_isLearning = true;
    for (const TrafficEntry& entry : entries)
        anonymised(entry);
    m_isLearning = false;
}

TrafficEntry TrafficAnonymiser::anonymised(const TrafficEntry& entry)
{
    TrafficEntry result = entry;
    result.file = ReaderNames::Folder + '/' + nameOf(entry.name());
    if (!entry.bytes && !entry.filler)
        return result;
    const QByteArray content = entry.content().value_or(QByteArray());
    const std::optional<QString> replaced = entry.bytes ? contentOf(entry) : std::nullopt;
    result.bytes.reset();
    result.filler.reset();
    if (replaced) {
        result.bytes = replaced->toUtf8();
    } else {
        const QByteArray hash = QCryptographicHash::hash(content, QCryptographicHash::Sha256);
        result.filler = TrafficFiller{content.size(), m_fillers.value(hash, m_fillers.size() + 1)};
        m_fillers.insert(hash, result.filler->number);
    }
    return result;
}

QString TrafficAnonymiser::hide(const QString& value)
{
    if (isNobodys(value.trimmed()))
        return value;
    if (m_isLearning)
        m_words.know(value.trimmed());
    return m_words.hide(value);
}

/// Keeps the labels and keywords of a file, even if they are also names of persons.
QString TrafficAnonymiser::form(const QString& text)
{
    return Anonymiser::isPlain(text) ? text : m_words.scrub(text, Numbers::Hide);
}

QString TrafficAnonymiser::nameOf(const QString& name)
{
    if (isExchangeName(name))
        return exchangeName(name);
    if (Anonymiser::isPlain(name))
        return name;
    // A firmware log: keeps its fixed words.
    const QString ending = ".log";
    const int at = name.indexOf(ending, 1, Qt::CaseInsensitive);
    return name.left(1) + m_words.scrub(name.mid(1, at - 1), Numbers::Hide) + name.mid(at, ending.size()) +
           m_words.scrub(name.mid(at + ending.size()), Numbers::Hide);
}

QString TrafficAnonymiser::exchangeName(const QString& name)
{
    constexpr int EndingLength = 4;
    return name.left(1) + hide(name.mid(1).chopped(EndingLength)) + name.right(EndingLength);
}

std::optional<QString> TrafficAnonymiser::contentOf(const TrafficEntry& entry)
{
    if (isExchangeName(entry.name()))
        return std::nullopt;
    if (entry.name() == ReaderNames::DeviceList)
        return deviceList(*entry.bytes);
    const QString text = QString::fromUtf8(entry.bytes->constData(), entry.bytes->size());
    if (entry.isCommand())
        return command(text);
    if (text.contains(QChar(0)) || text.toUtf8() != *entry.bytes)
        return std::nullopt;
    return entry.isStatus() ? status(text) : firmwareLog(text);
}

QString TrafficAnonymiser::command(const QString& text)
{
    QString fault;
    const auto given = parseCommand(text, &fault);
    if (!given)
        return m_words.scrub(text, Numbers::Hide);
    for (const QString& value : {given->serialNumber, given->address, given->patientId})
        hide(value);
    const bool isConstant = given->word == "SEARCH" || given->word == "BTPAIRCONFIRM";
    const int at = text.indexOf(' ', text.indexOf('='));
    return isConstant ? text : text.left(at) + m_words.hide(text.mid(at));
}

QString TrafficAnonymiser::status(const QString& text)
{
    static const QRegularExpression errorCode("^(.*)-\\d{1,3}\\D?\\r?$");
    QStringList lines = text.split('\n');
    const QString command = lines.value(1).mid(CommandLabel).trimmed().toUpper();
    if (m_isLearning) // nothing else in it is personal
        return resultOf(command, lines.value(3).mid(ValueLabel));
    for (int i = 0; i < lines.size(); ++i) {
        QString& line = lines[i];
        const QString label = line.left(i == 1 ? CommandLabel : ValueLabel);
        const QString value = line.mid(label.size());
        const QRegularExpressionMatch code = errorCode.match(line);
        const bool isCode = i == 4 && code.hasMatch() && Anonymiser::isPlain(code.captured(1));
        if (i >= 1 && i <= 3 && Anonymiser::isPlain(label))
            line = label + (i < 3 ? form(value) : resultOf(command, value));
        else if (!isCode)
            line = m_words.scrub(line, Numbers::Hide);
    }
    return lines.join('\n');
}

QString TrafficAnonymiser::resultOf(const QString& command, const QString& text)
{
    const QString result = text.trimmed();
    if (isExchangeName(result))
        return QString(text).replace(result, exchangeName(result));
    return command == "BTISPAIRED" || command == "BTPAIR" ? hide(text) : m_words.scrub(text);
}

/// An incomplete list stays incomplete at the same place; a list that isn't XML is replaced entirely.
std::optional<QString> TrafficAnonymiser::deviceList(const QByteArray& bytes)
{
    const QStringList identities{"NAME", "SERIALNR", "BTADR", "PATIENT_ID"};
    QString result;
    QXmlStreamReader xml(bytes);
    QXmlStreamWriter writer(&result);
    QString element;
    while (!xml.atEnd()) {
        xml.readNext();
        const QString content = xml.text().toString();
        if (xml.isStartElement()) {
            element = xml.name().toString();
            writer.writeStartElement(form(element));
        } else if (xml.isCharacters()) {
            writer.writeCharacters(identities.contains(element) ? hide(content)
                                                                : m_words.scrub(content, Numbers::Hide));
        } else if (xml.isStartDocument()) {
            writer.writeStartDocument();
        } else if (xml.isEndElement()) {
            writer.writeEndElement();
            element.clear();
        }
    }
    return result.isEmpty() ? std::nullopt : std::make_optional(result);
}

QString TrafficAnonymiser::firmwareLog(const QString& text)
{
    static const QRegularExpression version("(?<= )\\d{1,3}(\\.\\d{1,3}){1,3}(?=\\r?$)");
    QStringList lines = text.split('\n');
    for (int i = 0; i < lines.size(); ++i) {
        const int at = i == VersionLine ? lines.at(i).indexOf(version) : -1;
        const int end = at < 0 ? lines.at(i).size() : at;
        lines[i] = m_words.scrub(lines.at(i).left(end)) + lines.at(i).mid(end);
    }
    return lines.join('\n');
}

QByteArray TrafficAnonymiser::recording(const QVector<TrafficEntry>& entries)
{
    QByteArray lines;
    for (const TrafficEntry& entry : entries)
        lines += trafficLine(anonymised(entry));
    return lines;
}

bool anonymiseRecording(const QString& from, const QString& to, QStringList* errors)
{
    const std::optional<QVector<TrafficEntry>> entries = loadTraffic(from, errors);
    if (!entries)
        return false;
    TrafficAnonymiser anonymiser;
    anonymiser.learn(*entries);
    const QByteArray lines = anonymiser.recording(*entries);
    QFile file(to);
    const bool isOurs = file.open(QIODevice::WriteOnly | QIODevice::NewOnly);
    if (isOurs && file.write(lines) == lines.size() && file.flush())
        return true;
    errors->append(to + ": " + file.errorString());
    if (isOurs)
        file.remove();
    return false;
}
