// SPDX-FileCopyrightText: 2026 The Merivo Connections developers
// SPDX-License-Identifier: MIT

// The reader's list of pumps: its bytes.

#include "fuzz/Drive.h"
#include "reader/DeviceList.h"

#include <QRegularExpression>

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

/// The field of a record that stands in an element of this path, if it is one.
QString* fieldAt(const QStringList& path, DeviceInfo& device)
{
    const QString place = path.mid(2).join(QLatin1Char('/'));
    if (path.mid(0, 2) != QStringList({QStringLiteral("DEVICELIST"), QStringLiteral("DEVICE")}))
        return nullptr;
    if (place == QLatin1String("NAME"))
        return &device.deviceName;
    if (place == QLatin1String("SERIALNR"))
        return &device.serialNumber;
    if (place == QLatin1String("INTERFACE/BTADR"))
        return &device.btAddress;
    return place == QLatin1String("INTERFACE/PATIENT_ID") ? &device.patientId : nullptr;
}

/// A second reading, of tags without attributes and of printable texts: the records that end ahead of anything else.
struct PlainReading
{
    QList<DeviceInfo> devices;
    bool isWhole = false; ///< there is nothing else in the list
};

PlainReading plainReading(const QByteArray& bytes)
{
    static const QRegularExpression head(QStringLiteral("^<\\?xml version=\"1\\.0\"( encoding=\"UTF-8\")?\\?>"));
    static const QRegularExpression token(
        QStringLiteral("\\G(?:<(?<begun>[A-Z_]+)(?<empty>/?)>|</(?<ended>[A-Z_]+)>|[ -%'-;=?-~\n]+)"));
    const QString text = QString::fromUtf8(bytes);
    PlainReading reading;
    DeviceInfo device;
    QStringList path;
    int place = head.match(text).capturedEnd();
    for (place = std::max(place, 0); place < text.size() && !reading.isWhole;) {
        const QRegularExpressionMatch match = token.match(text, place);
        if (!match.hasMatch())
            return reading;
        place = match.capturedEnd();
        const QString begun = match.captured(QStringLiteral("begun"));
        QString ended = match.captured(QStringLiteral("ended"));
        if (!begun.isEmpty()) {
            if ((path.isEmpty() && begun != QLatin1String("DEVICELIST")) || fieldAt(path, device))
                return reading;
            path.append(begun);
            if (path.size() == 2)
                device = {};
            if (QString* field = fieldAt(path, device))
                field->clear();
            if (!match.captured(QStringLiteral("empty")).isEmpty())
                ended = begun;
        } else if (ended.isEmpty()) {
            if (path.isEmpty() && !match.captured().trimmed().isEmpty())
                return reading;
            if (QString* field = fieldAt(path, device))
                field->append(match.captured());
        }
        if (ended.isEmpty())
            continue;
        if (path.isEmpty() || path.last() != ended)
            return reading;
        if (path.size() == 2 && ended == QLatin1String("DEVICE")) {
            if (device.deviceName == QLatin1String("Cygnara"))
                device.deviceName = QStringLiteral("Sanvio Merivo");
            if (device.patientId == QLatin1String("0"))
                device.patientId.clear();
            device.paired = !device.patientId.isEmpty();
            reading.devices.append(device);
        }
        path.removeLast();
        reading.isWhole = path.isEmpty();
    }
    return reading;
}

/// Whatever stands behind them, the records that a plain list begins with are there.
void checkPlain(const QList<DeviceInfo>& devices, const QByteArray& bytes)
{
    // Bytes that are no text can cost the records just ahead of them, and many name spaces end a list.
    if (QString::fromUtf8(bytes).toUtf8() != bytes || bytes.count("xmlns") > 256)
        return;
    const PlainReading plain = plainReading(bytes);
    require(devices.size() >= plain.devices.size() && (!plain.isWhole || devices.size() == plain.devices.size()) &&
                std::equal(plain.devices.cbegin(), plain.devices.cend(), devices.cbegin(), areEqual),
            "a second reading of what is plain gives the same");
}

void checkDevice(const DeviceInfo& device, const QByteArray& bytes)
{
    // Without an id only if that is damaged.
    require(device.paired || device.patientId.isEmpty(), "a pump with a patient is paired");
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
    checkPlain(devices, bytes);

    // Wherever a list breaks off, what stood ahead of the last element that it still has is as before.
    const auto place = static_cast<int>(qHash(bytes) % static_cast<uint>(bytes.size() + 1));
    drive.write(name, bytes.left(place));
    const QList<DeviceInfo> fewer = readDeviceList(drive.misc(), name);
    for (int i = 0; i < std::min(devices.size(), fewer.size()) - 1; ++i)
        require(areEqual(devices.at(i), fewer.at(i)), "a break changes nothing ahead of it");
    checkPlain(fewer, bytes.left(place));
    for (const DeviceInfo& device : fewer)
        checkDevice(device, bytes.left(place));
    return 0;
}
