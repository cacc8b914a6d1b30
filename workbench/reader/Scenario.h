// SPDX-FileCopyrightText: 2026 The Merivo Connections developers
// SPDX-License-Identifier: MIT
#pragma once

#include "workbench/reader/Faults.h"

#include <QDate>
#include <QHash>
#include <QString>
#include <QStringList>
#include <QVector>

#include <limits>
#include <optional>

/// What the person who carries a pump does when the pump asks for the pairing.
enum class PumpUser {
    Confirms,
    Declines,
    /// Takes the pump along, so that the link to it breaks.
    WalksAway,
    /// Leaves the pump's question unanswered until the reader gives up.
    DoesNothing,
};

/// True if a pump can be tied to @p patientId. "0" stands for nobody in the device list, and a command file can't tell
/// a blank at an end from its own.
bool isPatientId(const QString& patientId);

struct Pump
{
    QString serialNumber;
    QString name = "Cygnara";
    QString model = "M-300";
    QString address;
    /// What the pump shows for the user to compare, and BTPAIR answers.
    QString confirmationCode = "000000";
    bool inRange = true;
    /// A command that needs the link to the pump for longer loses it.
    int linkHoldsMs = std::numeric_limits<int>::max();
    /// The patient that the pump is paired with; empty for none.
    QString patientId;
    PumpUser user = PumpUser::Confirms;
    int userTakesMs = 1000;
    /// Error codes by command word: such a command fails half way with its code.
    QHash<QString, int> errors;
};

/// Durations in milliseconds.
struct ReaderTimes
{
    int pickup = 200;
    int isPaired = 300;
    int search = 3000;
    int connect = 1500;
    int read = 8000;
    int pair = 2000;
    int confirm = 800;
    int reassign = 600;
    int remove = 600;
    int abort = 300;
    /// How long the reader waits for the pump's user.
    int userLimit = 30000;
    /// The pause between two statuses of a command that runs; 0 for a single one.
    int progress = 500;
};

struct ExchangeSettings
{
    int days = 28;
    QDate lastDay = QDate(2026, 3, 1);
};

/// The reader's whole world.
struct Scenario
{
    QString firmware = "3.2.23";
    quint32 seed = 1;
    ReaderTimes times;
    ExchangeSettings exchange;
    QVector<Pump> pumps;
    FaultSet faults;
};

/// Parses a scenario. Each error names its line if the text isn't JSON, otherwise the field's path
/// ("pumps[1].address: ...").
std::optional<Scenario> parseScenario(const QByteArray& bytes, QStringList* errors);

/// Parses a scenario from a file, whose name begins each error.
std::optional<Scenario> loadScenario(const QString& fileName, QStringList* errors);

/// The world without a scenario file: one pump that is free and one out of range.
Scenario defaultScenario();
