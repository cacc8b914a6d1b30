// SPDX-FileCopyrightText: 2026 The Merivo Connections developers
// SPDX-License-Identifier: MIT
#pragma once

#include "workbench/reader/Scenario.h"

#include <QFile>
#include <QRandomGenerator>
#include <QString>
#include <QXmlStreamWriter>

/// Writes a pump's history day by day, as the read-out brings it in. The bytes follow from pump, settings and seed
/// alone, however the days are spread over time.
class ExchangeFile final
{
    Q_DISABLE_COPY_MOVE(ExchangeFile)

public:
    ExchangeFile(const QString& path, const Pump& pump, const Scenario& scenario);
    /// Removes the file, unless it has got another name by then.
    ~ExchangeFile();

    bool open();
    /// Writes on up to that part of the days, from 0 to 1.
    void writeUpTo(double part);
    /// Writes what is left, and the end. False if any of it didn't reach the file.
    bool finish();

    QString path() const { return m_file.fileName(); }
    QString errorString() const { return m_file.errorString(); }

private:
    void writeHead();
    void writeDay(const QDate& date);
    double dose(double least, double most);

    const Pump m_pump;
    const QString m_firmware;
    const ExchangeSettings m_settings;
    QRandomGenerator m_random;
    QFile m_file;
    QXmlStreamWriter m_xml;
    int m_daysWritten = 0;
};
