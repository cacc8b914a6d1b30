// SPDX-FileCopyrightText: 2026 The Merivo Connections developers
// SPDX-License-Identifier: MIT

// How the end of a search for pumps grows with the reader's device list, and the lookup of a pump's patient in
// merivo-host with the number of patients.

#include "base/PatientSession.h"
#include "bench/Machine.h"
#include "bench/Report.h"
#include "dialogs/PumpAddDialog.h"
#include "readerlink/CommandFileWriter.h"
#include "readerlink/DeviceList.h"
#include "readerlink/StatusFileParser.h"
#include "support/ReaderFolder.h"
#include "support/RecordingHost.h"
#include "tools/host/ExtensionPoints.h"
#include "tools/host/HostDatabase.h"
#include "tools/host/HostLog.h"

#include <QApplication>
#include <QEvent>
#include <QFile>
#include <QPushButton>
#include <QSqlDatabase>
#include <QSqlQuery>
#include <QTableView>
#include <QTemporaryDir>

#include <memory>

namespace {

constexpr int TimeoutMs = 60000;
const QString FileName = "DEVLIST.XML";

PatientRecord patientOf(int number)
{
    const QString text = QString::number(number);
    return {"p-" + text, {"Name " + text, "Surname", "1970-02-03", text}};
}

/// Returns a list of pumps that are paired with the first hundred patients, or with unknown ones.
QByteArray deviceList(int devices, bool isStale)
{
    QByteArray text("<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<DEVICELIST>\n");
    for (int i = 0; i < devices; ++i) {
        const QByteArray number = QByteArray::number(1000000 + i);
        const QByteArray patient = (isStale ? "gone-" : "p-") + QByteArray::number(i % 100);
        text += "<DEVICE><CLASS>PUMP</CLASS><NAME>Cygnara</NAME><MODELNR>1</MODELNR><SERIALNR>" + number +
                "</SERIALNR><INTERFACE><BTADR>00" + number + "000</BTADR><PATIENT_ID>" + patient +
                "</PATIENT_ID></INTERFACE></DEVICE>\n";
    }
    return text + "</DEVICELIST>\n";
}

/// Records when a widget is painted.
class PaintWatch final : public QObject
{
public:
    explicit PaintWatch(QWidget* watched) { watched->installEventFilter(this); }
    bool isPainted = false;

private:
    bool eventFilter(QObject*, QEvent* event) override
    {
        isPainted |= event->type() == QEvent::Paint;
        return false;
    }
};

/// Returns the milliseconds from the finished() of a search until the list of pumps is painted; -1 if it isn't.
double paintedSearch(const ReaderFolder& reader, RecordingHost& host)
{
    host.journal.clear();
    const std::unique_ptr<CommandFileWriter> writer(CommandFileWriter::create(reader.drive()));
    const std::unique_ptr<StatusFileParser> parser(StatusFileParser::create(reader.drive()));
    PumpAddDialog dialog(&host.services, &host.database, {}, nullptr);
    dialog.show();
    QCoreApplication::processEvents();
    parser->m_state = StatusFileParser::Ended; // as after the main dialog's query; otherwise "Search" means "Stop"
    dialog.findChild<QPushButton*>("m_OverviewButton")->click();

    // The search's own polling starts after half a second, when this is over.
    PaintWatch watch(dialog.findChild<QTableView*>("m_PumpsOverview")->viewport());
    parser->m_lastStatus.status = CommandStatus::Done;
    const double start = workMilliseconds();
    Q_EMIT parser->finished(true);
    while (!watch.isPainted && workMilliseconds() - start < TimeoutMs)
        QCoreApplication::processEvents();
    return watch.isPainted ? workMilliseconds() - start : -1;
}

bool measureDevices(Report& report, const ReaderFolder& reader)
{
    RecordingHost host;
    for (int i = 0; i < 100; ++i)
        host.database.records.insert(patientOf(i).puid, patientOf(i));
    PatientSession::setHost(&host.services, &host.database);
    PatientSession::instance()->setPatientId("p-0");
    Growth reading("device list read", "devices", "ms");
    Growth ending("search to painted list", "devices", "ms");
    Growth removing("search to painted list, all pairings stale", "devices", "ms");
    for (int devices = 1; devices <= report.number("devices"); devices *= 10) {
        for (const bool isStale : {false, true}) {
            if (!reader.writeFile(FileName, deviceList(devices, isStale)) ||
                readDeviceList(reader.misc(), FileName).size() != devices)
                return false;
            const double time = lowestCost([&] { return paintedSearch(reader, host); });
            if (time < 0)
                return false;
            (isStale ? removing : ending).add(devices, time);
        }
        reading.add(devices, lowestCost([&] {
                        const double start = workMilliseconds();
                        readDeviceList(reader.misc(), FileName);
                        return workMilliseconds() - start;
                    }));
    }
    for (const Growth* growth : {&reading, &ending, &removing})
        growth->addTo(report, 1.3);
    return true;
}

/// Adds patients to the database in one transaction; HostDatabase has one for each patient.
bool addPatients(const QString& path, int first, int end)
{
    QSqlDatabase connection = QSqlDatabase::addDatabase("QSQLITE", QString::number(end));
    connection.setDatabaseName(path);
    bool isDone = connection.open() && connection.transaction();
    QSqlQuery query(connection);
    query.prepare("INSERT INTO patients (name1, name2, birthday, extension, puid) VALUES (?, ?, ?, ?, ?)");
    for (int i = first; i < end && isDone; ++i) {
        for (const QString& value : patientOf(i).ids + QStringList(patientOf(i).puid))
            query.addBindValue(value);
        isDone = query.exec();
    }
    query.finish();
    isDone = isDone && connection.commit();
    connection.close();
    return isDone;
}

/// Measures the lookup of the last patient's name, as the tooltip over a pump makes it.
bool measurePatients(Report& report)
{
    const QTemporaryDir folder;
    HostLog log;
    HostDatabase database;
    if (!database.open(folder.filePath("patients.sqlite")))
        return false;
    HostServices services(log, database);
    DatabasePoint point(log, database);
    PatientSession::setHost(&services, &point);
    Growth names("name of a patient", "patients", "ms");
    int present = 0;
    double longest = 0;
    for (int count = 10; count <= report.number("patients"); count *= 10) {
        if (!addPatients(database.path(), present, count))
            return false;
        present = count;
        const PatientRecord last = point.patients(database.guid()).last();
        const QString expected = last.ids.at(0) + ", " + last.ids.at(1);
        longest = lowestCost([&] {
            const double start = workMilliseconds();
            const QString name = PatientSession::patientName(PatientSession::patientIdsOf(last.puid));
            const double time = workMilliseconds() - start;
            return name == expected ? time : -1;
        });
        if (longest < 0)
            return false;
        names.add(count, longest);
    }
    // No limit for the growth: a map of 100,000 patients doesn't fit into the processor's caches.
    names.addTo(report, std::nullopt);
    report.add("name of a patient, all patients", longest, "ms", 16); // one frame of the screen
    return true;
}

} // namespace

int main(int argc, char** argv)
{
    QApplication app(argc, argv);
    Report report("Growth of a search with the devices and the patients",
                  {{"devices", 10000, "The largest number of devices."},
                   {"patients", 100000, "The largest number of patients."}});
    keepFreedMemory();
    qputenv("TMPDIR", QFile::encodeName(memoryFolder())); // disk access isn't part of the measurement
    const ReaderFolder reader;
    reader.writeStatus("Reader status 0", "NONE", "done");
    if (!measureDevices(report, reader) || !measurePatients(report))
        return benchmarkFailed("a file can't be written, or a search has wrong results");
    return report.print();
}
