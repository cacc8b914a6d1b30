// SPDX-FileCopyrightText: 2026 The Merivo Connections developers
// SPDX-License-Identifier: MIT
#include "tools/traffic/Traffic.h"

#include "tools/support/JsonFields.h"

#include <QFile>
#include <QJsonDocument>

#include <limits>

namespace {

/// The maximum that the host imports.
constexpr int LargestFiller = 256 * 1024 * 1024;
const QString InFolder = ReaderNames::Folder + '/';

void readEntry(JsonFields& fields, qint64 earliest, TrafficEntry* target)
{
    TrafficEntry& entry = *target;
    fields.require("ms");
    fields.require("file");
    int ms = 0;
    fields.number("ms", 0, std::numeric_limits<int>::max(), &ms);
    entry.ms = ms;
    if (entry.ms < earliest)
        fields.fail("ms", "is less than in the line before");
    fields.text("file", &entry.file);
    // A replay writes these files to the drive, so only the reader's own files are valid.
    if (!entry.file.isNull() && !isTrafficFile(entry.name()))
        fields.fail("file", QString("\"%1\" isn't a file of the reader").arg(entry.file));

    const QJsonValue text = fields.take("text");
    QString encoded;
    fields.text("base64", &encoded);
    if (text.isString())
        entry.bytes = text.toString().toUtf8();
    else if (!encoded.isNull())
        entry.bytes = QByteArray::fromBase64(encoded.toLatin1());
    TrafficFiller filler;
    filler.size = -1;
    fields.number("filler", 0, LargestFiller, &filler.size);
    fields.number("number", 0, std::numeric_limits<int>::max(), &filler.number);
    if (filler.size >= 0)
        entry.filler = filler;
    bool isGone = false;
    fields.flag("gone", &isGone);
    if (int(isGone) + int(entry.bytes.has_value()) + int(entry.filler.has_value()) != 1)
        fields.fail("text", "exactly one of text, base64, filler and gone expected");
}

} // namespace

QByteArray TrafficFiller::bytes() const
{
    const QByteArray line = QByteArrayLiteral("filler ") + QByteArray::number(number) + '\n';
    return line.repeated(size / line.size() + 1).left(size);
}

QString TrafficEntry::name() const
{
    return file.startsWith(InFolder) ? file.mid(InFolder.size()) : QString();
}

bool isExchangeName(const QString& name)
{
    const QString ending = ".xml";
    return name.size() > ending.size() && name.startsWith('I', Qt::CaseInsensitive) &&
           name.endsWith(ending, Qt::CaseInsensitive);
}

bool isTrafficFile(const QString& name)
{
    if (name.contains('/') || name.contains('\\'))
        return false;
    return name == ReaderNames::Command || name == ReaderNames::Status || name == ReaderNames::DeviceList ||
           (name.startsWith('V') && name.contains(".log", Qt::CaseInsensitive)) || isExchangeName(name);
}

QByteArray trafficLine(const TrafficEntry& entry)
{
    QJsonObject object{{"ms", entry.ms}, {"file", entry.file}};
    if (entry.filler) {
        object.insert("filler", entry.filler->size);
        object.insert("number", entry.filler->number);
    } else if (!entry.bytes) {
        object.insert("gone", true);
    } else if (const QString text = QString::fromUtf8(*entry.bytes); text.toUtf8() == *entry.bytes) {
        object.insert("text", text);
    } else {
        object.insert("base64", QString::fromLatin1(entry.bytes->toBase64()));
    }
    return QJsonDocument(object).toJson(QJsonDocument::Compact) + '\n';
}

std::optional<QVector<TrafficEntry>> loadTraffic(const QString& fileName, QStringList* errors)
{
    QFile file(fileName);
    if (!file.open(QIODevice::ReadOnly)) {
        errors->append(QString("%1: %2").arg(fileName, file.errorString()));
        return std::nullopt;
    }
    QVector<TrafficEntry> entries;
    for (int line = 1; !file.atEnd(); ++line) {
        QStringList faults;
        const QByteArray text = file.readLine();
        if (!text.endsWith('\n') && !text.endsWith('}')) // incomplete, as from a killed recorder
            break;
        TrafficEntry entry;
        JsonFields::parse(text, &faults, [&](JsonFields& fields) {
            readEntry(fields, entries.isEmpty() ? 0 : entries.constLast().ms, &entry);
        });
        entries.append(entry);
        for (const QString& fault : qAsConst(faults))
            errors->append(QString("%1: line %2: %3").arg(fileName).arg(line).arg(fault));
    }
    if (!errors->isEmpty())
        return std::nullopt;
    return entries;
}
