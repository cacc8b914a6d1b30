// SPDX-FileCopyrightText: 2026 The Merivo Connections developers
// SPDX-License-Identifier: MIT
#pragma once

#include "workbench/reader/Scenario.h"

#include <QByteArray>
#include <QString>

/// An error code that leaves no number in the status.
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

/// The five lines of STATUS.TXT, each with a line feed. Readers skip the labels by count: 4 characters in front of the
/// command, 10 in front of the status word and of the result; the code stands between the last hyphen and one last
/// character.
QByteArray statusText(const ReaderStatus& status);

/// DEVLIST.XML for @p pumps in their order; a pump that is paired with nobody has the patient id "0".
QByteArray deviceListXml(const QVector<Pump>& pumps);

/// The firmware log: the version is the last word of the fifth line.
QByteArray firmwareLogText(const QString& version);

/// A pump's history day by day, the same for the same pump, settings and seed.
QByteArray exchangeFileXml(const Pump& pump, const ExchangeSettings& settings, quint32 seed);
