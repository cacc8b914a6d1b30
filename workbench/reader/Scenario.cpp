// SPDX-FileCopyrightText: 2026 The Merivo Connections developers
// SPDX-License-Identifier: MIT
#include "workbench/reader/Scenario.h"

#include "workbench/reader/JsonFields.h"

#include <QFile>

#include <limits>

namespace {

const int LongestMs = 3600 * 1000;
/// The commands that speak to one pump, and so can fail because of it.
const QStringList PumpCommands = {QStringLiteral("BTPAIR"), QStringLiteral("BTPAIRCONFIRM"), QStringLiteral("BTREAD"),
                                  QStringLiteral("BTDELETEADDR"), QStringLiteral("BTPUMPREASSIGN")};

const struct
{
    const char* name;
    int ReaderTimes::*field;
} TimeFields[] = {
    {"pickup", &ReaderTimes::pickup},   {"isPaired", &ReaderTimes::isPaired},   {"search", &ReaderTimes::search},
    {"connect", &ReaderTimes::connect}, {"read", &ReaderTimes::read},           {"pair", &ReaderTimes::pair},
    {"confirm", &ReaderTimes::confirm}, {"reassign", &ReaderTimes::reassign},   {"remove", &ReaderTimes::remove},
    {"abort", &ReaderTimes::abort},     {"userLimit", &ReaderTimes::userLimit}, {"progress", &ReaderTimes::progress},
};

ReaderTimes timesFrom(const QJsonValue& value, const QString& path, QStringList* errors)
{
    ReaderTimes times;
    JsonFields fields(value, path, errors);
    for (const auto& entry : TimeFields)
        fields.number(QLatin1String(entry.name), 0, LongestMs, &(times.*entry.field));
    fields.refuseOthers();
    return times;
}

ExchangeSettings exchangeFrom(const QJsonValue& value, const QString& path, QStringList* errors)
{
    ExchangeSettings settings;
    JsonFields fields(value, path, errors);
    fields.number(QStringLiteral("days"), 1, 20000, &settings.days);
    fields.number(QStringLiteral("bolusesPerDay"), 0, 100, &settings.bolusesPerDay);
    fields.number(QStringLiteral("eventsPerDay"), 0, 100, &settings.eventsPerDay);
    QString lastDay;
    fields.text(QStringLiteral("lastDay"), &lastDay);
    if (!lastDay.isNull()) {
        settings.lastDay = QDate::fromString(lastDay, Qt::ISODate);
        if (!settings.lastDay.isValid())
            fields.fail(QStringLiteral("lastDay"), QStringLiteral("must be a date such as 2026-03-01"));
    }
    fields.refuseOthers();
    return settings;
}

void userFrom(const QJsonValue& value, const QString& path, QStringList* errors, Pump* pump)
{
    JsonFields fields(value, path, errors);
    fields.require(QStringLiteral("does"));
    QString does;
    fields.text(QStringLiteral("does"), &does);
    if (does == QLatin1String("confirms"))
        pump->user = PumpUser::Confirms;
    else if (does == QLatin1String("declines"))
        pump->user = PumpUser::Declines;
    else if (does == QLatin1String("walks away"))
        pump->user = PumpUser::WalksAway;
    else if (does == QLatin1String("does nothing"))
        pump->user = PumpUser::DoesNothing;
    else if (!does.isNull())
        fields.fail(QStringLiteral("does"),
                    QStringLiteral("must be \"confirms\", \"declines\", \"walks away\" or \"does nothing\""));
    fields.number(QStringLiteral("afterMs"), 0, LongestMs, &pump->userTakesMs);
    fields.refuseOthers();
}

void pairingTableFrom(const QJsonValue& value, const QString& path, QStringList* errors, Pump* pump)
{
    JsonFields fields(value, path, errors);
    fields.number(QStringLiteral("slots"), 1, 1000, &pump->tableSlots);
    fields.number(QStringLiteral("used"), 0, pump->tableSlots, &pump->tableUsed);
    fields.refuseOthers();
}

Pump pumpFrom(const QJsonValue& value, const QString& path, QStringList* errors)
{
    Pump pump;
    JsonFields fields(value, path, errors);
    fields.require(QStringLiteral("serialNumber"));
    fields.require(QStringLiteral("address"));
    fields.text(QStringLiteral("serialNumber"), &pump.serialNumber);
    fields.text(QStringLiteral("name"), &pump.name);
    fields.text(QStringLiteral("model"), &pump.model);
    fields.text(QStringLiteral("address"), &pump.address);
    fields.text(QStringLiteral("confirmationCode"), &pump.confirmationCode);
    fields.text(QStringLiteral("patientId"), &pump.patientId);
    fields.flag(QStringLiteral("inRange"), &pump.inRange);
    fields.flag(QStringLiteral("displayOn"), &pump.displayOn);
    fields.number(QStringLiteral("radioVersion"), 1, 99, &pump.radioVersion);
    fields.flag(QStringLiteral("pairedElsewhere"), &pump.pairedElsewhere);
    fields.number(QStringLiteral("linkHoldsMs"), 0, LongestMs, &pump.linkHoldsMs);

    // A result of fewer than three characters says that there is no pump, so no serial number can be as short.
    if (!pump.serialNumber.isNull() && (pump.serialNumber.size() < 3 || pump.serialNumber.contains(QLatin1Char('"'))))
        fields.fail(QStringLiteral("serialNumber"), QStringLiteral("must have three characters or more, and no quote"));
    if (!pump.address.isNull() && (pump.address.isEmpty() || pump.address.contains(QLatin1Char(' '))))
        fields.fail(QStringLiteral("address"), QStringLiteral("must not be empty or hold a blank"));
    if (!pump.patientId.isEmpty() && !isPatientId(pump.patientId))
        fields.fail(QStringLiteral("patientId"), QStringLiteral("must not be \"0\" or begin or end with a blank"));

    QString deeper;
    const QJsonValue user = fields.take(QStringLiteral("user"), &deeper);
    if (!user.isUndefined())
        userFrom(user, deeper, errors, &pump);
    const QJsonValue table = fields.take(QStringLiteral("pairingTable"), &deeper);
    if (!table.isUndefined())
        pairingTableFrom(table, deeper, errors, &pump);

    const QJsonValue codes = fields.take(QStringLiteral("errors"), &deeper);
    if (!codes.isUndefined()) {
        JsonFields byCommand(codes, deeper, errors);
        const QStringList words = byCommand.names();
        for (const QString& word : words) {
            if (PumpCommands.contains(word))
                byCommand.number(word, 1, std::numeric_limits<int>::max(), &pump.errors[word]);
        }
        byCommand.refuseOthers();
    }
    fields.refuseOthers();
    return pump;
}

void refuseTwins(const QVector<Pump>& pumps, const QString& field, QString Pump::*member, QStringList* errors)
{
    QHash<QString, int> seen;
    for (int i = 0; i < pumps.size(); ++i) {
        const QString& value = pumps.at(i).*member;
        if (value.isEmpty())
            continue;
        if (seen.contains(value))
            errors->append(QStringLiteral("pumps[%1].%2: \"%3\" is that of pumps[%4] too")
                               .arg(i)
                               .arg(field, value)
                               .arg(seen.value(value)));
        seen.insert(value, i);
    }
}

Scenario scenarioFrom(const QJsonValue& root, QStringList* errors)
{
    Scenario scenario;
    JsonFields fields(root, {}, errors);
    QString comment;
    fields.text(QStringLiteral("comment"), &comment);
    fields.text(QStringLiteral("firmware"), &scenario.firmware);
    int seed = static_cast<int>(scenario.seed);
    fields.number(QStringLiteral("seed"), 0, std::numeric_limits<int>::max(), &seed);
    scenario.seed = static_cast<quint32>(seed);
    fields.number(QStringLiteral("jitterPercent"), 0, 90, &scenario.jitterPercent);

    QString deeper;
    const QJsonValue times = fields.take(QStringLiteral("times"), &deeper);
    if (!times.isUndefined())
        scenario.times = timesFrom(times, deeper, errors);
    const QJsonValue exchange = fields.take(QStringLiteral("exchange"), &deeper);
    if (!exchange.isUndefined())
        scenario.exchange = exchangeFrom(exchange, deeper, errors);

    fields.array(QStringLiteral("pumps"), [&](const QJsonValue& value, const QString& path) {
        scenario.pumps.append(pumpFrom(value, path, errors));
    });
    refuseTwins(scenario.pumps, QStringLiteral("serialNumber"), &Pump::serialNumber, errors);
    refuseTwins(scenario.pumps, QStringLiteral("address"), &Pump::address, errors);
    refuseTwins(scenario.pumps, QStringLiteral("patientId"), &Pump::patientId, errors);

    fields.array(QStringLiteral("faults"), [&](const QJsonValue& value, const QString& path) {
        QString error = QStringLiteral("must be a text");
        if (!value.isString() || !scenario.faults.add(value.toString(), &error))
            errors->append(path + QStringLiteral(": ") + error);
    });
    fields.refuseOthers();
    return scenario;
}

} // namespace

bool isPatientId(const QString& patientId)
{
    return !patientId.isEmpty() && patientId != QLatin1String("0") && patientId == patientId.trimmed();
}

std::optional<Scenario> parseScenario(const QByteArray& bytes, QStringList* errors)
{
    const QJsonValue root = parseJson(bytes, errors);
    if (!errors->isEmpty())
        return std::nullopt;
    Scenario scenario = scenarioFrom(root, errors);
    if (!errors->isEmpty())
        return std::nullopt;
    return scenario;
}

std::optional<Scenario> loadScenario(const QString& fileName, QStringList* errors)
{
    QFile file(fileName);
    if (!file.open(QIODevice::ReadOnly)) {
        errors->append(QStringLiteral("%1: %2").arg(fileName, file.errorString()));
        return std::nullopt;
    }
    std::optional<Scenario> scenario = parseScenario(file.readAll(), errors);
    for (QString& error : *errors)
        error.prepend(fileName + QStringLiteral(": "));
    return scenario;
}

Scenario defaultScenario()
{
    Pump inReach;
    inReach.serialNumber = QStringLiteral("MV-204817");
    inReach.address = QStringLiteral("00:1E:42:7A:03:11");
    inReach.confirmationCode = QStringLiteral("481207");
    Pump away;
    away.serialNumber = QStringLiteral("MV-198305");
    away.address = QStringLiteral("00:1E:42:7A:05:C4");
    away.confirmationCode = QStringLiteral("730164");
    away.inRange = false;

    Scenario scenario;
    scenario.pumps = {inReach, away};
    return scenario;
}
