// SPDX-FileCopyrightText: 2026 The Merivo Connections developers
// SPDX-License-Identifier: MIT

// The reader's list of pumps: its bytes.

#include "fuzz/Drive.h"
#include "reader/DeviceList.h"

#include <algorithm>

namespace {

bool areEqual(const DeviceInfo& one, const DeviceInfo& other)
{
    return one.btAddress == other.btAddress && one.serialNumber == other.serialNumber &&
           one.deviceName == other.deviceName && one.patientId == other.patientId && one.paired == other.paired;
}

/// Whether a text of an element stands in the bytes as it is: nothing in them is written in another way.
bool isPlain(const QByteArray& bytes)
{
    const QByteArray others[] = {"&", "<!", "encoding", "\r", QByteArray(1, '\0'), "\xfe\xff", "\xff\xfe"};
    return std::none_of(std::begin(others), std::end(others),
                        [&bytes](const QByteArray& other) { return bytes.contains(other); }) &&
           bytes.lastIndexOf("<?") <= 0;
}

void checkDevice(const DeviceInfo& device, const QByteArray& bytes)
{
    require(device.paired == !device.patientId.isEmpty(), "a pump with a patient is paired");
    require(device.patientId != QLatin1String("0"), "0 is no patient");
    require(device.deviceName != QLatin1String("Cygnara"), "the pump has its name for users");
    if (device.paired && isPlain(bytes))
        require(bytes.contains('>' + device.patientId.toUtf8()), "a patient's id begins as it is written");
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    silenceLog();
    static const Drive drive;
    const QString name = QStringLiteral("DEVLIST.XML");
    const QByteArray bytes(reinterpret_cast<const char*>(data), static_cast<int>(size));
    drive.write(name, bytes);
    const QList<DeviceInfo> devices = readDeviceList(drive.misc(), name);
    if (isPlain(bytes))
        require(devices.size() <= std::max(bytes.count("DEVICE") - 1, 0), "a record for a DEVICE at most");
    for (const DeviceInfo& device : devices)
        checkDevice(device, bytes);

    // Wherever a list breaks off, what stood ahead of the last element that it still has is as before.
    const auto place = static_cast<int>(qHash(bytes) % static_cast<uint>(bytes.size() + 1));
    drive.write(name, bytes.left(place));
    const QList<DeviceInfo> fewer = readDeviceList(drive.misc(), name);
    for (int i = 0; i < std::min(devices.size(), fewer.size()) - 1; ++i)
        require(areEqual(devices.at(i), fewer.at(i)), "a break changes nothing ahead of it");
    for (const DeviceInfo& device : fewer)
        checkDevice(device, bytes.left(place));
    return 0;
}
