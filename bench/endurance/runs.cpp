// SPDX-FileCopyrightText: 2026 The Merivo Connections developers
// SPDX-License-Identifier: MIT

// Runs the plug-in many times in one process, from the menu entry to the import, and checks for resource leaks.

#include "bench/endurance/ResourceCounts.h"
#include "hostapi/IComponent.h"
#include "hostapi/IPlugin.h"
#include "support/ModalUser.h"
#include "support/ReaderFolder.h"
#include "support/RecordingHost.h"
#include "support/VirtualTime.h"

#include <QApplication>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QLoggingCategory>
#include <QPluginLoader>
#include <QPushButton>
#include <QSettings>
#include <QTemporaryDir>
#include <QTimer>

#include <cstdio>
#include <cstdlib>
#include <vector>

namespace {

constexpr int PauseMs = 200; // before each run
constexpr int CheckMs = 50;  // between two checks of the user
constexpr int TimeoutMs = 10 * 60 * 1000;
constexpr int WarmRun = 100; // whose memory the last one is compared with
constexpr qint64 AllowedGrowthKiB = 1024;
constexpr int ExchangeFileBytes = 64 * 1024;
constexpr int ConnectionLost = 32;

/// A click of the user, as soon as that dialog is active and the button is enabled.
struct Click
{
    const char* dialog;
    const char* button; ///< its name in pressableButtons()
};

/// One scenario of a run, with special answers of the reader to one command.
struct Story
{
    const char* name;
    bool isPaired;
    int imports;
    std::vector<Click> clicks;
    const char* command = nullptr;
    QList<ReaderFolder::Answer> answers = {};
};

const QList<ReaderFolder::Answer> Failed{{20, "running"}, {1000, "failed", "", ConnectionLost}};
const Click Read{"MainDialog", "m_readPumpButton"};
const Click Add{"MainDialog", "m_addPumpButton"};
const Click Remove{"MainDialog", "m_removePumpButton"};
const Click Close{"MainDialog", "Close"};
const Click SearchOrStop{"PumpAddDialog", "m_OverviewButton"};
const Click AssignPump{"PumpAddDialog", "m_AssignButton"};
const Click ConfirmCode{"PumpAddDialog", "m_ConfirmButton"};
const Click FinishAdding{"PumpAddDialog", "Ok"};
const Click CancelAdding{"PumpAddDialog", "Cancel"};
const Click CancelReading{"PumpReadDialog", "Cancel"};
const Click OkRemoval{"PumpRemoveDialog", "Ok"};
const Click MessageOk{"LmMessageBox", "Ok"};
const Click MessageYes{"LmMessageBox", "Yes"};

/// The first runs use each scenario twice, most of the others the first one.
const std::vector<Story> Stories{
    {"read-out and import", true, 1, {Read}},
    {"read-out that the reader never starts", true, 0, {Read, MessageOk}, "BTREAD", {}},
    {"read-out with an error", true, 0, {Read, MessageOk, CancelReading, Close}, "BTREAD", Failed},
    {"new pump, its read-out and import", false, 1, {Add, SearchOrStop, AssignPump, ConfirmCode, FinishAdding}},
    {"removal", true, 0, {Remove, OkRemoval, MessageYes, Close}},
    {"stopped search", false, 0, {Add, SearchOrStop, SearchOrStop, CancelAdding, Close}, "SEARCH", {{20, "running"}}},
};

/// Exits without destroying the objects of the current run, which are still in use.
[[noreturn]] void exitWithError(const QString& why)
{
    std::fprintf(stderr, "endurance-runs: %s\n", qUtf8Printable(why));
    std::_Exit(1);
}

void setPaired(ReaderFolder& reader, bool isPaired)
{
    reader.answer("BTISPAIRED", {{20, "running"}, {20, "done", isPaired ? "1234567" : "0"}});
}

/// Sets up the reader for a scenario. An ABORT that ends before the add dialog expects it would be missed.
void prepare(ReaderFolder& reader, const Story& story)
{
    QFile::remove(reader.misc() + "/I0001.xml");
    for (const char* const command : {"BTDELETEADDR", "BTPAIRCONFIRM"})
        reader.answer(command, {{20, "running"}, {20, "done"}});
    for (const char* const command : {"SEARCH", "BTREAD"})
        reader.answer(command, {{20, "running"}, {1000, "done"}});
    reader.answer("BTPAIR", {{20, "running"}, {20, "done", "123 456"}});
    reader.answer("ABORT", {{20, "running"}, {3500, "done"}});
    setPaired(reader, story.isPaired);
    if (story.command)
        reader.answer(story.command, story.answers);
    reader.beforeLastAnswer = [&reader](const QString& command) {
        if (command == "BTREAD")
            reader.writeFile("I0001.xml", QByteArray(ExchangeFileBytes, 'x'));
        else if (command == "BTDELETEADDR" || command == "BTPAIRCONFIRM")
            setPaired(reader, command == "BTPAIRCONFIRM");
    };
}

/// Executes the runs one after the other, and compares the process's resources after each with those before the first.
class Endurance final : public QObject
{
public:
    Endurance(IComponent* component, RecordingHost& host, ReaderFolder& reader, int runs)
        : m_component(component)
        , m_host(host)
        , m_reader(reader)
        , m_runs(runs)
    {
        m_window.setText(component->menuText());
        m_window.setIcon(component->icon());
        m_window.show();
        m_timeout.setSingleShot(true);
        connect(&m_timeout, &QTimer::timeout, this, [this] { exitWithError(describeRun("doesn't end")); });
        prepare(m_reader, Stories.front());
        // In the outermost event loop, after all pending deletions, as in a host.
        QTimer::singleShot(PauseMs, this, [this] {
            m_start = ResourceCounts::now();
            run();
        });
    }

    /// Prints the results. Returns true if the limits are met.
    bool report() const
    {
        std::printf("%.1f hours of virtual time\n", VirtualTime::milliseconds() / 3600000);
        std::printf("Runs that leaked resources: %d\n", m_differing);
        const qint64 growth = m_runs > WarmRun ? m_last.residentKiB - m_warmKiB : 0;
        if (m_runs > WarmRun)
            std::printf("Memory after run %d: %lld KiB, after run %d: %+lld KiB (at most %lld)\n", WarmRun, m_warmKiB,
                        m_runs, growth, AllowedGrowthKiB);
        return m_differing == 0 && growth <= AllowedGrowthKiB;
    }

private:
    void run()
    {
        const auto number = static_cast<std::size_t>(m_run++);
        const bool isRare = number < 2 * Stories.size() || m_run % 10 == 0;
        const std::size_t index = !isRare ? 0 : number < 2 * Stories.size() ? number : number / 10;
        m_story = &Stories.at(index % Stories.size());
        m_host.openDiary(QString("p-%1").arg(m_run), {"Doe", "Jane", "1970-02-03", "4711"});
        prepare(m_reader, *m_story);
        m_clicks = 0;
        m_timeout.start(TimeoutMs);
        if (!m_component->execute(&m_window))
            exitWithError(QString("the plug-in refused run %1").arg(m_run));
        m_timeout.stop();
        check();
        m_reader.commandsSeen.clear();
        m_host.journal.clear();
        m_host.commandHandler.imports.clear();
        QTimer::singleShot(PauseMs, this, &Endurance::compare);
    }

    /// Checks the run's effects, as a run that does nothing wouldn't leak either.
    void check() const
    {
        const auto& imports = m_host.commandHandler.imports;
        const bool isOurs = imports.empty() || (imports.front()->puid() == QString("p-%1").arg(m_run) &&
                                                imports.front()->fileMac().size() == 64);
        if (m_clicks != m_story->clicks.size() || static_cast<int>(imports.size()) != m_story->imports || !isOurs)
            exitWithError(describeRun("failed"));
    }

    QString describeRun(const char* what) const
    {
        return QString("run %1 (%2) %3, with %4 clicks and %5 imports; its log:\n%6")
            .arg(m_run)
            .arg(m_story->name, what)
            .arg(m_clicks)
            .arg(m_host.commandHandler.imports.size())
            .arg(m_host.journal.lines.join('\n'));
    }

    /// Performs the next click if it is for that dialog.
    void click(const QWidget& dialog)
    {
        if (m_clicks == m_story->clicks.size())
            return;
        const Click& next = m_story->clicks.at(m_clicks);
        QPushButton* button = pressableButtons(dialog).value(next.button);
        if (!button || qstrcmp(dialog.metaObject()->className(), next.dialog) != 0)
            return;
        QMetaObject::invokeMethod(button, &QPushButton::click, Qt::QueuedConnection);
        ++m_clicks;
    }

    void compare()
    {
        m_last = ResourceCounts::settled(m_start);
        // The first run of each scenario creates objects that Qt and the toolkit's icon cache keep.
        if (static_cast<std::size_t>(m_run) <= Stories.size())
            m_start.objects = m_last.objects;
        const QString difference = m_last.differenceFrom(m_start);
        if (!difference.isEmpty()) {
            ++m_differing;
            std::fprintf(stderr, "after run %d: %s\n", m_run, qUtf8Printable(difference));
        }
        if (m_run == WarmRun)
            m_warmKiB = m_last.residentKiB;
        if (m_run < m_runs)
            run();
        else
            QCoreApplication::quit();
    }

    IComponent* m_component;
    RecordingHost& m_host;
    ReaderFolder& m_reader;
    const Story* m_story = nullptr;
    std::size_t m_clicks = 0;
    const ModalUser m_user{[this](const QWidget& dialog) { click(dialog); }, CheckMs};
    QTimer m_timeout;
    QPushButton m_window; ///< the host's window
    const int m_runs;
    int m_run = 0;
    int m_differing = 0;
    ResourceCounts m_start;
    ResourceCounts m_last;
    qint64 m_warmKiB = 0;
};

} // namespace

int main(int argc, char** argv)
{
    const int runs = argc == 2 ? std::atoi(argv[1]) : 0;
    if (runs < 1) {
        std::fprintf(stderr, "usage: endurance-runs NUMBER-OF-RUNS\n");
        return 2;
    }
    VirtualTime::start();
    qputenv("QT_QPA_PLATFORM", "offscreen");
    if (QFileInfo("/dev/shm").isWritable())
        qputenv("TMPDIR", "/dev/shm");
    QApplication app(argc, argv);
    VirtualTime::endIdleThreads();
    watchObjects();
    QLoggingCategory::setFilterRules("*.debug=false\n*.info=false\n*.warning=false\n*.critical=false");
    QApplication::setQuitOnLastWindowClosed(false);

    const QTemporaryDir folder;
    ReaderFolder reader;
    reader.pollMs = 20;
    reader.writeFile("V0001.log", "Log\n\n\n\nFirmware version 3.2.23\n");
    reader.writeFile("DEVLIST.XML",
                     "<DEVICELIST><DEVICE><NAME>Cygnara</NAME><SERIALNR>1234567</SERIALNR><INTERFACE><BTADR>"
                     "00:11:22:33:44:55</BTADR><PATIENT_ID>0</PATIENT_ID></INTERFACE></DEVICE></DEVICELIST>");
    reader.writeStatus("Reader status 0", "NONE", "done");
    RecordingHost host;
    host.deviceAdmin.drivePath = reader.drive();
    host.deviceAdmin.holdChanges = true; // so that execute() makes its first pause
    host.services.paths.insert(IServices::TranslationsPath, folder.path());

    QPluginLoader loader(MERIVO_PLUGIN_FILE);
    auto* plugin = qobject_cast<IPlugin*>(loader.instance());
    if (!plugin)
        exitWithError("can't load the plug-in: " + loader.errorString());
    {
        QSettings settings(folder.filePath("plugin.ini"), QSettings::IniFormat);
        plugin->setExtensionRegistry(&host);
        plugin->initialize(settings, QDir(folder.path()));
        plugin->installTranslator();
    }
    bool isMet = false;
    {
        Endurance endurance(plugin->components().value(0), host, reader, runs);
        QCoreApplication::exec();
        isMet = endurance.report();
    }
    // Keeps the library loaded, so that a leak detector can name its functions.
    delete loader.instance();
    return isMet ? 0 : 1;
}
