// SPDX-FileCopyrightText: 2026 The Merivo Connections developers
// SPDX-License-Identifier: MIT
#pragma once

#include "workbench/reader/Scenario.h"

#include <QString>
#include <QVector>

/// What the reader keeps when it loses its power.
struct ReaderMemory
{
    /// How often it was started, this time included.
    int starts = 0;
    /// How many exchange files it has made; the next one's name counts on.
    int readouts = 0;
    /// Every pump that it has ever known, with its pairing.
    QVector<Pump> pumps;

    /// Pairs a pump with a patient, who has one pump at most, so that BTISPAIRED has one answer.
    void pair(const QString& serialNumber, const QString& patientId);
};

/// Reads what an earlier run has kept in @p fileName and brings it together with the pumps of the scenario: the kept
/// pairing wins over the scenario's, and a pump that the scenario no longer has is out of range. Without such a file
/// the scenario's pairings hold. False with a sentence that names file and field if the file can't be understood; it is
/// left alone then.
bool loadMemory(const QString& fileName, const QVector<Pump>& scenarioPumps, ReaderMemory* memory, QString* error);

/// Writes the memory in one step, and to the disk before it returns.
bool saveMemory(const QString& fileName, const ReaderMemory& memory, QString* error);
