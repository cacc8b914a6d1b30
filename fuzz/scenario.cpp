// SPDX-FileCopyrightText: 2026 The Merivo Connections developers
// SPDX-License-Identifier: MIT

// The bytes of a scenario of merivo-reader.

#include "tools/reader/Scenario.h"
#include "base/PatientSession.h"
#include "fuzz/Target.h"
#include "readerlink/DeviceList.h"
#include "readerlink/StatusRecord.h"
#include "tools/reader/ReaderFiles.h"

#include <QSet>
#include <QTextStream>

#include <algorithm>

namespace {

/// The plug-in reads the values of the scenario from the reader's files.
void checkDeviceList(const QVector<Pump>& pumps)
{
    static const Drive drive;
    const QString name = "DEVLIST.XML";
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
    const ReaderStatus status{"1", "BTPAIR", "done", pump.confirmationCode, 0};
    const QByteArray bytes = statusText(status);
    QTextStream stream(bytes);
    stream.setCodec("UTF-8");
    require(StatusRecord::parse(stream).result == pump.confirmationCode, "the status has the code");
}

void checkPump(const Pump& pump)
{
    require(pump.serialNumber.size() >= 3 && !pump.serialNumber.contains('"'), "a serial number is valid");
    require(!pump.address.isEmpty() && !pump.address.contains(' '), "an address is valid");
    require(pump.patientId.isEmpty() || isPatientId(pump.patientId), "a patient's id is valid");
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
        require(time >= 0 && time <= 3600 * 1000, "a time is at most an hour");
    require(scenario.exchange.days >= 1 && scenario.exchange.lastDay.isValid(), "a read-out has days");

    QSet<QString> taken;
    for (const Pump& pump : scenario.pumps) {
        checkPump(pump);
        require(!taken.contains('s' + pump.serialNumber), "a serial number has one pump");
        require(!taken.contains('a' + pump.address), "an address has one pump");
        require(pump.patientId.isEmpty() || !taken.contains('p' + pump.patientId), "a patient has one pump");
        taken |= {'s' + pump.serialNumber, 'a' + pump.address, 'p' + pump.patientId};
    }
    checkDeviceList(scenario.pumps);
    // Each fault can be applied to each command.
    FaultSet faults = scenario.faults;
    for (const char* word : {"", "SEARCH", "BTREAD"}) {
        const ActiveFaults active = faults.take(QLatin1String(word));
        for (const char* name : {"slow", "fail", "half-status", "list-cut", "list-devices"})
            require(!active.contains(name) || active.value(name).toInt() > 0, "a number is above 0");
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    QStringList errors;
    const auto scenario = parseScenario(inputOf(data, size), &errors);
    require(scenario.has_value() == errors.isEmpty(), "a scenario is valid or has errors");
    for (const QString& error : qAsConst(errors))
        require(error.indexOf(": ") > 0, "an error names its field");
    if (scenario)
        checkScenario(*scenario);
    return 0;
}
