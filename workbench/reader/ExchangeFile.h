// SPDX-FileCopyrightText: 2026 The Merivo Connections developers
// SPDX-License-Identifier: MIT
#pragma once

#include "workbench/reader/Scenario.h"

#include <QFile>
#include <QRandomGenerator>
#include <QString>
#include <QXmlStreamWriter>

/// Writes a pump's history day by day, as the read-out brings it in. The bytes depend on pump, settings and seed only,
/// however the days are spread over time.
class ExchangeFile final
{
    Q_DISABLE_COPY_MOVE(ExchangeFile)

public:
    ExchangeFile(const QString& path, const Pump& pump, const Scenario& scenario);
    /// Removes the file, unless it was renamed.
    ~ExchangeFile();

    bool open();
    /// Writes up to that part of the days, from 0 to 1.
    void writeUpTo(double part);
    /// Writes what is left. Returns false if any of the content didn't reach the file.
    bool finish();

    QString path() const { return m_file.fileName(); }
    QString errorString() const { return m_file.errorString(); }

private:
    void writeDose(const char* element, int hour);

    const Pump m_pump;
    const ExchangeSettings m_settings;
    QRandomGenerator m_random;
    QFile m_file;
    QXmlStreamWriter m_xml;
    int m_daysWritten = 0;
};
