// SPDX-FileCopyrightText: 2026 The Merivo Connections developers
// SPDX-License-Identifier: MIT
#include "reader/DeviceList.h"

#include "plugin/session/LogChannels.h"
#include "plugin/session/PatientSession.h"

#include <QBuffer>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QXmlStreamReader>

#include <algorithm>

namespace {

/// No reader knows as many pumps: 10,000 take 3 MiB. What lies behind isn't read, as if the file broke off there.
constexpr qint64 LongestList = 8LL * 1024 * 1024;

/// How much of a list the XML reader gets through in a time that grows with its length alone. It compares the
/// attributes of an element each with each, looks a name space up among all that are open, and makes much out of a few
/// declarations. A reader's list has none of these, so one with many is damaged, and counts up to there.
int readableSize(const QByteArray& list)
{
    constexpr int MostQuotes = 200; // two for an attribute; from one tag's begin to the next
    constexpr int MostNamespaces = 256;
    int tag = 0;
    bool isInTag = false;
    char open = 0; // the quote that a value stands in
    int quotes = 0;
    int namespaces = 0;
    for (int i = 0; i < list.size(); ++i) {
        const char* rest = list.constData() + i;
        switch (*rest) {
        case '<':
            tag = i;
            isInTag = true;
            open = 0;
            quotes = 0;
            if (qstrncmp(rest, "<!ENTITY", 8) == 0 || qstrncmp(rest, "<!ATTLIST", 9) == 0)
                return tag;
            break;
        case '>':
            isInTag = isInTag && open;
            break;
        case '"':
        case '\'':
            if (!isInTag || (open && open != *rest)) // a text, where quotes cost nothing
                break;
            open = open ? '\0' : *rest;
            if (++quotes > MostQuotes)
                return tag;
            break;
        case 'x':
            if (qstrncmp(rest, "xmlns", 5) == 0 && ++namespaces > MostNamespaces)
                return tag;
            break;
        default:
            break;
        }
    }
    return list.size();
}

void parseInterface(QXmlStreamReader& xml, DeviceInfo& device)
{
    while (xml.readNextStartElement()) {
        if (xml.name() == QLatin1String("BTADR")) {
            device.btAddress = xml.readElementText();
        } else if (xml.name() == QLatin1String("PATIENT_ID")) {
            const QString id = xml.readElementText();
            // The reader's word for "none" is exactly one zero.
            device.patientId = id == QLatin1String("0") ? QString() : id;
            device.paired = !device.patientId.isEmpty();
        } else {
            xml.skipCurrentElement();
        }
    }
}

DeviceInfo parseDevice(QXmlStreamReader& xml)
{
    DeviceInfo device;
    while (xml.readNextStartElement()) {
        if (xml.name() == QLatin1String("NAME"))
            device.deviceName = PatientSession::displayNameOfDevice(xml.readElementText());
        else if (xml.name() == QLatin1String("SERIALNR"))
            device.serialNumber = xml.readElementText();
        else if (xml.name() == QLatin1String("INTERFACE"))
            parseInterface(xml, device);
        else // CLASS, MODELNR, and what a later firmware may add
            xml.skipCurrentElement();
    }
    return device;
}

QList<DeviceInfo> parseDeviceList(const QString& path)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return {};
    QByteArray list = file.read(std::min(file.size(), LongestList));
    list.truncate(readableSize(list));
    // By a buffer: bytes that are no text, given all at once, would cost the whole list.
    QBuffer buffer(&list);
    if (!buffer.open(QIODevice::ReadOnly))
        return {};
    QXmlStreamReader xml(&buffer);
    if (!xml.readNextStartElement() || xml.name() != QLatin1String("DEVICELIST"))
        return {};

    // An XML error ends the loops like the end of the file: what stood ahead of it counts.
    QList<DeviceInfo> devices;
    while (xml.readNextStartElement()) {
        if (xml.name() == QLatin1String("DEVICE"))
            devices.append(parseDevice(xml));
        else
            xml.skipCurrentElement();
    }
    return devices;
}

} // namespace

QList<DeviceInfo> readDeviceList(const QString& directory, const QString& fileName)
{
    const QString path = QFileInfo(QDir(directory), fileName).absoluteFilePath();
    const QList<DeviceInfo> devices = parseDeviceList(path);
    // The one placeholder is %2, and takes the first argument.
    logTrace(QStringLiteral("==> Number of pumps within device reader DB: %2").arg(devices.size()), path);
    return devices;
}
