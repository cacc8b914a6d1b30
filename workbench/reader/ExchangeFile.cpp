// SPDX-FileCopyrightText: 2026 The Merivo Connections developers
// SPDX-License-Identifier: MIT
#include "workbench/reader/ExchangeFile.h"

#include <QTime>
#include <QVector>

#include <algorithm>

namespace {

const int MinutesADay = 24 * 60;

const struct
{
    const char* code;
    const char* text;
} PumpEvents[] = {{"E01", "Reservoir changed"},    {"E02", "Tube filled"},    {"E03", "Pump stopped"},
                  {"E04", "Pump started"},         {"W11", "Reservoir low"},  {"W12", "Battery low"},
                  {"A21", "Tube blocked"},         {"R31", "Temporary rate"}, {"R32", "Temporary rate ended"},
                  {"C41", "Time and date changed"}};

const char* const BolusKinds[] = {"normal", "normal", "normal", "extended", "combined"};

QRandomGenerator generatorFor(quint32 seed, const QString& serialNumber)
{
    QVector<quint32> seeds{seed};
    for (const QChar c : serialNumber)
        seeds.append(c.unicode());
    return QRandomGenerator(seeds.constData(), seeds.size());
}

QString clock(int minute)
{
    return QTime(0, 0).addSecs(minute * 60).toString(QStringLiteral("hh:mm"));
}

QString units(double value)
{
    return QString::number(value, 'f', 2);
}

} // namespace

ExchangeFile::ExchangeFile(const QString& path, const Pump& pump, const Scenario& scenario)
    : m_pump(pump)
    , m_firmware(scenario.firmware)
    , m_settings(scenario.exchange)
    , m_random(generatorFor(scenario.seed, pump.serialNumber))
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
    writeHead();
    return true;
}

void ExchangeFile::writeUpTo(double part)
{
    const int days = static_cast<int>(std::clamp(part, 0.0, 1.0) * m_settings.days);
    for (; m_daysWritten < days; ++m_daysWritten)
        writeDay(m_settings.lastDay.addDays(m_daysWritten + 1 - m_settings.days));
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

double ExchangeFile::dose(double least, double most)
{
    // In steps of 0.05 units, as a pump delivers.
    const int steps = static_cast<int>((most - least) / 0.05);
    return least + 0.05 * m_random.bounded(steps + 1);
}

void ExchangeFile::writeHead()
{
    m_xml.writeStartDocument();
    m_xml.writeStartElement(QStringLiteral("pumpHistory"));
    m_xml.writeAttribute(QStringLiteral("format"), QStringLiteral("1.2"));
    m_xml.writeEmptyElement(QStringLiteral("reader"));
    m_xml.writeAttribute(QStringLiteral("model"), QStringLiteral("QD17-C"));
    m_xml.writeAttribute(QStringLiteral("firmware"), m_firmware);
    m_xml.writeEmptyElement(QStringLiteral("pump"));
    m_xml.writeAttribute(QStringLiteral("serialNumber"), m_pump.serialNumber);
    m_xml.writeAttribute(QStringLiteral("name"), m_pump.name);
    m_xml.writeAttribute(QStringLiteral("model"), m_pump.model);
    m_xml.writeEmptyElement(QStringLiteral("period"));
    m_xml.writeAttribute(QStringLiteral("from"), m_settings.lastDay.addDays(1 - m_settings.days).toString(Qt::ISODate));
    m_xml.writeAttribute(QStringLiteral("to"), m_settings.lastDay.toString(Qt::ISODate));
}

void ExchangeFile::writeDay(const QDate& date)
{
    struct Entry
    {
        int minute;
        int kind;
    };
    enum { Basal, Bolus, Event };

    QVector<Entry> entries;
    for (int hour = 0; hour < 24; ++hour)
        entries.append({hour * 60, Basal});
    for (int i = 0; i < m_settings.bolusesPerDay; ++i)
        entries.append({m_random.bounded(6 * 60, MinutesADay), Bolus});
    for (int i = 0; i < m_settings.eventsPerDay; ++i)
        entries.append({m_random.bounded(MinutesADay), Event});
    std::stable_sort(entries.begin(), entries.end(),
                     [](const Entry& a, const Entry& b) { return a.minute < b.minute; });

    double basalTotal = 0;
    double bolusTotal = 0;
    m_xml.writeStartElement(QStringLiteral("day"));
    m_xml.writeAttribute(QStringLiteral("date"), date.toString(Qt::ISODate));
    for (const Entry& entry : qAsConst(entries)) {
        const QString at = clock(entry.minute);
        if (entry.kind == Basal) {
            // More in the early morning, least around midnight.
            const bool isMorning = entry.minute >= 4 * 60 && entry.minute < 9 * 60;
            const double rate = isMorning ? dose(0.9, 1.3) : dose(0.5, 0.9);
            basalTotal += rate;
            m_xml.writeEmptyElement(QStringLiteral("basalRate"));
            m_xml.writeAttribute(QStringLiteral("at"), at);
            m_xml.writeAttribute(QStringLiteral("unitsPerHour"), units(rate));
        } else if (entry.kind == Bolus) {
            const char* kind = BolusKinds[m_random.bounded(static_cast<int>(std::size(BolusKinds)))];
            const double amount = dose(0.5, 9.0);
            bolusTotal += amount;
            m_xml.writeEmptyElement(QStringLiteral("bolus"));
            m_xml.writeAttribute(QStringLiteral("at"), at);
            m_xml.writeAttribute(QStringLiteral("kind"), QLatin1String(kind));
            m_xml.writeAttribute(QStringLiteral("units"), units(amount));
            if (kind != BolusKinds[0])
                m_xml.writeAttribute(QStringLiteral("minutes"), QString::number(15 * m_random.bounded(2, 17)));
        } else {
            const auto& event = PumpEvents[m_random.bounded(static_cast<int>(std::size(PumpEvents)))];
            m_xml.writeEmptyElement(QStringLiteral("event"));
            m_xml.writeAttribute(QStringLiteral("at"), at);
            m_xml.writeAttribute(QStringLiteral("code"), QLatin1String(event.code));
            m_xml.writeAttribute(QStringLiteral("text"), QLatin1String(event.text));
        }
    }
    m_xml.writeEmptyElement(QStringLiteral("total"));
    m_xml.writeAttribute(QStringLiteral("basalUnits"), units(basalTotal));
    m_xml.writeAttribute(QStringLiteral("bolusUnits"), units(bolusTotal));
    m_xml.writeEndElement();
}
