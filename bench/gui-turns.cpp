// SPDX-FileCopyrightText: 2026 The Merivo Connections developers
// SPDX-License-Identifier: MIT

// How long the GUI thread's event loop is blocked in whole read-outs, from the menu entry to the import.

#include "bench/Report.h"
#include "bench/TurnMeter.h"
#include "hostapi/IComponent.h"
#include "hostapi/IPlugin.h"
#include "support/ModalUser.h"
#include "support/ReaderFolder.h"
#include "support/RecordingHost.h"

#include <QApplication>
#include <QDir>
#include <QPluginLoader>
#include <QPushButton>
#include <QSettings>
#include <QTemporaryDir>
#include <QThread>
#include <QTimer>

#include <algorithm>
#include <cstdio>
#include <cstdlib>

namespace {

constexpr int TimeoutMs = 60000;
constexpr int PauseMs = 500;     // before each read-out
constexpr int CheckMs = 1000;    // between two checks of the user, each of which is a turn
constexpr int ProgressMs = 3000; // the reader's time for the pump's history
constexpr int ExchangeFileBytes = 512 * 1024;

/// A separate thread for the reader, as a real one is a separate device.
class ReaderThread final : public QThread
{
public:
    ~ReaderThread() override
    {
        quit();
        wait();
    }
};

void prepare(ReaderFolder& reader)
{
    reader.writeFile("V0001.log", "Log\n\n\n\nFirmware version 3.2.23\n");
    reader.writeStatus("Reader status 0", "NONE", "done");
    reader.answer("BTISPAIRED", {{200, "running"}, {300, "done", "1234567"}});
    reader.answer("BTREAD", {{300, "running"}, {ProgressMs, "done"}});
    reader.beforeLastAnswer = [&reader](const QString& command) {
        if (command == "BTREAD")
            reader.writeFile("I0001.xml", QByteArray(ExchangeFileBytes, 'x'));
    };
}

/// Exits without destroying the objects of the current run, which are still in use.
[[noreturn]] void exitWithError(const QString& why)
{
    std::_Exit(benchmarkFailed(why));
}

/// The first @p firstReadOut turns belong to the first read-out, in which nothing is cached yet.
void addTurns(Report& report, const TurnMeter& meter, std::size_t firstReadOut)
{
    const std::vector<double> all = lengthsOf(meter.turns);
    const auto border = all.cbegin() + static_cast<std::ptrdiff_t>(firstReadOut);
    const std::vector<double> first(all.cbegin(), border);
    const std::vector<double> later(border, all.cend());
    report.add("the event loop is blocked, 99th percentile of all turns", percentile(all, 0.99), "ms", 16);
    report.add("the event loop is blocked, 99th percentile, first read-out", percentile(first, 0.99), "ms", 16);
    report.add("maximum, first read-out", percentile(first, 1), "ms", 16);
    report.add("maximum, later read-outs", percentile(later, 1), "ms", 16);
    double work = 0;
    for (const TurnMeter::Turn& turn : meter.turns)
        work = std::max(work, turn.work);
    report.add("maximum of the processor time, which other processes don't change", work, "ms", 16);
    report.note("maximum in the waits, without their steps of 20 ms", percentile(lengthsOf(meter.waitingTurns), 1),
                "ms");
    report.note("all read-outs", static_cast<double>(all.size()), "turns");
}

void listLongest(std::vector<TurnMeter::Turn> turns, std::size_t count)
{
    std::sort(turns.begin(), turns.end(),
              [](const auto& left, const auto& right) { return left.milliseconds > right.milliseconds; });
    turns.resize(std::min(count, turns.size()));
    for (const TurnMeter::Turn& turn : turns)
        std::fprintf(stderr, "%8.2f ms, %.2f of work  %s\n", turn.milliseconds, turn.work, qUtf8Printable(turn.during));
}

} // namespace

int main(int argc, char** argv)
{
    QApplication app(argc, argv);
    Report report(
        "Blocking of the GUI thread in read-outs (" + QGuiApplication::platformName() + ")",
        {{"rounds", 5, "Read-outs."}, {"longest", 0, "Number of the longest turns to list on standard error."}});
    const auto rounds = static_cast<std::size_t>(report.number("rounds"));
    ReaderFolder reader;
    prepare(reader);
    ReaderThread thread;
    reader.moveToThread(&thread);
    thread.start();
    const QTemporaryDir folder;
    RecordingHost host;
    host.deviceAdmin.drivePath = reader.drive();
    host.deviceAdmin.holdChanges = true; // so that execute() makes its first pause
    host.services.paths.insert(IServices::TranslationsPath, folder.path());

    QPluginLoader loader(MERIVO_PLUGIN_FILE);
    auto* plugin = qobject_cast<IPlugin*>(loader.instance());
    if (!plugin)
        return benchmarkFailed("can't load the plug-in: " + loader.errorString());
    QSettings settings(folder.filePath("plugin.ini"), QSettings::IniFormat);
    plugin->setExtensionRegistry(&host);
    plugin->initialize(settings, QDir(folder.path()));
    plugin->installTranslator();
    IComponent* component = plugin->components().value(0);

    std::size_t readOuts = 0;
    TurnMeter meter([&] {
        return QString("read-out %1, latest record: %2")
            .arg(readOuts + 1)
            .arg(host.journal.lines.value(host.journal.lines.size() - 1));
    });
    if (!meter.isMeasuring()) {
        report.addMissing("the event loop is blocked", "no GLib event dispatcher");
        return report.print();
    }

    // The host's window with its menu entry, shown before the measurement starts.
    QPushButton window(component->menuText());
    window.setIcon(component->icon());
    // Queued, so that it doesn't block the user's timer while the dialog that it opens is shown.
    const auto read = [](const QWidget& dialog) {
        if (QPushButton* button = pressableButtons(dialog).value("m_readPumpButton"))
            QMetaObject::invokeMethod(button, &QPushButton::click, Qt::QueuedConnection);
    };
    const ModalUser user(read, CheckMs);
    std::size_t firstReadOut = 0;
    QObject::connect(&window, &QPushButton::clicked, &window, [&] {
        if (!component->execute(&window))
            exitWithError("the plug-in refused the run");
        if (readOuts == 0)
            firstReadOut = meter.turns.size();
        ++readOuts;
        if (readOuts == rounds)
            QCoreApplication::quit();
        else
            QTimer::singleShot(PauseMs, &window, &QPushButton::click);
    });
    QTimer::singleShot(TimeoutMs * static_cast<int>(rounds), &window, [] { exitWithError("the read-outs don't end"); });
    window.show();
    QTimer::singleShot(PauseMs, &window, [&] {
        meter.keep(true);
        host.openDiary("p-0001", {"Doe", "Jane", "1970-02-03", "4711"});
        QTimer::singleShot(PauseMs, &window, &QPushButton::click);
    });
    QCoreApplication::exec();
    if (host.commandHandler.imports.size() != rounds)
        return benchmarkFailed(QString("only %1 read-outs led to an import").arg(host.commandHandler.imports.size()));

    addTurns(report, meter, firstReadOut);
    listLongest(meter.turns, static_cast<std::size_t>(report.number("longest")));
    return report.print();
}
