// SPDX-FileCopyrightText: 2026 The Merivo Connections developers
// SPDX-License-Identifier: MIT
#include "workbench/reader/ExchangeFile.h"

#include <algorithm>

ExchangeFile::ExchangeFile(const QString& path, const Pump& pump, const Scenario& scenario)
    : m_pump(pump)
    , m_settings(scenario.exchange)
    , m_random(scenario.seed)
    , m_file(path)
{}

ExchangeFile::~ExchangeFile()
{
    m_file.remove();
}

bool ExchangeFile::open()
{
    if (!m_file.open(QIODevice::WriteOnly))
        return false;
    m_xml.setDevice(&m_file);
    m_xml.setAutoFormatting(true);
    m_xml.setAutoFormattingIndent(1);
    m_xml.writeStartDocument();
    m_xml.writeStartElement("pumpHistory");
    m_xml.writeEmptyElement("pump");
    m_xml.writeAttribute("serialNumber", m_pump.serialNumber);
    m_xml.writeAttribute("name", m_pump.name);
    m_xml.writeAttribute("model", m_pump.model);
    return true;
}

void ExchangeFile::writeUpTo(double part)
{
    const int days = static_cast<int>(std::clamp(part, 0.0, 1.0) * m_settings.days);
    for (; m_daysWritten < days; ++m_daysWritten) {
        const QDate date = m_settings.lastDay.addDays(m_daysWritten + 1 - m_settings.days);
        m_xml.writeStartElement("day");
        m_xml.writeAttribute("date", date.toString(Qt::ISODate));
        for (int hour = 0; hour < 24; ++hour)
            writeDose(hour % 6 == 1 ? "bolus" : "basalRate", hour);
        m_xml.writeEndElement();
    }
    m_file.flush();
}

bool ExchangeFile::finish()
{
    writeUpTo(1.0);
    m_xml.writeEndDocument();
    const bool isWhole = !m_xml.hasError() && m_file.flush() && m_file.error() == QFileDevice::NoError;
    m_file.close();
    return isWhole;
}

void ExchangeFile::writeDose(const char* element, int hour)
{
    constexpr int MaxSteps = 40;
    constexpr double Step = 0.05; // as a pump delivers
    m_xml.writeEmptyElement(element);
    m_xml.writeAttribute("at", QString("%1:00").arg(hour, 2, 10, QChar('0')));
    m_xml.writeAttribute("units", QString::number(Step * m_random.bounded(MaxSteps), 'f', 2));
}
