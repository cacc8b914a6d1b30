// SPDX-FileCopyrightText: 2026 The Merivo Connections developers
// SPDX-License-Identifier: MIT
#include "tools/host/HostReport.h"

#include "tools/host/HostDatabase.h"
#include "tools/host/HostDates.h"
#include "tools/host/TrafficKeeper.h"
#include "tools/traffic/TrafficAnonymiser.h"

#include <KZip>

#include <QDate>
#include <QDateTime>
#include <QDir>
#include <QFileInfo>
#include <QLocale>
#include <QSysInfo>

#include <optional>

namespace {

using Numbers = Anonymiser::Numbers;

/// The maximum taken from one log file, above the size of the rotated ones.
constexpr qint64 MaxLogBytes = qint64(8) * 1024 * 1024;
constexpr int LogFields = 5;

/// Returns the last lines of a file, or nothing if it can't be read.
std::optional<QByteArray> endOf(const QString& path)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return std::nullopt;
    if (file.size() > MaxLogBytes && file.seek(file.size() - MaxLogBytes))
        file.readLine();
    const QByteArray bytes = file.readAll();
    return file.error() == QFile::NoError ? std::make_optional(bytes) : std::nullopt;
}

/// Replaces the words of a log line except its time and the vocabulary.
QByteArray anonymisedLog(const QByteArray& log, Anonymiser& words, Numbers numbers)
{
    QStringList lines = QString::fromUtf8(log.constData(), log.size()).split('\n');
    for (QString& line : lines) {
        const QString time = line.section('\t', 0, 0);
        // Formatted again for comparison, as other text such as a birthday can also be parsed as a date.
        const bool isRecord =
            line.count('\t') == LogFields - 1 &&
            QDateTime::fromString(time, Qt::ISODateWithMs).toString("yyyy-MM-ddTHH:mm:ss.zzz") == time;
        line = isRecord ? time + words.scrub(line.mid(time.size()), numbers) : words.scrub(line, Numbers::Hide);
    }
    return lines.join('\n').toUtf8();
}

} // namespace

QStringList personalData(HostDatabase& database)
{
    // The GUID is part of the key of the file MACs.
    QStringList values{QSysInfo::machineHostName(), QDir::home().dirName(), database.guid()};
    if (database.path().isEmpty())
        return values;
    const QVector<PatientRecord> patients = database.patients();
    for (const PatientRecord& patient : patients) {
        values += patient.ids + QStringList(patient.puid);
        const QDate birthday = QDate::fromString(patient.ids.value(2), Qt::ISODate);
        if (birthday.isValid())
            values.append(shownDate(birthday));
    }
    return values;
}

QVector<HostReport::Member> HostReport::members(bool withPersonalData)
{
    TrafficAnonymiser anonymiser;
    Anonymiser* words = withPersonalData ? nullptr : &anonymiser.words();
    m_missing.clear();

    // Read first, as the host continues to write and may rotate a file.
    QVector<QPair<QString, std::optional<QByteArray>>> logs;
    for (const QString& path : m_sources.logs)
        logs.append({QFileInfo(path).fileName(), endOf(path)});

    // The anonymiser must know all personal values before it replaces the first text.
    QMap<QString, QVector<TrafficEntry>> recordings;
    const QDir traffic(m_sources.trafficFolder);
    const QStringList names =
        m_sources.trafficFolder.isEmpty() ? QStringList() : TrafficKeeper::recordingsIn(m_sources.trafficFolder);
    for (const QString& value : m_sources.personal)
        anonymiser.words().know(value);
    for (const QString& name : names) {
        QStringList errors;
        const auto entries = words ? loadTraffic(traffic.filePath(name), &errors) : std::nullopt;
        if (entries)
            anonymiser.learn(recordings[name] = *entries);
    }

    QVector<Member> result;
    const Numbers numbers = m_sources.unknown.isEmpty() ? Numbers::KeepShort : Numbers::Hide;
    if (words && numbers == Numbers::Hide)
        m_missing.append(QString("all numbers of log and settings, as those of patients are unknown (%1)")
                             .arg(words->scrub(m_sources.unknown, numbers)));
    for (const auto& [name, bytes] : qAsConst(logs)) {
        if (!bytes) {
            m_missing.append((words ? words->scrub(name, numbers) : name) + " (can't be read)");
            continue;
        }
        // The user may have chosen the file's name.
        const QString number = m_sources.logs.size() > 1 ? QString("-%1").arg(result.size() + 1) : QString();
        result.append({QString("log/host%1.log").arg(number), words ? anonymisedLog(*bytes, *words, numbers) : *bytes});
    }
    for (const QString& name : names) {
        std::optional<QByteArray> bytes;
        if (!words)
            bytes = endOf(traffic.filePath(name));
        else if (recordings.contains(name))
            bytes = anonymiser.recording(recordings.take(name));
        if (bytes)
            result.append({"traffic/" + name, *bytes});
        else
            m_missing.append(name + " (can't be read, or is damaged)");
    }
    QString versions, settings;
    for (const auto& [name, version] : m_sources.versions)
        versions += name + ": " + version + '\n';
    for (const auto& [name, value] : m_sources.settings)
        settings += name + ": " + (words ? words->scrub(value, numbers) : value) + '\n';
    result.append({"versions.txt", versions.toUtf8()});
    result.append({"settings.txt", settings.toUtf8()});
    return result;
}

QByteArray HostReport::contents(const QVector<Member>& members, bool withPersonalData) const
{
    QString text = QString("Report of merivo-host, %1\n\n%2\n\n")
                       .arg(QDateTime::currentDateTime().toString(Qt::ISODate),
                            withPersonalData ? "It CONTAINS PERSONAL DATA: names, ids, serial numbers, paths."
                                             : "Personal data is replaced, each word always by the same other word.");
    for (const auto& [name, bytes] : members)
        text += QString("%1  %2 bytes\n").arg(name).arg(bytes.size());
    text += QString("\nNot in it: the patient database, its GUID, keys, the bytes of large exchange files%1.\n")
                .arg(withPersonalData ? QString() : " or of any other");
    for (const QString& missing : m_missing)
        text += QString("Missing: %1\n").arg(missing);
    return text.toUtf8();
}

bool HostReport::save(const QString& path, bool withPersonalData, QString* sentence)
{
    const auto refuse = [&](const QString& what) {
        *sentence = QString("The report '%1' wasn't written: %2.").arg(QDir::toNativeSeparators(path), what);
        return false;
    };
    if (QFileInfo::exists(path))
        return refuse("there is a file or folder of that name");
    if (!QFileInfo(QFileInfo(path).path()).isDir())
        return refuse("there is no such folder");
    // QSaveFile writes a temporary file and renames it at the end.
    KZip archive(path);
    if (!archive.open(QIODevice::WriteOnly))
        return refuse(archive.errorString());
    const QVector<Member> parts = members(withPersonalData);
    bool isWhole = archive.writeFile("contents.txt", contents(parts, withPersonalData));
    for (auto part = parts.cbegin(); isWhole && part != parts.cend(); ++part)
        isWhole = archive.writeFile(part->first, part->second);
    const QString error = archive.errorString();
    const bool isMoved = archive.close();
    if (!isWhole || !isMoved) {
        QFile::remove(path);
        return refuse(error.isEmpty() ? archive.errorString() : error);
    }
    *sentence = QString("The report '%1' was written: %2 files, %3; %4.")
                    .arg(QDir::toNativeSeparators(path), QString::number(parts.size() + 1),
                         QLocale::c().formattedDataSize(QFileInfo(path).size()),
                         withPersonalData ? "it holds personal data" : "personal data is replaced");
    return true;
}
