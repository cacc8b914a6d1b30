// SPDX-FileCopyrightText: 2026 The Merivo Connections developers
// SPDX-License-Identifier: MIT
#pragma once

#include "tools/reader/Scenario.h"

#include <QString>
#include <QVector>

/// The data that the reader keeps without power.
struct ReaderMemory
{
    /// Number of starts, including this one.
    int starts = 0;
    /// Number of exchange files created, from which the next one's name is made.
    int readouts = 0;
    /// Every pump ever known, with its pairing.
    QVector<Pump> pumps;

    /// Pairs a pump with a patient and unpairs any other pump of that patient, so that BTISPAIRED has one answer.
    void pair(const QString& serialNumber, const QString& patientId);
};

/// Loads what an earlier run saved in @p fileName and merges it with the pumps of the scenario: a saved pairing
/// overrides the scenario's, and a pump that the scenario no longer has is out of range. Without such a file the
/// scenario's pairings apply. If the file is invalid, leaves it unchanged and returns false with an error that names
/// file and field.
bool loadMemory(const QString& fileName, const QVector<Pump>& scenarioPumps, ReaderMemory* memory, QString* error);

/// Saves the memory atomically, and on the disk before it returns.
bool saveMemory(const QString& fileName, const ReaderMemory& memory, QString* error);
