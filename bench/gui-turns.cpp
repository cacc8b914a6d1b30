// SPDX-FileCopyrightText: 2026 The Merivo Connections developers
// SPDX-License-Identifier: MIT

// How long the GUI thread's event loop stands still in whole read-outs, from the menu entry to the import.

#include "bench/Report.h"
#include "bench/TurnMeter.h"
#include "host/IComponent.h"
#include "host/IPlugin.h"
#include "support/ReaderFolder.h"
#include "support/RecordingHost.h"

#include <QAbstractButton>
#include <QApplication>
#include <QDir>
#include <QEvent>
#include <QPluginLoader>
#include <QPushButton>
#include <QSemaphore>
#include <QSettings>
#include <QTemporaryDir>
#include <QThread>
#include <QTimer>

#include <algorithm>
#include <cstdio>
#include <cstdlib>

namespace {

constexpr int PatienceMs = 60000;
constexpr int PauseMs = 500;     // ahead of each read-out
constexpr int ProgressMs = 3000; // how long the reader takes for the pump's history

/// A reader in a thread of its own, as the real one is in a device of its own.
class ReaderThread final : public QThread
{
public:
    explicit ReaderThread(int exchangeFileSize)
        : m_exchangeFileSize(exchangeFileSize)
    {
        start();
        m_ready.acquire();
    }
    ~ReaderThread() override
    {
        quit();
        wait();
    }

    QString drive() const { return m_drive; }

private:
    void run() override
    {
        ReaderFolder reader;
        reader.writeFile(QStringLiteral("V0001.log"), "Log\n\n\n\nFirmware version 3.2.23\n");
        reader.writeStatus(QStringLiteral("Reader status 0"), QStringLiteral("NONE"), QStringLiteral("done"));
        const QString running = QStringLiteral("running");
        const QString done = QStringLiteral("done");
        const QString serialNumber = QStringLiteral("1234567");
        reader.answer(QStringLiteral("BTISPAIRED"), {{200, running}, {300, done, serialNumber}});
        reader.answer(QStringLiteral("BTREAD"), {{300, running}, {ProgressMs, done}});
        reader.beforeLastAnswer = [this, &reader](const QString& word) {
            if (word == QLatin1String("BTREAD"))
                reader.writeFile(QStringLiteral("I0001.xml"), QByteArray(m_exchangeFileSize, 'x'));
        };
        m_drive = reader.drive();
        m_ready.release();
        exec();
    }

    const int m_exchangeFileSize;
    QString m_drive;
    QSemaphore m_ready;
};

/// The user: presses "Read pump" as soon as it can be pressed. No timer, which would bring turns of its own.
class User final : public QObject
{
public:
    explicit User(QObject* parent)
        : QObject(parent)
    {
        qApp->installEventFilter(this);
    }

private:
    bool eventFilter(QObject* watched, QEvent* event) override
    {
        if (event->type() == QEvent::EnabledChange && watched->objectName() == QLatin1String("m_readPumpButton")) {
            auto* button = qobject_cast<QAbstractButton*>(watched);
            if (button && button->isEnabled())
                QMetaObject::invokeMethod(button, &QAbstractButton::click, Qt::QueuedConnection);
        }
        return false;
    }
};

std::vector<double> lengths(const std::vector<TurnMeter::Turn>& turns)
{
    std::vector<double> values;
    values.reserve(turns.size());
    for (const TurnMeter::Turn& turn : turns)
        values.push_back(turn.milliseconds);
    return values;
}

/// Takes the loaded plug-in through a host's calls; null if it isn't the plug-in.
IComponent* startPlugin(QObject* instance, RecordingHost& host, const QString& folder)
{
    auto* plugin = qobject_cast<IPlugin*>(instance);
    if (!plugin)
        return nullptr;
    QSettings settings(folder + QStringLiteral("/plugin.ini"), QSettings::IniFormat);
    host.services.paths.insert(IServices::TranslationsPath, folder);
    plugin->setExtensionRegistry(&host);
    plugin->initialize(settings, QDir(folder));
    plugin->installTranslator();
    return plugin->components().value(0);
}

/// Ends the program from within a run, whose objects are in the midst of their work and can't be taken down.
[[noreturn]] void giveUp(const QString& why)
{
    std::_Exit(benchmarkFailed(why));
}

/// @p firstReadOut is how many of the turns belong to the first read-out, in which nothing is cached yet.
void tellTurns(Report& report, const TurnMeter& meter, std::size_t firstReadOut)
{
    const std::vector<double> all = lengths(meter.turns);
    const auto border = all.cbegin() + static_cast<std::ptrdiff_t>(firstReadOut);
    const std::vector<double> first(all.cbegin(), border);
    const std::vector<double> later(border, all.cend());
    const QString unit = QStringLiteral("ms");
    report.add(QStringLiteral("the loop stands still, 99th percentile of all turns"), percentile(all, 0.99), unit, 16);
    report.add(QStringLiteral("the same of the first read-out alone"), percentile(first, 0.99), unit, 16);
    report.tell(QStringLiteral("maximum, in the first read-out"), percentile(first, 1), unit);
    report.tell(QStringLiteral("maximum, in the later ones"), percentile(later, 1), unit);
    report.tell(QStringLiteral("maximum in the waits, beyond their steps of 20 ms"),
                percentile(lengths(meter.waitingTurns), 1), unit);
    report.tell(QStringLiteral("all read-outs"), static_cast<double>(all.size()), QStringLiteral("turns"));
}

void listLongest(std::vector<TurnMeter::Turn> turns)
{
    std::sort(turns.begin(), turns.end(),
              [](const auto& left, const auto& right) { return left.milliseconds > right.milliseconds; });
    turns.resize(std::min<std::size_t>(20, turns.size()));
    for (const TurnMeter::Turn& turn : turns)
        std::fprintf(stderr, "%8.2f ms  %s\n", turn.milliseconds, qUtf8Printable(turn.during));
}

} // namespace

int main(int argc, char** argv)
{
    QApplication app(argc, argv);
    Report report(QStringLiteral("How long the GUI thread's event loop stands still in a read-out (%1)")
                      .arg(QGuiApplication::platformName()));
    const QString longestOption = QStringLiteral("longest");
    report.addNumber(QStringLiteral("rounds"), QStringLiteral("Read-outs."), 5);
    report.addNumber(QStringLiteral("exchange-size"), QStringLiteral("Size of the exchange file, in KiB."), 512);
    report.parser.addOption({longestOption, QStringLiteral("List the longest turns on standard error.")});
    report.parse();
    const auto rounds = static_cast<std::size_t>(report.number(QStringLiteral("rounds")));

    quietLog();
    const ReaderThread reader(report.number(QStringLiteral("exchange-size")) * 1024);
    const QTemporaryDir folder;
    RecordingHost host;
    host.deviceAdmin.drivePath = reader.drive();
    host.deviceAdmin.holdChanges = true; // so that the pause on the way in is taken too

    QPluginLoader loader(QStringLiteral(MERIVO_PLUGIN_FILE));
    IComponent* component = startPlugin(loader.instance(), host, folder.path());
    if (!component)
        return benchmarkFailed(QStringLiteral("can't load the plug-in: %1").arg(loader.errorString()));
    Q_EMIT host.publisher.diarySessionOpened(IDiarySessionOpenedEvtPtr(new PatientEvent<IDiarySessionOpenedEvt>(
        QStringLiteral("p-0001"),
        {QStringLiteral("Doe"), QStringLiteral("Jane"), QStringLiteral("1970-02-03"), QStringLiteral("4711")},
        QStringLiteral("Diary"))));

    std::size_t readOuts = 0;
    TurnMeter meter([&] {
        const QStringList& log = host.journal.lines;
        return QStringLiteral("read-out %1, latest record: %2")
            .arg(readOuts + 1)
            .arg(log.isEmpty() ? QString() : log.last());
    });
    if (!meter.isMeasuring()) {
        report.lack(QStringLiteral("how long the loop stands still"), QStringLiteral("no GLib event dispatcher"));
        return report.print();
    }

    // The host's window with its menu entry. The first showing of a window is the host's affair.
    QPushButton window(component->menuText());
    window.setIcon(component->icon());
    const User user(&window);
    std::size_t firstReadOut = 0;
    QObject::connect(&window, &QPushButton::clicked, &window, [&] {
        if (!component->execute(&window))
            giveUp(QStringLiteral("the plug-in refused the run"));
        if (readOuts == 0)
            firstReadOut = meter.turns.size();
        ++readOuts;
        if (readOuts == rounds)
            QCoreApplication::quit();
        else
            QTimer::singleShot(PauseMs, &window, &QPushButton::click);
    });
    QTimer::singleShot(PatienceMs * static_cast<int>(rounds), &window,
                       [] { giveUp(QStringLiteral("the read-outs don't come to an end")); });
    window.show();
    QTimer::singleShot(PauseMs, &window, [&] {
        meter.keep(true);
        window.click();
    });
    QCoreApplication::exec();
    if (host.commandHandler.imports.size() != rounds) {
        return benchmarkFailed(
            QStringLiteral("only %1 of the read-outs gave an import").arg(host.commandHandler.imports.size()));
    }

    tellTurns(report, meter, firstReadOut);
    if (report.parser.isSet(longestOption))
        listLongest(meter.turns);
    return report.print();
}
