// SPDX-FileCopyrightText: 2026 The Merivo Connections developers
// SPDX-License-Identifier: MIT
#include "tools/reader/ReaderFiles.h"

#include <QRandomGenerator>
#include <QXmlStreamWriter>

QByteArray statusText(const ReaderStatus& status)
{
    return QString("%1\nCmd=%2\nStatus  = %3\nResult  = %4\nError code -%5.\n")
        .arg(status.header, status.command, status.word, status.result,
             status.error == NoErrorCode ? QString() : QString::number(status.error))
        .toLocal8Bit();
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

QByteArray exchangeFileXml(const Pump& pump, const ExchangeSettings& settings, quint32 seed)
{
    constexpr int MaxSteps = 40;
    constexpr double Step = 0.05; // as a pump delivers
    QRandomGenerator random(seed);
    QByteArray bytes;
    QXmlStreamWriter xml(&bytes);
    xml.setAutoFormatting(true);
    xml.setAutoFormattingIndent(1);
    xml.writeStartDocument();
    xml.writeStartElement("pumpHistory");
    xml.writeEmptyElement("pump");
    xml.writeAttribute("serialNumber", pump.serialNumber);
    xml.writeAttribute("name", pump.name);
    xml.writeAttribute("model", pump.model);
    for (int day = 1; day <= settings.days; ++day) {
        xml.writeStartElement("day");
        xml.writeAttribute("date", settings.lastDay.addDays(day - settings.days).toString(Qt::ISODate));
        for (int hour = 0; hour < 24; ++hour) {
            xml.writeEmptyElement(hour % 6 == 1 ? "bolus" : "basalRate");
            xml.writeAttribute("at", QString("%1:00").arg(hour, 2, 10, QChar('0')));
            xml.writeAttribute("units", QString::number(Step * random.bounded(MaxSteps), 'f', 2));
        }
        xml.writeEndElement();
    }
    xml.writeEndDocument();
    return bytes;
}
