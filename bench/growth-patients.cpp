// SPDX-FileCopyrightText: 2026 The Merivo Connections developers
// SPDX-License-Identifier: MIT

// How the look-up of a pump's owner and the end of a search grow with the number of patients, in a host that has them
// at hand and in merivo-host's database.

#include "bench/Growth.h"
#include "bench/Machine.h"
#include "plugin/session/PatientSession.h"
#include "reader/CommandFileWriter.h"
#include "reader/StatusFileParser.h"
#include "support/ReaderFolder.h"
#include "support/RecordingHost.h"
#include "workbench/host/ExtensionPoints.h"
#include "workbench/host/HostDatabase.h"
#include "workbench/host/HostLog.h"
#include "workflows/AddPumpControl.h"

#include <QApplication>
#include <QSqlDatabase>
#include <QSqlQuery>
#include <QTemporaryDir>

#include <array>
#include <memory>

namespace {

PatientRecord patientOf(int number)
{
    const QString text = QString::number(number);
    return {QStringLiteral("p-%1").arg(number),
            {QStringLiteral("Name ") + text, QStringLiteral("Surname"), QStringLiteral("1970-02-03"), text}};
}

/// Behind the database's back, as each patient is a transaction of its own there.
bool addPatients(const QString& path, int first, int end)
{
    const QString name = QStringLiteral("filler");
    bool done = false;
    {
        QSqlDatabase connection = QSqlDatabase::addDatabase(QStringLiteral("QSQLITE"), name);
        connection.setDatabaseName(path);
        done = connection.open() && connection.transaction();
        QSqlQuery query(connection);
        query.prepare(QStringLiteral("INSERT INTO patients (name1, name2, birthday, extension, puid)"
                                     " VALUES (?, ?, ?, ?, ?)"));
        for (int i = first; i < end && done; ++i) {
            const PatientRecord patient = patientOf(i);
            for (const QString& id : patient.ids)
                query.addBindValue(id);
            query.addBindValue(patient.puid);
            done = query.exec();
        }
        done = done && connection.commit();
    }
    QSqlDatabase::removeDatabase(name);
    return done;
}

struct Host
{
    IServices* services;
    IDatabase* database;
};

/// Milliseconds for the name of the patient who stands last in the map's order; -1 if it isn't found.
double nameOfPatient(const PatientRecord& patient)
{
    const double start = workMilliseconds();
    const QString name = PatientSession::patientName(PatientSession::patientIdsOf(patient.puid));
    const double time = workMilliseconds() - start;
    return name == patient.ids.at(0) + QStringLiteral(", ") + patient.ids.at(1) ? time : -1;
}

/// Milliseconds from the end of a search to its results, with ten pumps of known patients; -1 if none come.
double endOfSearch(const ReaderFolder& reader, const Host& host)
{
    const std::unique_ptr<CommandFileWriter> writer(CommandFileWriter::create(reader.drive()));
    const std::unique_ptr<StatusFileParser> parser(StatusFileParser::create(reader.drive()));
    AddPumpControl control(host.services, host.database, nullptr);
    int devices = 0;
    QObject::connect(
        &control, &AddPumpControl::pairingSearchResults, &control, [&devices](const QList<DeviceInfo>& found) {
            devices = static_cast<int>(
                std::count_if(found.cbegin(), found.cend(), [](const DeviceInfo& device) { return device.paired; }));
        });
    control.startPairingSearch();
    parser->m_lastStatus.status = CommandStatus::Done;
    const double start = workMilliseconds();
    Q_EMIT parser->finished(true);
    QCoreApplication::processEvents();
    return devices == 10 ? workMilliseconds() - start : -1;
}

} // namespace

int main(int argc, char** argv)
{
    QApplication app(argc, argv);
    Report report(QStringLiteral("How the look-up of a patient grows with the number of patients"));
    report.addNumber(QStringLiteral("most"), QStringLiteral("The largest number of patients."), 100000);
    report.parse();
    quietLog();
    keepFreedMemory();

    const QTemporaryDir folder;
    HostLog log;
    HostDatabase patients;
    if (!patients.open(folder.filePath(QStringLiteral("patients.sqlite"))))
        return benchmarkFailed(patients.errorText());
    HostServices services(log, patients);
    DatabasePoint point(log, patients);
    RecordingHost recorder;
    const std::array<Host, 2> hosts{{{&recorder.services, &recorder.database}, {&services, &point}}};

    const ReaderFolder reader;
    reader.writeStatus(QStringLiteral("Reader status 0"), QStringLiteral("NONE"), QStringLiteral("done"));
    QByteArray list("<DEVICELIST>");
    for (int i = 0; i < 10; ++i)
        list += "<DEVICE><SERIALNR>" + QByteArray::number(1000000 + i) +
                "</SERIALNR><INTERFACE><PATIENT_ID>p-0</PATIENT_ID></INTERFACE></DEVICE>";
    reader.writeFile(QStringLiteral("DEVLIST.XML"), list + "</DEVICELIST>");

    const QString things = QStringLiteral("patients");
    const QString unit = QStringLiteral("ms");
    std::array<Growth, 2> names{Growth(QStringLiteral("name of a patient, host with a map"), things, unit),
                                Growth(QStringLiteral("name of a patient, merivo-host"), things, unit)};
    std::array<Growth, 2> searches{Growth(QStringLiteral("end of a search, host with a map"), things, unit),
                                   Growth(QStringLiteral("end of a search, merivo-host"), things, unit)};
    int present = 0;
    double longestName = 0;
    for (int count = 1; count <= report.number(QStringLiteral("most")); count *= 10) {
        if (!addPatients(patients.path(), present, count))
            return benchmarkFailed(QStringLiteral("can't add patients to %1").arg(patients.path()));
        for (; present < count; ++present)
            recorder.database.records.insert(patientOf(present).puid, patientOf(present));
        const PatientRecord last = recorder.database.records.last();
        for (std::size_t i = 0; i < hosts.size(); ++i) {
            PatientSession::setHost(hosts.at(i).services, hosts.at(i).database);
            const double name = shortest([&] { return nameOfPatient(last); });
            const double search = shortest([&] { return endOfSearch(reader, hosts.at(i)); });
            if (name < 0 || search < 0)
                return benchmarkFailed(QStringLiteral("a patient of %1 isn't found").arg(count));
            names.at(i).add(count, name);
            longestName = name; // finally that of merivo-host with all patients
            searches.at(i).add(count, search);
        }
    }
    // The walk through a map is bound by the processor's caches, which a hundred thousand patients don't fit in: their
    // step has no limit.
    for (const std::array<Growth, 2>& growths : {names, searches})
        for (const Growth& growth : growths)
            growth.tell(report, std::nullopt);
    report.add(QStringLiteral("name of a patient, merivo-host, with all patients"), longestName, QStringLiteral("ms"),
               16); // a frame of the screen, which a tooltip's turn must not exceed
    return report.print();
}
