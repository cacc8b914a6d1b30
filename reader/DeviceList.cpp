// SPDX-FileCopyrightText: 2026 The Merivo Connections developers
// SPDX-License-Identifier: MIT
#include "reader/DeviceList.h"

#include "plugin/session/Logger.h"
#include "plugin/session/PatientSession.h"

#include <QBuffer>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QXmlStreamReader>

#include <algorithm>

namespace {

/// No reader knows as many pumps: 10,000 take 3 MiB. The rest isn't read.
constexpr qint64 MaxListBytes = 8LL * 1024 * 1024;

bool hasTextAt(const QByteArray& list, int position, const char* text)
{
    return qstrncmp(list.constData() + position, text, qstrlen(text)) == 0;
}

/// Returns the end of the comment, CDATA section or processing instruction that begins at @p begin; 0 if none does.
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

/// Returns how many bytes of a list the XML reader can read in linear time. It compares the attributes of an element
/// with each other, searches all open name spaces for each name, and can expand a few declarations to a very long text.
/// The list of a reader has no such markup, so that a list with much of it is damaged and is only read up to there.
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

/// Reads an INTERFACE element. @p isCut: the list was read only in part.
void parseInterface(QXmlStreamReader& xml, bool isCut, DeviceInfo& device)
{
    while (xml.readNextStartElement()) {
        if (xml.name() == QLatin1String("BTADR")) {
            device.btAddress = xml.readElementText();
        } else if (xml.name() == QLatin1String("PATIENT_ID")) {
            const QString id = xml.readElementText();
            // A part of an id could be the id of another patient, or of none, and the pairing would then be removed.
            const bool isDamaged =
                xml.hasError() && (isCut || xml.error() != QXmlStreamReader::PrematureEndOfDocumentError);
            // The reader writes exactly one zero for no patient.
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
    const qint64 fileSize = file.size();
    QByteArray list = file.read(std::min(fileSize, MaxListBytes));
    list.truncate(safePrefixLength(list));
    const bool isCut = list.size() < fileSize;
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
    // The one placeholder is %2, and takes the first argument.
    logTrace(QStringLiteral("==> Number of pumps within device reader DB: %2").arg(devices.size()), path);
    return devices;
}
