// SPDX-FileCopyrightText: 2026 The Merivo Connections developers
// SPDX-License-Identifier: MIT
#pragma once

#include "tools/reader/Scenario.h"

#include <QByteArray>
#include <QString>

/// An error code for which the status has no number.
inline constexpr int NoErrorCode = -1;

/// What the reader shows in STATUS.TXT.
struct ReaderStatus
{
    QString header;
    QString command;
    QString word;
    QString result;
    int error = 0;
};

/// Returns the five lines of STATUS.TXT, each with a line feed. Programs that parse it skip the labels by count: 4
/// characters before the command, 10 before the status word and before the result; the code is between the last hyphen
/// and the last character.
QByteArray statusText(const ReaderStatus& status);

/// Returns DEVLIST.XML for @p pumps in their order; an unpaired pump has the patient id "0".
QByteArray deviceListXml(const QVector<Pump>& pumps);

/// Returns the firmware log: the version is the last word of the fifth line.
QByteArray firmwareLogText(const QString& version);

/// Returns a pump's history day by day; the same pump, settings and seed yield the same bytes.
QByteArray exchangeFileXml(const Pump& pump, const ExchangeSettings& settings, quint32 seed);
