// SPDX-FileCopyrightText: 2026 The Merivo Connections developers
// SPDX-License-Identifier: MIT

// The bytes of the reader's device list.

#include "fuzz/Target.h"
#include "readerlink/DeviceList.h"

#include <QRegularExpression>

#include <algorithm>

namespace {

bool areEqual(const DeviceInfo& one, const DeviceInfo& other)
{
    return one.btAddress == other.btAddress && one.serialNumber == other.serialNumber &&
           one.deviceName == other.deviceName && one.patientId == other.patientId && one.paired == other.paired;
}

/// Returns true if the bytes have no encoding, reference or declaration, so that they contain each text unchanged.
bool isPlain(const QByteArray& bytes)
{
    const QByteArray others[] = {"&", "<!", "encoding", "\r", QByteArray(1, '\0'), "\xfe\xff", "\xff\xfe"};
    return std::none_of(std::begin(others), std::end(others),
                        [&bytes](const QByteArray& other) { return bytes.contains(other); }) &&
           bytes.lastIndexOf("<?") <= 0;
}

/// Returns the field for an element of this path, or null.
QString* fieldAt(const QStringList& path, DeviceInfo& device)
{
    const QString place = path.mid(2).join('/');
    if (path.mid(0, 2) != QStringList({"DEVICELIST", "DEVICE"}))
        return nullptr;
    if (place == "NAME")
        return &device.deviceName;
    if (place == "SERIALNR")
        return &device.serialNumber;
    if (place == "INTERFACE/BTADR")
        return &device.btAddress;
    return place == "INTERFACE/PATIENT_ID" ? &device.patientId : nullptr;
}

/// The result of a second parser, which stops at anything other than tags without attributes and printable texts.
struct PlainReading
{
    QList<DeviceInfo> devices;
    bool isWhole = false; ///< the list has no other content
};

PlainReading plainReading(const QByteArray& bytes)
{
    static const QRegularExpression head("^<\\?xml version=\"1\\.0\"( encoding=\"UTF-8\")?\\?>");
    static const QRegularExpression token(
        "\\G(?:<(?<begun>[A-Z_]+)(?<empty>/?)>|</(?<ended>[A-Z_]+)>|[ -%'-;=?-~\n]+)");
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
        const QString begun = match.captured("begun");
        QString ended = match.captured("ended");
        if (!begun.isEmpty()) {
            if ((path.isEmpty() && begun != "DEVICELIST") || fieldAt(path, device))
                return reading;
            path.append(begun);
            if (path.size() == 2)
                device = {};
            if (QString* field = fieldAt(path, device))
                field->clear();
            if (!match.captured("empty").isEmpty())
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
        if (path.size() == 2 && ended == "DEVICE") {
            if (device.deviceName == "Cygnara")
                device.deviceName = "Sanvio Merivo";
            if (device.patientId == "0")
                device.patientId.clear();
            device.paired = !device.patientId.isEmpty();
            reading.devices.append(device);
        }
        path.removeLast();
        reading.isWhole = path.isEmpty();
    }
    return reading;
}

/// Checks that the records at the start of a plain list are read, regardless of the rest.
void checkPlain(const QList<DeviceInfo>& devices, const QByteArray& bytes)
{
    // Bytes that aren't UTF-8 can invalidate the records just before them, and many namespaces end a list.
    if (QString::fromUtf8(bytes).toUtf8() != bytes || bytes.count("xmlns") > 256)
        return;
    const PlainReading plain = plainReading(bytes);
    require(devices.size() >= plain.devices.size() && (!plain.isWhole || devices.size() == plain.devices.size()) &&
                std::equal(plain.devices.cbegin(), plain.devices.cend(), devices.cbegin(), areEqual),
            "a second parser reads the same from a plain list");
}

void checkDevice(const DeviceInfo& device, const QByteArray& bytes)
{
    // A paired pump has no patient only if the id is damaged.
    require(device.paired || device.patientId.isEmpty(), "a pump with a patient is paired");
    require(device.patientId != "0", "0 isn't a patient");
    require(device.deviceName != "Cygnara", "the pump has its display name");
    if (device.paired && isPlain(bytes))
        require(bytes.contains('>' + device.patientId.toUtf8()), "the list contains the patient's id");
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    static const Drive drive;
    const QString name = "DEVLIST.XML";
    const QByteArray bytes = inputOf(data, size);
    drive.write(name, bytes);
    const QList<DeviceInfo> devices = readDeviceList(drive.misc(), name);
    if (isPlain(bytes))
        require(devices.size() <= std::max(bytes.count("DEVICE") - 1, 0), "at most one record for each DEVICE");
    for (const DeviceInfo& device : devices)
        checkDevice(device, bytes);
    checkPlain(devices, bytes);

    // A list that is cut has the same records before its last one.
    const auto place = static_cast<int>(qHash(bytes) % static_cast<uint>(bytes.size() + 1));
    drive.write(name, bytes.left(place));
    const QList<DeviceInfo> fewer = readDeviceList(drive.misc(), name);
    for (int i = 0; i < std::min(devices.size(), fewer.size()) - 1; ++i)
        require(areEqual(devices.at(i), fewer.at(i)), "a cut changes nothing before it");
    checkPlain(fewer, bytes.left(place));
    for (const DeviceInfo& device : fewer)
        checkDevice(device, bytes.left(place));
    return 0;
}
