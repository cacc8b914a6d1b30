// SPDX-FileCopyrightText: 2026 The Merivo Connections developers
// SPDX-License-Identifier: MIT

// The bytes of the reader's firmware log.

#include "fuzz/Target.h"
#include "plugin/MerivoConnectionsComponent.h"

#include <QTextStream>

#include <tuple>

namespace {

/// Returns true if the last word of the fifth line is 3.2.23 or above, by a second parser.
bool isNewEnough(const QByteArray& bytes)
{
    QTextStream stream(bytes);
    QString line = stream.readAll().section('\n', 4, 4);
    if (line.endsWith('\r'))
        line.chop(1);
    const QString word = line.mid(line.lastIndexOf(' ') + 1);
    const auto part = [&word](int index) {
        return word.section('.', index, index).toInt();
    };
    return std::make_tuple(part(0), part(1), part(2)) >= std::make_tuple(3, 2, 23);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    static const Drive drive;
    const QByteArray bytes = inputOf(data, size);
    const QString name = "VERSION.log";
    drive.write(name, bytes);
    const bool passes = MerivoConnectionsComponent::checkFirmware(drive.path());
    require(passes == isNewEnough(bytes), "a version of at least 3.2.23 passes");

    // One old log among several is enough.
    const QString second = drive.write("V2.LOG", "\n\n\n\nFirmware version 3.2.22\n");
    require(!MerivoConnectionsComponent::checkFirmware(drive.path()), "an old log counts");
    drive.write("V2.LOG", "\n\n\n\nFirmware version 3.2.23\n");
    require(MerivoConnectionsComponent::checkFirmware(drive.path()) == passes, "a new log changes nothing");
    require(QFile::remove(second), "a file can be removed");
    return 0;
}
