// SPDX-FileCopyrightText: 2026 The Merivo Connections developers
// SPDX-License-Identifier: MIT
#include "workbench/reader/ReaderFiles.h"

#include <QXmlStreamWriter>

QByteArray statusText(const ReaderStatus& status)
{
    return QString("%1\nCmd=%2\nStatus  = %3\nResult  = %4\nError code -%5.\n")
        .arg(status.header, status.command, status.word, status.result,
             status.error == NoErrorCode ? QString() : QString::number(status.error))
        .toUtf8();
}

QByteArray deviceListXml(const QVector<Pump>& pumps)
{
    QByteArray bytes;
    QXmlStreamWriter xml(&bytes);
    xml.setAutoFormatting(true);
    xml.writeStartDocument();
    xml.writeStartElement("DEVICELIST");
    for (const Pump& pump : pumps) {
        xml.writeStartElement("DEVICE");
        xml.writeTextElement("CLASS", "PUMP");
        xml.writeTextElement("NAME", pump.name);
        xml.writeTextElement("MODELNR", pump.model);
        xml.writeTextElement("SERIALNR", pump.serialNumber);
        xml.writeStartElement("INTERFACE");
        xml.writeTextElement("BTADR", pump.address);
        xml.writeTextElement("PATIENT_ID", pump.patientId.isEmpty() ? "0" : pump.patientId);
        xml.writeEndElement();
        xml.writeEndElement();
    }
    xml.writeEndElement();
    xml.writeEndDocument();
    return bytes;
}

QByteArray firmwareLogText(const QString& version)
{
    return QString("QD17-C device reader\n"
                   "Hardware revision C\n"
                   "Boot loader version 1.4.0\n"
                   "Radio module version 2.0.11\n"
                   "Firmware version %1\n")
        .arg(version)
        .toUtf8();
}
