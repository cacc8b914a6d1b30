// SPDX-FileCopyrightText: 2026 The Merivo Connections developers
// SPDX-License-Identifier: MIT
#pragma once

#include "tools/reader/Faults.h"

#include <QDate>
#include <QHash>
#include <QString>
#include <QStringList>
#include <QVector>

#include <limits>
#include <optional>

/// What the pump's user does when the pump asks to confirm the pairing.
enum class PumpUser {
    Confirms,
    Declines,
    /// Walks away with the pump, so that the link to it breaks.
    WalksAway,
    /// Doesn't answer until the reader times out.
    DoesNothing,
};

/// Returns true if a pump can be paired with @p patientId. "0" means no patient in the device list, and in a command
/// file a space at either end of an id would be ambiguous.
bool isPatientId(const QString& patientId);

struct Pump
{
    QString serialNumber;
    QString name = "Cygnara";
    QString model = "M-300";
    QString address;
    /// The code that the pump shows, and that BTPAIR returns for comparison.
    QString confirmationCode = "000000";
    bool inRange = true;
    /// A command that needs the link to the pump for longer fails.
    int linkHoldsMs = std::numeric_limits<int>::max();
    /// The patient that the pump is paired with; empty for none.
    QString patientId;
    PumpUser user = PumpUser::Confirms;
    int userTakesMs = 1000;
    /// Error codes by command: such a command fails half-way with its code.
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
    /// The maximum time that the reader waits for the pump's user.
    int userLimit = 30000;
    /// The interval between two statuses of a running command; 0 for a single status.
    int progress = 500;
};

struct ExchangeSettings
{
    int days = 28;
    QDate lastDay = QDate(2026, 3, 1);
};

/// The reader and the pumps around it.
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
