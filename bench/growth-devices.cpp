// SPDX-FileCopyrightText: 2026 The Merivo Connections developers
// SPDX-License-Identifier: MIT

// How the end of a search for pumps grows with the reader's device list.

#include "bench/Growth.h"
#include "bench/Machine.h"
#include "dialogs/PumpAddDialog.h"
#include "plugin/session/PatientSession.h"
#include "reader/CommandFileWriter.h"
#include "reader/DeviceList.h"
#include "reader/StatusFileParser.h"
#include "support/ReaderFolder.h"
#include "support/RecordingHost.h"

#include <QApplication>
#include <QEvent>
#include <QFile>
#include <QPushButton>
#include <QTableView>

#include <memory>

namespace {

constexpr int Patients = 100;
constexpr int PatienceMs = 60000;

QByteArray deviceList(int devices, bool isStale)
{
    QByteArray text("<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<DEVICELIST>\n");
    for (int i = 0; i < devices; ++i) {
        const QByteArray number = QByteArray::number(1000000 + i);
        const QByteArray patient = (isStale ? "gone-" : "p-") + QByteArray::number(i % Patients);
        text += "<DEVICE><CLASS>PUMP</CLASS><NAME>Cygnara</NAME><MODELNR>1</MODELNR><SERIALNR>" + number +
                "</SERIALNR><INTERFACE><BTADR>00" + number + "000</BTADR><PATIENT_ID>" + patient +
                "</PATIENT_ID></INTERFACE></DEVICE>\n";
    }
    return text + "</DEVICELIST>\n";
}

/// Notices when a widget is drawn.
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

/// Milliseconds from the end of a search, as the polling tells it, until the list of pumps is drawn; -1 if it isn't.
double endOfSearch(const ReaderFolder& reader, RecordingHost& host)
{
    host.journal.clear();
    const std::unique_ptr<CommandFileWriter> writer(CommandFileWriter::create(reader.drive()));
    const std::unique_ptr<StatusFileParser> parser(StatusFileParser::create(reader.drive()));
    PumpAddDialog dialog(&host.services, &host.database, {}, nullptr);
    dialog.show();
    QCoreApplication::processEvents();
    parser->m_state = StatusFileParser::Ended; // as behind the main dialog's query; otherwise "Search" means "Stop"
    auto* button = dialog.findChild<QPushButton*>(QStringLiteral("m_OverviewButton"));
    auto* table = dialog.findChild<QTableView*>(QStringLiteral("m_PumpsOverview"));
    button->click();

    // The search's own polling begins after half a second, when this is over.
    PaintWatch watch(table->viewport());
    parser->m_lastStatus.status = CommandStatus::Done;
    const double start = workMilliseconds();
    Q_EMIT parser->finished(true);
    while (!watch.isPainted && workMilliseconds() - start < PatienceMs)
        QCoreApplication::processEvents();
    return watch.isPainted ? workMilliseconds() - start : -1;
}

} // namespace

int main(int argc, char** argv)
{
    QApplication app(argc, argv);
    Report report(QStringLiteral("How the end of a search grows with the number of devices"));
    report.addNumber(QStringLiteral("most"), QStringLiteral("The largest number of devices."), 10000);
    report.parse();
    quietLog();
    keepFreedMemory();
    qputenv("TMPDIR", QFile::encodeName(memoryFolder())); // what a disk takes for the files isn't what grows here

    RecordingHost host;
    for (int i = 0; i < Patients; ++i) {
        const QString puid = QStringLiteral("p-%1").arg(i);
        host.database.records.insert(puid, {puid, {QStringLiteral("Doe"), QString::number(i), {}, {}}});
    }
    PatientSession::setHost(&host.services, &host.database);
    PatientSession::instance()->setPatientId(QStringLiteral("p-0"));
    const ReaderFolder reader;
    reader.writeStatus(QStringLiteral("Reader status 0"), QStringLiteral("NONE"), QStringLiteral("done"));
    const QString fileName = QStringLiteral("DEVLIST.XML");

    const QString things = QStringLiteral("devices");
    Growth reading(QStringLiteral("device list read"), things, QStringLiteral("ms"));
    Growth ending(QStringLiteral("end of a search, up to the drawn list"), things, QStringLiteral("ms"));
    Growth untying(QStringLiteral("the same with every pairing stale"), things, QStringLiteral("ms"));
    for (int devices = 1; devices <= report.number(QStringLiteral("most")); devices *= 10) {
        for (const bool isStale : {false, true}) {
            if (!reader.writeFile(fileName, deviceList(devices, isStale)))
                return benchmarkFailed(QStringLiteral("can't write %1").arg(fileName));
            if (readDeviceList(reader.misc(), fileName).size() != devices)
                return benchmarkFailed(QStringLiteral("the list of %1 devices isn't read").arg(devices));
            const double time = shortest([&] { return endOfSearch(reader, host); });
            if (time < 0)
                return benchmarkFailed(QStringLiteral("the list of %1 devices isn't drawn").arg(devices));
            (isStale ? untying : ending).add(devices, time);
        }
        reading.add(devices, shortest([&] {
                        const double start = workMilliseconds();
                        readDeviceList(reader.misc(), fileName);
                        return workMilliseconds() - start;
                    }));
    }
    for (const Growth* growth : {&reading, &ending, &untying})
        growth->tell(report, 1.3);
    return report.print();
}
