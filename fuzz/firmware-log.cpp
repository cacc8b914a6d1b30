// SPDX-FileCopyrightText: 2026 The Merivo Connections developers
// SPDX-License-Identifier: MIT

// The reader's log that has its version: its bytes.

#include "fuzz/Drive.h"
#include "plugin/MerivoConnectionsComponent.h"

#include <QTextStream>

#include <tuple>

namespace {

/// Whether the last word of the fifth line is 3.2.23 or above, read in another way than the plug-in does.
bool isNewEnough(const QByteArray& bytes)
{
    QTextStream stream(bytes);
    QString line = stream.readAll().section(QLatin1Char('\n'), 4, 4);
    if (line.endsWith(QLatin1Char('\r')))
        line.chop(1);
    const QString word = line.mid(line.lastIndexOf(QLatin1Char(' ')) + 1);
    const auto part = [&word](int index) {
        return word.section(QLatin1Char('.'), index, index).toInt();
    };
    return std::make_tuple(part(0), part(1), part(2)) >= std::make_tuple(3, 2, 23);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    silenceLog();
    static const Drive drive;
    const QByteArray bytes(reinterpret_cast<const char*>(data), static_cast<int>(size));
    const QString name = QStringLiteral("VERSION.log");
    drive.write(name, bytes);
    const bool passes = MerivoConnectionsComponent::checkFirmware(drive.path());
    require(passes == isNewEnough(bytes), "a version passes from 3.2.23 on");

    // One old log among several is enough, wherever the folder lists it.
    const QString second = drive.write(QStringLiteral("V2.LOG"), "\n\n\n\nFirmware version 3.2.22\n");
    require(!MerivoConnectionsComponent::checkFirmware(drive.path()), "an old log counts");
    drive.write(QStringLiteral("V2.LOG"), "\n\n\n\nFirmware version 3.2.23\n");
    require(MerivoConnectionsComponent::checkFirmware(drive.path()) == passes, "a new log changes nothing");
    require(QFile::remove(second), "a file can be removed");
    return 0;
}
