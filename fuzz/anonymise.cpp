// SPDX-FileCopyrightText: 2026 The Merivo Connections developers
// SPDX-License-Identifier: MIT

// A recording that loses its personal data: the file's bytes.

#include "fuzz/Drive.h"
#include "workbench/reader/ReaderCommand.h"
#include "workbench/reader/Traffic.h"
#include "workbench/reader/TrafficAnonymiser.h"

#include <QHash>
#include <QRegularExpression>

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

/// The values of the commands, which are a patient's and pumps' own.
QStringList secretsOf(const QVector<TrafficEntry>& entries)
{
    QStringList secrets;
    for (const TrafficEntry& entry : entries) {
        QString fault;
        const auto command =
            entry.isCommand() && entry.bytes ? parseCommandFile(*entry.bytes, &fault) : std::optional<ReaderCommand>();
        if (command)
            secrets += {command->serialNumber, command->patientId};
    }
    return secrets;
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
    const QStringList secrets = secretsOf(*entries);
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
        const QString shown = QString::fromUtf8(trafficLine(other));
        for (const QString& secret : secrets) {
            static const QRegularExpression plain(QStringLiteral("^[A-Za-z0-9]{6,}$"));
            if (plain.match(secret).hasMatch() && !Anonymiser::isPlain(secret))
                require(!shown.contains(secret), "no pump and no patient shows");
        }
    }
    return 0;
}
