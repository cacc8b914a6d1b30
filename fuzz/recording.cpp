// SPDX-FileCopyrightText: 2026 The Merivo Connections developers
// SPDX-License-Identifier: MIT

// The bytes of a recording of a reader's traffic. A valid one is replayed on a drive.

#include "fuzz/Target.h"
#include "tools/reader/ReaderDrive.h"
#include "tools/reader/TrafficReplay.h"
#include "tools/traffic/Traffic.h"

#include <QCoreApplication>
#include <QHash>

#include <algorithm>

namespace {

const QDir::Filters Everything = QDir::AllEntries | QDir::Hidden | QDir::System | QDir::NoDotAndDotDot;

const qint64 MaxFiller = 65536;

std::optional<QVector<TrafficEntry>> load(const QByteArray& bytes, QStringList* errors)
{
    static const Drive folder;
    return loadTraffic(folder.write("recording", bytes), errors);
}

bool areEqual(const TrafficEntry& one, const TrafficEntry& other)
{
    return one.ms == other.ms && one.file == other.file && one.content() == other.content();
}

/// Writing the entries again yields the same recording.
void checkAgain(const QVector<TrafficEntry>& entries)
{
    QByteArray lines;
    for (const TrafficEntry& entry : entries)
        lines += trafficLine(entry);
    require(lines.count('\n') == entries.size(), "an entry is a line");
    QStringList errors;
    const auto again = load(lines, &errors);
    require(again && std::equal(again->cbegin(), again->cend(), entries.cbegin(), entries.cend(), areEqual),
            "written again, a recording is the same");
}

/// The replay restores the drive as it was before the first command.
void checkPlayed(const QVector<TrafficEntry>& entries)
{
    const QTemporaryDir folder;
    ReaderDrive drive(folder.path());
    QString error;
    require(drive.open(&error), "a drive can be opened");
    bool hasFailed = false;
    TrafficReplay replay(drive, entries, true);
    QObject::connect(&replay, &TrafficReplay::failed, [&hasFailed](const QString&) { hasFailed = true; });
    replay.start();

    QHash<QString, QByteArray> expected;
    for (const TrafficEntry& entry : entries) {
        if (entry.isCommand())
            break;
        const std::optional<QByteArray> content = entry.content();
        if (entry.isStatus()) // the status appears later
            continue;
        if (content)
            expected.insert(entry.name(), *content);
        else
            expected.remove(entry.name());
    }
    const QStringList names = QDir(drive.filePath()).entryList(Everything);
    for (const QString& name : names)
        require(hasFailed || name == ReaderNames::Status || expected.contains(name), "the drive has no other files");
    for (auto it = expected.cbegin(); it != expected.cend() && !hasFailed; ++it) {
        QFile file(drive.filePath(it.key()));
        require(file.open(QIODevice::ReadOnly) && file.readAll() == it.value(), "the drive has the recorded content");
    }
    const QStringList roots = QDir(folder.path()).entryList(Everything);
    require(roots == QStringList({".merivo-reader.lock", "MISC"}), "nothing is written outside MISC");
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    static int argc = 1;
    static char name[] = "recording";
    static char* argv[] = {name, nullptr};
    static QCoreApplication application(argc, argv);

    const QByteArray bytes = inputOf(data, size);
    QStringList errors;
    const auto entries = load(bytes, &errors);
    require(entries.has_value() == errors.isEmpty(), "a recording is valid or has errors");
    for (const QString& error : qAsConst(errors))
        require(error.contains(": line "), "an error names its line");
    if (!entries)
        return 0;

    require(entries->size() <= bytes.count('\n') + 1, "at most one entry for each line");
    for (int i = 1; i < entries->size(); ++i)
        require(entries->at(i - 1).ms <= entries->at(i).ms, "times don't decrease");
    // A few bytes can request filler that takes long to write.
    const bool isLarge = std::any_of(entries->cbegin(), entries->cend(), [](const TrafficEntry& entry) {
        return entry.filler && entry.filler->size > MaxFiller;
    });
    if (isLarge)
        return 0;
    checkAgain(*entries);
    checkPlayed(*entries);
    return 0;
}
