// SPDX-FileCopyrightText: 2026 The Merivo Connections developers
// SPDX-License-Identifier: MIT
#include "reader/DeviceList.h"

#include "plugin/session/LogChannels.h"
#include "plugin/session/PatientSession.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QXmlStreamReader>

namespace {

void parseInterface(QXmlStreamReader& xml, DeviceInfo& device)
{
    while (xml.readNextStartElement()) {
        if (xml.name() == QLatin1String("BTADR")) {
            device.btAddress = xml.readElementText();
        } else if (xml.name() == QLatin1String("PATIENT_ID")) {
            const QString id = xml.readElementText();
            // What was read ahead of a fault may be another patient's id. Without one the pump counts as assigned to
            // nobody, which a user can put right.
            if (xml.hasError())
                return;
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
    QXmlStreamReader xml(&file);
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
