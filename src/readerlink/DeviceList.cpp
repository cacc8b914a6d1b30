// SPDX-FileCopyrightText: 2026 The Merivo Connections developers
// SPDX-License-Identifier: MIT
#include "readerlink/DeviceList.h"

#include "base/Logger.h"
#include "base/PatientSession.h"

#include <QBuffer>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QXmlStreamReader>

#include <algorithm>

namespace {

/// Enough for more than 20,000 pumps. The rest of a longer file isn't read.
constexpr qint64 MaxListBytes = 8LL * 1024 * 1024;

bool hasTextAt(const QByteArray& list, int position, const char* text)
{
    return qstrncmp(list.constData() + position, text, qstrlen(text)) == 0;
}

/// Returns the end of the comment, CDATA section or processing instruction at @p begin; 0 if there is none.
int endOfPlainSection(const QByteArray& list, int begin)
{
    static constexpr const char* Sections[][2] = {{"<!--", "-->"}, {"<![CDATA[", "]]>"}, {"<?", "?>"}};
    for (const auto& [first, last] : Sections) {
        if (hasTextAt(list, begin, first)) {
            const int end = list.indexOf(last, begin + static_cast<int>(qstrlen(first)));
            return end < 0 ? list.size() : end;
        }
    }
    return 0;
}

/// Returns the length of the prefix that QXmlStreamReader parses in linear time. It compares the attributes of an
/// element with each other, searches all open namespaces for each name, and can expand a few declarations to a very
/// long text. A valid list has no declarations and few of the others; any other is damaged and is cut there.
int safePrefixLength(const QByteArray& list)
{
    constexpr int MaxAttributes = 100;
    constexpr int MaxNamespaces = 256;
    int namespaces = 0;
    for (int i = list.indexOf('<'); i >= 0; i = list.indexOf('<', i)) {
        if (const int end = endOfPlainSection(list, i)) {
            i = end;
            continue;
        }
        const int tag = i;
        if (hasTextAt(list, tag, "<!ENTITY") || hasTextAt(list, tag, "<!ATTLIST"))
            return tag;
        int attributes = 0;
        for (++i; i < list.size() && list.at(i) != '<' && list.at(i) != '>'; ++i) {
            const char c = list.at(i);
            if (c == '"' || c == '\'') {
                if (++attributes > MaxAttributes)
                    return tag;
                i = list.indexOf(c, i + 1);
                if (i < 0)
                    return list.size();
            } else if (c == 'x' && hasTextAt(list, i, "xmlns") && ++namespaces > MaxNamespaces) {
                return tag;
            }
        }
    }
    return list.size();
}

/// Parses an INTERFACE element. @p isCut is true if only a prefix of the file is parsed.
void parseInterface(QXmlStreamReader& xml, bool isCut, DeviceInfo& device)
{
    while (xml.readNextStartElement()) {
        if (xml.name() == QLatin1String("BTADR")) {
            device.btAddress = xml.readElementText();
        } else if (xml.name() == QLatin1String("PATIENT_ID")) {
            const QString id = xml.readElementText();
            // A partial id could be that of another patient, or of none, and the pairing would then be removed.
            const bool isDamaged =
                xml.hasError() && (isCut || xml.error() != QXmlStreamReader::PrematureEndOfDocumentError);
            // The reader writes "0" for no patient.
            device.patientId = isDamaged || id == QLatin1String("0") ? QString() : id;
            device.paired = isDamaged || !device.patientId.isEmpty();
        } else {
            xml.skipCurrentElement();
        }
    }
}

DeviceInfo parseDevice(QXmlStreamReader& xml, bool isCut)
{
    DeviceInfo device;
    while (xml.readNextStartElement()) {
        if (xml.name() == QLatin1String("NAME"))
            device.deviceName = PatientSession::displayNameOfDevice(xml.readElementText());
        else if (xml.name() == QLatin1String("SERIALNR"))
            device.serialNumber = xml.readElementText();
        else if (xml.name() == QLatin1String("INTERFACE"))
            parseInterface(xml, isCut, device);
        else // CLASS, MODELNR and elements of later firmware
            xml.skipCurrentElement();
    }
    return device;
}

QList<DeviceInfo> parseDeviceList(const QString& path)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return {};
    const qint64 fileSize = file.size();
    QByteArray list = file.read(std::min(fileSize, MaxListBytes));
    list.truncate(safePrefixLength(list));
    const bool isCut = list.size() < fileSize;
    // Through a device: an array is decoded as a whole, and one invalid byte would discard all of it.
    QBuffer buffer(&list);
    if (!buffer.open(QIODevice::ReadOnly))
        return {};
    QXmlStreamReader xml(&buffer);
    if (!xml.readNextStartElement() || xml.name() != QLatin1String("DEVICELIST"))
        return {};

    // An XML error ends the loops like the end of the file: the records before it are kept.
    QList<DeviceInfo> devices;
    while (xml.readNextStartElement()) {
        if (xml.name() == QLatin1String("DEVICE"))
            devices.append(parseDevice(xml, isCut));
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
    // arg() replaces the lowest placeholder, here %2.
    logTrace(QStringLiteral("==> Number of pumps within device reader DB: %2").arg(devices.size()), path);
    return devices;
}
