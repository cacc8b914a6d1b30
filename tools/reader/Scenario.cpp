// SPDX-FileCopyrightText: 2026 The Merivo Connections developers
// SPDX-License-Identifier: MIT
#include "tools/reader/Scenario.h"

#include "tools/support/JsonFields.h"

#include <QFile>

#include <limits>

namespace {

const int MaxMs = 3600 * 1000;
/// The commands that address one pump and can fail because of it.
const QStringList PumpCommands = {"BTPAIR", "BTPAIRCONFIRM", "BTREAD", "BTDELETEADDR", "BTPUMPREASSIGN"};

const QHash<QString, PumpUser> Users{{"confirms", PumpUser::Confirms},
                                     {"declines", PumpUser::Declines},
                                     {"walks away", PumpUser::WalksAway},
                                     {"does nothing", PumpUser::DoesNothing}};

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

void readExchange(JsonFields& fields, ExchangeSettings* settings)
{
    fields.number("days", 1, 20000, &settings->days);
    QString lastDay;
    fields.text("lastDay", &lastDay);
    if (lastDay.isNull())
        return;
    settings->lastDay = QDate::fromString(lastDay, Qt::ISODate);
    if (!settings->lastDay.isValid())
        fields.fail("lastDay", "must be a date such as 2026-03-01");
}

void readUser(JsonFields& fields, Pump* pump)
{
    fields.require("does");
    QString does;
    fields.text("does", &does);
    pump->user = Users.value(does, pump->user);
    if (!does.isNull() && !Users.contains(does))
        fields.fail("does", "must be \"confirms\", \"declines\", \"walks away\" or \"does nothing\"");
    fields.number("afterMs", 0, MaxMs, &pump->userTakesMs);
}

void readPump(JsonFields& fields, Pump* pump)
{
    fields.require("serialNumber");
    fields.require("address");
    fields.text("serialNumber", &pump->serialNumber);
    fields.text("name", &pump->name);
    fields.text("model", &pump->model);
    fields.text("address", &pump->address);
    fields.text("confirmationCode", &pump->confirmationCode);
    fields.text("patientId", &pump->patientId);
    fields.flag("inRange", &pump->inRange);
    fields.number("linkHoldsMs", 0, MaxMs, &pump->linkHoldsMs);
    fields.object("user", [pump](JsonFields& user) { readUser(user, pump); });
    fields.object("errors", [pump](JsonFields& codes) {
        for (const QString& word : codes.names()) {
            if (PumpCommands.contains(word))
                codes.number(word, 1, std::numeric_limits<int>::max(), &pump->errors[word]);
        }
    });

    // A result of fewer than three characters means that there is no pump, so serial numbers must be longer.
    if (!pump->serialNumber.isNull() && (pump->serialNumber.size() < 3 || pump->serialNumber.contains('"')))
        fields.fail("serialNumber", "must have three characters or more, and no quote");
    if (!pump->address.isNull() && (pump->address.isEmpty() || pump->address.contains(' ')))
        fields.fail("address", "must not be empty or contain a space");
    if (!pump->patientId.isEmpty() && !isPatientId(pump->patientId))
        fields.fail("patientId", "must not be \"0\", or begin or end with a space");
}

void refuseTwins(const QVector<Pump>& pumps, const QString& field, QString Pump::*member, QStringList* errors)
{
    QHash<QString, int> seen;
    for (int i = 0; i < pumps.size(); ++i) {
        const QString& value = pumps.at(i).*member;
        if (value.isEmpty())
            continue;
        if (seen.contains(value))
            errors->append(
                QString("pumps[%1].%2: \"%3\" is also that of pumps[%4]").arg(i).arg(field, value).arg(seen[value]));
        seen.insert(value, i);
    }
}

void readScenario(JsonFields& fields, Scenario* scenario, QStringList* errors)
{
    QString comment;
    fields.text("comment", &comment);
    fields.text("firmware", &scenario->firmware);
    int seed = static_cast<int>(scenario->seed);
    fields.number("seed", 0, std::numeric_limits<int>::max(), &seed);
    scenario->seed = static_cast<quint32>(seed);
    fields.object("times", [scenario](JsonFields& times) {
        for (const auto& entry : TimeFields)
            times.number(entry.name, 0, MaxMs, &(scenario->times.*entry.field));
    });
    fields.object("exchange", [scenario](JsonFields& exchange) { readExchange(exchange, &scenario->exchange); });
    fields.objects("pumps", [scenario](JsonFields& pump) {
        scenario->pumps.append(Pump());
        readPump(pump, &scenario->pumps.last());
    });
    refuseTwins(scenario->pumps, "serialNumber", &Pump::serialNumber, errors);
    refuseTwins(scenario->pumps, "address", &Pump::address, errors);
    refuseTwins(scenario->pumps, "patientId", &Pump::patientId, errors);
    fields.array("faults", [&](const QJsonValue& value, const QString& path) {
        QString error = "must be a text";
        if (!value.isString() || !scenario->faults.add(value.toString(), &error))
            errors->append(path + ": " + error);
    });
}

} // namespace

bool isPatientId(const QString& patientId)
{
    return !patientId.isEmpty() && patientId != "0" && patientId == patientId.trimmed();
}

std::optional<Scenario> parseScenario(const QByteArray& bytes, QStringList* errors)
{
    Scenario scenario;
    JsonFields::parse(bytes, errors, [&](JsonFields& fields) { readScenario(fields, &scenario, errors); });
    return errors->isEmpty() ? std::make_optional(scenario) : std::nullopt;
}

std::optional<Scenario> loadScenario(const QString& fileName, QStringList* errors)
{
    QFile file(fileName);
    if (!file.open(QIODevice::ReadOnly)) {
        errors->append(fileName + ": " + file.errorString());
        return std::nullopt;
    }
    std::optional<Scenario> scenario = parseScenario(file.readAll(), errors);
    for (QString& error : *errors)
        error.prepend(fileName + ": ");
    return scenario;
}

Scenario defaultScenario()
{
    QStringList errors;
    return *parseScenario(R"({"pumps": [
        {"serialNumber": "MV-204817", "address": "00:1E:42:7A:03:11", "confirmationCode": "481207"},
        {"serialNumber": "MV-198305", "address": "00:1E:42:7A:05:C4", "confirmationCode": "730164", "inRange": false}
    ]})",
                          &errors);
}
