// SPDX-FileCopyrightText: 2026 The Merivo Connections developers
// SPDX-License-Identifier: MIT

// A scenario of merivo-reader: the file's bytes.

#include "workbench/reader/Scenario.h"
#include "fuzz/Drive.h"
#include "plugin/session/PatientSession.h"
#include "reader/DeviceList.h"
#include "reader/StatusRecord.h"
#include "workbench/reader/ReaderFiles.h"

#include <QSet>
#include <QTextStream>

#include <algorithm>

namespace {

/// The plug-in reads from the reader's files what the scenario said.
void checkDeviceList(const QVector<Pump>& pumps)
{
    static const Drive drive;
    const QString name = QStringLiteral("DEVLIST.XML");
    drive.write(name, deviceListXml(pumps));
    const QList<DeviceInfo> devices = readDeviceList(drive.misc(), name);
    require(devices.size() == pumps.size(), "the list has every pump");
    for (int i = 0; i < devices.size(); ++i) {
        const Pump& pump = pumps.at(i);
        const DeviceInfo& device = devices.at(i);
        require(device.serialNumber == pump.serialNumber, "the list has the serial number");
        require(device.btAddress == pump.address, "the list has the address");
        require(device.patientId == pump.patientId, "the list has the patient");
        require(device.deviceName == PatientSession::displayNameOfDevice(pump.name), "the list has the name");
    }
}

void checkStatus(const Pump& pump)
{
    const ReaderStatus status{QStringLiteral("1"), QStringLiteral("BTPAIR"), QStringLiteral("done"),
                              pump.confirmationCode, 0};
    const QByteArray bytes = statusText(status);
    QTextStream stream(bytes);
    stream.setCodec("UTF-8");
    require(StatusRecord::fromText(stream).result == pump.confirmationCode, "the status has the code");
}

void checkPump(const Pump& pump)
{
    require(pump.serialNumber.size() >= 3 && !pump.serialNumber.contains(QLatin1Char('"')), "a serial number fits");
    require(!pump.address.isEmpty() && !pump.address.contains(QLatin1Char(' ')), "an address fits");
    require(pump.patientId.isEmpty() || isPatientId(pump.patientId), "a patient's id fits");
    require(pump.userTakesMs >= 0 && pump.linkHoldsMs >= 0, "no time is negative");
    require(std::none_of(pump.errors.cbegin(), pump.errors.cend(), [](int code) { return code < 1; }),
            "an error code is 1 or above");
    checkStatus(pump);
}

void checkScenario(const Scenario& scenario)
{
    const ReaderTimes& times = scenario.times;
    for (const int time : {times.pickup, times.isPaired, times.search, times.connect, times.read, times.pair,
                           times.confirm, times.reassign, times.remove, times.abort, times.userLimit, times.progress})
        require(time >= 0 && time <= 3600 * 1000, "a time is an hour at most");
    require(scenario.exchange.days >= 1 && scenario.exchange.lastDay.isValid(), "a read-out has days");

    QSet<QString> taken;
    for (const Pump& pump : scenario.pumps) {
        checkPump(pump);
        require(!taken.contains(QLatin1Char('s') + pump.serialNumber), "a serial number is one pump's");
        require(!taken.contains(QLatin1Char('a') + pump.address), "an address is one pump's");
        require(pump.patientId.isEmpty() || !taken.contains(QLatin1Char('p') + pump.patientId), "a patient has a pump");
        taken |=
            {QLatin1Char('s') + pump.serialNumber, QLatin1Char('a') + pump.address, QLatin1Char('p') + pump.patientId};
    }
    checkDeviceList(scenario.pumps);
    // Every one of its faults can be applied to every command.
    FaultSet faults = scenario.faults;
    for (const char* word : {"", "SEARCH", "BTREAD"}) {
        const Behaviour behaviour = faults.strike(QLatin1String(word));
        require(behaviour.extraMs >= 0 && behaviour.awayMs >= 0, "no time is negative");
        require(behaviour.listDevices >= 0 && behaviour.listBytes.value_or(0) >= 0, "no list is less than empty");
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    silenceLog();
    QStringList errors;
    const auto scenario =
        parseScenario(QByteArray(reinterpret_cast<const char*>(data), static_cast<int>(size)), &errors);
    require(scenario.has_value() == errors.isEmpty(), "a scenario is sound or has faults told");
    for (const QString& error : qAsConst(errors))
        require(error.indexOf(QLatin1String(": ")) > 0, "a fault is told with its place");
    if (scenario)
        checkScenario(*scenario);
    return 0;
}
