// SPDX-FileCopyrightText: 2026 The Merivo Connections developers
// SPDX-License-Identifier: MIT
#include "workbench/reader/ReaderMemory.h"

#include "workbench/reader/JsonFields.h"

#include <QFile>
#include <QJsonDocument>
#include <QSaveFile>

#include <algorithm>
#include <limits>

namespace {

Pump keptPumpFrom(const QJsonValue& value, const QString& path, QStringList* errors)
{
    Pump pump;
    pump.inRange = false;
    JsonFields fields(value, path, errors);
    fields.require(QStringLiteral("serialNumber"));
    fields.text(QStringLiteral("serialNumber"), &pump.serialNumber);
    fields.text(QStringLiteral("name"), &pump.name);
    fields.text(QStringLiteral("model"), &pump.model);
    fields.text(QStringLiteral("address"), &pump.address);
    fields.text(QStringLiteral("patientId"), &pump.patientId);
    fields.refuseOthers();
    return pump;
}

void merge(const Pump& kept, QVector<Pump>* pumps)
{
    // A patient has one pump at most.
    for (Pump& pump : *pumps) {
        if (pump.patientId == kept.patientId)
            pump.patientId.clear();
    }
    const auto same = [&kept](const Pump& pump) {
        return pump.serialNumber == kept.serialNumber;
    };
    const auto found = std::find_if(pumps->begin(), pumps->end(), same);
    if (found != pumps->end())
        found->patientId = kept.patientId;
    else if (!kept.patientId.isEmpty())
        pumps->append(kept);
}

} // namespace

bool loadMemory(const QString& fileName, const QVector<Pump>& scenarioPumps, ReaderMemory* memory, QString* error)
{
    memory->pumps = scenarioPumps;
    QFile file(fileName);
    if (!file.exists())
        return true;
    QStringList errors;
    if (!file.open(QIODevice::ReadOnly)) {
        errors.append(file.errorString());
    } else {
        const QJsonValue root = parseJson(file.readAll(), &errors);
        if (errors.isEmpty()) {
            JsonFields fields(root, {}, &errors);
            fields.number(QStringLiteral("starts"), 0, std::numeric_limits<int>::max() - 1, &memory->starts);
            fields.number(QStringLiteral("readouts"), 0, std::numeric_limits<int>::max() - 1, &memory->readouts);
            fields.array(QStringLiteral("pumps"), [&](const QJsonValue& value, const QString& path) {
                merge(keptPumpFrom(value, path, &errors), &memory->pumps);
            });
            fields.refuseOthers();
        }
    }
    if (errors.isEmpty())
        return true;
    *error = QStringLiteral("%1: %2").arg(fileName, errors.first());
    return false;
}

bool saveMemory(const QString& fileName, const ReaderMemory& memory, QString* error)
{
    QJsonArray pumps;
    for (const Pump& pump : memory.pumps)
        pumps.append(QJsonObject{{QStringLiteral("serialNumber"), pump.serialNumber},
                                 {QStringLiteral("name"), pump.name},
                                 {QStringLiteral("model"), pump.model},
                                 {QStringLiteral("address"), pump.address},
                                 {QStringLiteral("patientId"), pump.patientId}});
    const QJsonObject root{{QStringLiteral("starts"), memory.starts},
                           {QStringLiteral("readouts"), memory.readouts},
                           {QStringLiteral("pumps"), pumps}};
    QSaveFile file(fileName);
    if (file.open(QIODevice::WriteOnly) && file.write(QJsonDocument(root).toJson()) >= 0 && file.commit())
        return true;
    *error = QStringLiteral("%1: %2").arg(fileName, file.errorString());
    return false;
}
