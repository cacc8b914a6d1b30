// SPDX-FileCopyrightText: 2026 The Merivo Connections developers
// SPDX-License-Identifier: MIT

// A recording that loses its personal data: the file's bytes.

#include "fuzz/Drive.h"
#include "workbench/reader/ReaderDrive.h"
#include "workbench/traffic/ReaderCommand.h"
#include "workbench/traffic/Traffic.h"
#include "workbench/traffic/TrafficAnonymiser.h"

#include <QHash>
#include <QRegularExpression>

#include <algorithm>
#include <iterator>

namespace {

/// Whether two contents are alike is seen in what they become.
class Pairs final
{
public:
    void add(const QString& one, const QString& other)
    {
        require(m_there.value(one, other) == other, "the same becomes the same");
        require(m_back.value(other, one) == one, "what differs stays different");
        m_there.insert(one, other);
        m_back.insert(other, one);
    }

private:
    QHash<QString, QString> m_there;
    QHash<QString, QString> m_back;
};

/// The values of the commands and of the device lists, which are a patient's and pumps' own, as far as nothing else can
/// look like them: they have a letter, a digit and four of both in a row, and neither blanks nor other marks. With them
/// their longer numbers, which tell a pump too.
QStringList secretsOf(const QVector<TrafficEntry>& entries)
{
    static const QRegularExpression value(QStringLiteral("<(?:NAME|SERIALNR|BTADR|PATIENT_ID)>([^<>&]*)</"));
    static const QRegularExpression distinct(
        QStringLiteral("^(?=.*[A-Za-z])(?=.*[0-9])(?=.*[A-Za-z0-9]{4})[A-Za-z0-9][A-Za-z0-9-]{4,}[A-Za-z0-9]\\z"));
    static const QRegularExpression declaration(QStringLiteral("<\\?[^>]*>"));
    static const QRegularExpression number(QStringLiteral("[0-9]{6,}"));
    QStringList values;
    QString declarations; // which stay
    for (const TrafficEntry& entry : entries) {
        if (!entry.bytes || entry.bytes->contains('\0'))
            continue;
        QString fault;
        const auto command =
            entry.isCommand() ? parseCommandFile(*entry.bytes, &fault) : std::optional<ReaderCommand>();
        if (command)
            values += {command->serialNumber, command->address, command->patientId};
        if (entry.name() != ReaderNames::DeviceList)
            continue;
        const QString list = QString::fromLatin1(*entry.bytes);
        for (auto found = value.globalMatch(list); found.hasNext();)
            values += found.next().captured(1);
        for (auto found = declaration.globalMatch(list); found.hasNext();)
            declarations += found.next().captured();
    }
    QStringList secrets;
    std::copy_if(values.cbegin(), values.cend(), std::back_inserter(secrets), [&declarations](const QString& text) {
        return distinct.match(text).hasMatch() && !Anonymiser::isPlain(text) && !declarations.contains(text);
    });
    for (const QString& secret : QStringList(secrets))
        for (auto found = number.globalMatch(secret); found.hasNext();)
            secrets += found.next().captured();
    return secrets;
}

/// Whether one of these values stands in what the recording becomes.
bool isShown(const QStringList& secrets, const QVector<TrafficEntry>& entries)
{
    static const QRegularExpression errorCode(QStringLiteral("Error code -[\\s+]*[0-9]+"));
    TrafficAnonymiser anonymiser;
    anonymiser.learn(entries);
    for (const TrafficEntry& entry : entries) {
        const TrafficEntry other = anonymiser.anonymised(entry);
        const QByteArray content = other.bytes.value_or(QByteArray());
        QString shown =
            other.file + QLatin1Char('\n') + QString::fromLatin1(content.constData(), content.size()); // zeros too
        shown.remove(errorCode); // stays, whatever it is
        for (const QString& secret : secrets)
            if (shown.contains(secret, Qt::CaseInsensitive))
                return true;
    }
    return false;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    silenceLog();
    static const Drive folder;
    const QByteArray bytes(reinterpret_cast<const char*>(data), static_cast<int>(size));
    QStringList errors;
    const auto entries = loadTraffic(folder.write(QStringLiteral("recording"), bytes), &errors);
    if (!entries)
        return 0;

    TrafficAnonymiser anonymiser;
    anonymiser.learn(*entries);
    Pairs files;
    for (const TrafficEntry& entry : *entries) {
        const TrafficEntry other = anonymiser.anonymised(entry);
        require(other.ms == entry.ms, "the time stays");
        require(other.isCommand() == entry.isCommand() && other.isStatus() == entry.isStatus() &&
                    other.isTrigger() == entry.isTrigger(),
                "a file stays what it is");
        require(other.isTrigger() || isTrafficFile(other.name()), "a file stays the reader's");
        require((other.bytes || other.filler) == (entry.bytes || entry.filler), "a file is there or gone");
        files.add(entry.file, other.file);
    }
    // By chance a replacement holds a short value, but not time after time.
    const QStringList secrets = secretsOf(*entries);
    int times = 0;
    while (times < 3 && isShown(secrets, *entries))
        ++times;
    require(times < 3, "no pump and no patient shows");
    return 0;
}
