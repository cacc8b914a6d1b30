// SPDX-FileCopyrightText: 2026 The Merivo Connections developers
// SPDX-License-Identifier: MIT
#include "workbench/reader/ReaderFiles.h"

#include <QXmlStreamWriter>

QByteArray statusText(const ReaderStatus& status)
{
    return QStringLiteral("%1\nCmd=%2\nStatus  = %3\nResult  = %4\nError code -%5.\n")
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
    xml.writeStartElement(QStringLiteral("DEVICELIST"));
    for (const Pump& pump : pumps) {
        xml.writeStartElement(QStringLiteral("DEVICE"));
        xml.writeTextElement(QStringLiteral("CLASS"), QStringLiteral("PUMP"));
        xml.writeTextElement(QStringLiteral("NAME"), pump.name);
        xml.writeTextElement(QStringLiteral("MODELNR"), pump.model);
        xml.writeTextElement(QStringLiteral("SERIALNR"), pump.serialNumber);
        xml.writeStartElement(QStringLiteral("INTERFACE"));
        xml.writeTextElement(QStringLiteral("BTADR"), pump.address);
        xml.writeTextElement(QStringLiteral("PATIENT_ID"),
                             pump.patientId.isEmpty() ? QStringLiteral("0") : pump.patientId);
        xml.writeEndElement();
        xml.writeEndElement();
    }
    xml.writeEndElement();
    xml.writeEndDocument();
    return bytes;
}

QByteArray firmwareLogText(const QString& version)
{
    return QStringLiteral("QD17-C device reader\n"
                          "Hardware revision C\n"
                          "Boot loader version 1.4.0\n"
                          "Radio module version 2.0.11\n"
                          "Firmware version %1\n")
        .arg(version)
        .toUtf8();
}
