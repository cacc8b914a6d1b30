// SPDX-FileCopyrightText: 2026 The Merivo Connections developers
// SPDX-License-Identifier: MIT
#include "tools/reader/ReaderMemory.h"

#include "tools/support/JsonFields.h"

#include <QFile>
#include <QJsonDocument>
#include <QSaveFile>

#include <algorithm>
#include <limits>
#include <utility>

namespace {

const std::pair<const char*, QString Pump::*> TextFields[] = {{"serialNumber", &Pump::serialNumber},
                                                              {"name", &Pump::name},
                                                              {"model", &Pump::model},
                                                              {"address", &Pump::address},
                                                              {"patientId", &Pump::patientId}};

} // namespace

void ReaderMemory::pair(const QString& serialNumber, const QString& patientId)
{
    for (Pump& pump : pumps) {
        if (pump.serialNumber == serialNumber)
            pump.patientId = patientId;
        else if (pump.patientId == patientId)
            pump.patientId.clear();
    }
}

bool loadMemory(const QString& fileName, const QVector<Pump>& scenarioPumps, ReaderMemory* memory, QString* error)
{
    memory->pumps = scenarioPumps;
    QFile file(fileName);
    if (!file.exists())
        return true;
    QStringList errors;
    if (!file.open(QIODevice::ReadOnly)) {
        *error = fileName + ": " + file.errorString();
        return false;
    }
    JsonFields::parse(file.readAll(), &errors, [memory](JsonFields& fields) {
        fields.number("starts", 0, std::numeric_limits<int>::max() - 1, &memory->starts);
        fields.number("readouts", 0, std::numeric_limits<int>::max() - 1, &memory->readouts);
        fields.objects("pumps", [memory](JsonFields& kept) {
            Pump pump;
            pump.inRange = false;
            kept.require("serialNumber");
            for (const auto& [name, member] : TextFields)
                kept.text(name, &(pump.*member));
            const bool isKnown = std::any_of(memory->pumps.cbegin(), memory->pumps.cend(), [&pump](const Pump& other) {
                return other.serialNumber == pump.serialNumber;
            });
            if (!isKnown && !pump.patientId.isEmpty())
                memory->pumps.append(pump);
            memory->pair(pump.serialNumber, pump.patientId);
        });
    });
    if (!errors.isEmpty())
        *error = fileName + ": " + errors.first();
    return errors.isEmpty();
}

bool saveMemory(const QString& fileName, const ReaderMemory& memory, QString* error)
{
    QJsonArray pumps;
    for (const Pump& pump : memory.pumps) {
        QJsonObject object;
        for (const auto& [name, member] : TextFields)
            object.insert(name, pump.*member);
        pumps.append(object);
    }
    const QJsonObject root{{"starts", memory.starts}, {"readouts", memory.readouts}, {"pumps", pumps}};
    QSaveFile file(fileName);
    if (file.open(QIODevice::WriteOnly) && file.write(QJsonDocument(root).toJson()) >= 0 && file.commit())
        return true;
    *error = fileName + ": " + file.errorString();
    return false;
}
