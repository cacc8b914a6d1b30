// SPDX-FileCopyrightText: 2026 The Merivo Connections developers
// SPDX-License-Identifier: MIT

// Whole runs of the plug-in in one process, from the menu entry to the import, and whether each leaves behind what it
// found.

#include "bench/endurance/Holdings.h"
#include "bench/endurance/InstantReader.h"
#include "bench/endurance/VirtualTime.h"
#include "host/IComponent.h"
#include "host/IPlugin.h"
#include "support/RecordingHost.h"

#include <QApplication>
#include <QCommandLineParser>
#include <QDialogButtonBox>
#include <QDir>
#include <QLoggingCategory>
#include <QMessageBox>
#include <QPluginLoader>
#include <QPushButton>
#include <QSettings>
#include <QTemporaryDir>
#include <QThreadPool>
#include <QTimer>

#include <cstdio>
#include <cstdlib>
#include <vector>

namespace {

constexpr int PauseMs = 200; // ahead of each run
constexpr int GlanceMs = 50; // between two looks of the user
constexpr int PatienceMs = 10 * 60 * 1000;
constexpr int WarmRun = 100; // whose memory the last one is compared with
constexpr qint64 AllowedGrowthKiB = 1024;

/// A click of the user, made once that dialog is in front and has the button enabled.
struct Click
{
    const char* dialog;
    const char* button; ///< its object name; empty: the box's button
    QDialogButtonBox::StandardButton boxButton = QDialogButtonBox::NoButton;
};

/// One way through the plug-in.
struct Story
{
    const char* name;
    bool isPaired;
    InstantReader::Fault fault;
    int imports;
    std::vector<Click> clicks;
};

const Click Read{"MainDialog", "m_readPumpButton"};
const Click Add{"MainDialog", "m_addPumpButton"};
const Click Remove{"MainDialog", "m_removePumpButton"};
const Click Close{"MainDialog", "", QDialogButtonBox::Close};
const Click SearchOrStop{"PumpAddDialog", "m_OverviewButton"};
const Click BoxOk{"LmMessageBox", "", QDialogButtonBox::Ok};

/// The first is the one of most runs. The first runs go through them all.
const std::vector<Story> Stories{
    {"read-out and import", true, InstantReader::NoFault, 1, {Read}},
    {"read-out with an error of the reader",
     true,
     InstantReader::ReadFails,
     0,
     {Read, BoxOk, {"PumpReadDialog", "", QDialogButtonBox::Cancel}, Close}},
    {"new pump, with its read-out and import",
     false,
     InstantReader::NoFault,
     1,
     {Add,
      SearchOrStop,
      {"PumpAddDialog", "m_AssignButton"},
      {"PumpAddDialog", "m_ConfirmButton"},
      {"PumpAddDialog", "", QDialogButtonBox::Ok}}},
    {"removal",
     true,
     InstantReader::NoFault,
     0,
     {Remove, {"PumpRemoveDialog", "", QDialogButtonBox::Ok}, {"LmMessageBox", "", QDialogButtonBox::Yes}, Close}},
    {"search that is stopped",
     false,
     InstantReader::SearchGoesOn,
     0,
     {Add, SearchOrStop, SearchOrStop, {"PumpAddDialog", "", QDialogButtonBox::Cancel}, Close}},
    {"read-out that the reader never begins", true, InstantReader::ReadStarves, 0, {Read, BoxOk}},
};

/// Ends the program from within a run, whose objects are in the midst of their work and can't be taken down.
[[noreturn]] void giveUp(const QString& why)
{
    std::fflush(stdout);
    std::fprintf(stderr, "endurance-runs: %s\n", qUtf8Printable(why));
    std::_Exit(1);
}

/// Makes the clicks of a story, one at a glance.
class User final : public QObject
{
public:
    User()
    {
        connect(&m_glances, &QTimer::timeout, this, &User::look);
        m_glances.start(GlanceMs);
    }

    void follow(const Story& story)
    {
        m_story = &story;
        m_nextClick = 0;
        m_glancesLeft = PatienceMs / GlanceMs;
    }
    /// Whether all clicks were made. The user looks away.
    bool hasFinished()
    {
        const bool finished = m_story && m_nextClick == m_story->clicks.size();
        m_story = nullptr;
        return finished;
    }

private:
    void look()
    {
        // An idle thread of Qt's pool, in which it converts images, would keep the clock waiting.
        QThreadPool::globalInstance()->waitForDone();
        if (!m_story)
            return;
        if (--m_glancesLeft == 0) {
            giveUp(QStringLiteral("the run \"%1\" doesn't come to an end; clicks made: %2")
                       .arg(QLatin1String(m_story->name))
                       .arg(m_nextClick));
        }
        if (m_nextClick == m_story->clicks.size())
            return;
        const Click& click = m_story->clicks.at(m_nextClick);
        QWidget* dialog = QApplication::activeModalWidget();
        if (!dialog || qstrcmp(dialog->metaObject()->className(), click.dialog) != 0)
            return;
        QAbstractButton* button = find(dialog, click);
        if (!button || !button->isVisible() || !button->isEnabled())
            return;
        ++m_nextClick;
        // Out of this timer's turn, which would last as long as the dialogs that the click opens.
        QMetaObject::invokeMethod(button, &QAbstractButton::click, Qt::QueuedConnection);
    }

    static QAbstractButton* find(QWidget* dialog, const Click& click)
    {
        if (*click.button)
            return dialog->findChild<QAbstractButton*>(QLatin1String(click.button));
        const auto* box = dialog->findChild<QDialogButtonBox*>();
        return box ? box->button(click.boxButton) : nullptr;
    }

    QTimer m_glances;
    const Story* m_story = nullptr;
    std::size_t m_nextClick = 0;
    int m_glancesLeft = 0;
};

/// Makes the runs one after the other, compares what the process holds after each with what it held ahead of the first,
/// and prints the table.
class Endurance final : public QObject
{
public:
    Endurance(IComponent* component, RecordingHost& host, InstantReader& reader, int runs, int every)
        : m_component(component)
        , m_host(host)
        , m_reader(reader)
        , m_runs(runs)
        , m_every(every)
    {
        m_window.setText(component->menuText());
        m_window.setIcon(component->icon());
        m_window.show();
        m_storyRuns.resize(Stories.size());
        std::printf("%6s %10s %10s %6s %8s %7s %9s %10s %8s %8s\n", "run", "resident", "allocated", "files", "threads",
                    "timers", "QObjects", "top-level", "windows", "cursors");
        later([this] {
            m_start = Holdings::now();
            print(QStringLiteral("start"), m_start);
            run();
        });
    }

    /// Whether all was kept; prints the verdict.
    bool tell() const
    {
        std::printf("\n");
        for (std::size_t i = 0; i < Stories.size(); ++i) {
            if (m_storyRuns.at(i) > 0)
                std::printf("%6d  %s\n", m_storyRuns.at(i), Stories.at(i).name);
        }
        std::printf("\n%.1f hours of the plug-in's time in %.0f s; forced jumps of the clock: %llu\n",
                    VirtualTime::milliseconds() / 3600000, VirtualTime::realMilliseconds() / 1000,
                    static_cast<unsigned long long>(VirtualTime::forcedJumps()));
        std::printf("Runs that left something behind: %d\n", m_differing);
        bool kept = m_differing == 0;
        if (m_runs > WarmRun) {
            const qint64 growth = m_last.residentKiB - m_warmKiB;
            std::printf("Memory after run %d, compared with run %d: %+lld KiB, wanted: at most %lld\n", m_runs, WarmRun,
                        growth, AllowedGrowthKiB);
            kept = kept && growth <= AllowedGrowthKiB;
        } else {
            std::printf("Memory isn't compared in fewer than %d runs\n", WarmRun + 1);
        }
        std::printf("%s\n", kept ? "kept" : "NOT KEPT");
        return kept;
    }

private:
    /// In a turn of the outermost event loop, as a host opens a menu entry, with all that was to be deleted later gone.
    template <typename Action>
    void later(Action action)
    {
        QTimer::singleShot(PauseMs, this, action);
    }

    void run()
    {
        ++m_run;
        const std::size_t story = storyOf(m_run, m_every);
        ++m_storyRuns[story];
        m_host.openDiary(QStringLiteral("p-%1").arg(m_run), {QStringLiteral("Doe"), QStringLiteral("Jane"),
                                                             QStringLiteral("1970-02-03"), QStringLiteral("4711")});
        m_reader.prepare(Stories.at(story).isPaired, Stories.at(story).fault);
        m_user.follow(Stories.at(story));
        if (!m_component->execute(&m_window))
            giveUp(QStringLiteral("the plug-in refused run %1").arg(m_run));
        check(Stories.at(story));
        m_host.journal.clear();
        m_host.commandHandler.imports.clear();
        m_host.commandHandler.commandTypes.clear();
        later([this] { compare(); });
    }

    static std::size_t storyOf(int run, int every)
    {
        const auto number = static_cast<std::size_t>(run);
        if (number <= Stories.size())
            return number - 1;
        return run % every == 0 ? static_cast<std::size_t>(run / every) % Stories.size() : 0;
    }

    /// Whether the run did what it was to do: one that does nothing leaves nothing behind either.
    void check(const Story& story)
    {
        const auto& imports = m_host.commandHandler.imports;
        const bool asTold = m_user.hasFinished() && static_cast<int>(imports.size()) == story.imports;
        const bool isOurs = imports.empty() || (imports.front()->puid() == QStringLiteral("p-%1").arg(m_run) &&
                                                imports.front()->fileMac().size() == 64);
        if (!asTold || !isOurs) {
            giveUp(QStringLiteral("run %1 (%2) didn't go as it should, with %3 imports; its records:\n%4")
                       .arg(m_run)
                       .arg(QLatin1String(story.name))
                       .arg(imports.size())
                       .arg(m_host.journal.lines.join(QLatin1Char('\n'))));
        }
    }

    void compare()
    {
        const Holdings now = Holdings::settled(m_start);
        // Until each story was seen once, Qt makes objects to keep, for its image formats say, and so does the
        // toolkit's cache of icons.
        if (static_cast<std::size_t>(m_run) <= Stories.size())
            m_start.objectsByClass = now.objectsByClass;
        const QString difference = now.differenceFrom(m_start);
        if (!difference.isEmpty()) {
            ++m_differing;
            std::fprintf(stderr, "after run %d: %s\n", m_run, qUtf8Printable(difference));
        }
        if (m_run == 1 || m_run == 10 || m_run % WarmRun == 0 || m_run == m_runs)
            print(QString::number(m_run), now);
        if (m_run == WarmRun)
            m_warmKiB = now.residentKiB;
        if (m_run < m_runs) {
            run();
            return;
        }
        m_last = now;
        QCoreApplication::quit();
    }

    static void print(const QString& label, const Holdings& holdings)
    {
        std::printf("%6s %10lld %10lld %6d %8d %7d %9d %10d %8d %8d\n", qUtf8Printable(label), holdings.residentKiB,
                    holdings.allocatedKiB, holdings.files, holdings.threads, holdings.timers, holdings.objects,
                    holdings.topLevelWidgets, holdings.windows, holdings.overrideCursors);
        std::fflush(stdout);
    }

    IComponent* m_component;
    RecordingHost& m_host;
    InstantReader& m_reader;
    User m_user;
    QPushButton m_window; ///< the host's
    const int m_runs;
    const int m_every;
    int m_run = 0;
    int m_differing = 0;
    std::vector<int> m_storyRuns;
    Holdings m_start;
    Holdings m_last;
    qint64 m_warmKiB = 0;
};

} // namespace

int main(int argc, char** argv)
{
    VirtualTime::start();
    if (!qEnvironmentVariableIsSet("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication app(argc, argv);
    watchObjects();
    QCommandLineParser parser;
    parser.setApplicationDescription(QStringLiteral("Makes whole runs of the plug-in in one process."));
    parser.addHelpOption();
    parser.addOptions({
        {QStringLiteral("runs"), QStringLiteral("How many runs."), QStringLiteral("number"), QStringLiteral("1000")},
        {QStringLiteral("every"), QStringLiteral("Every so many runs one goes another way."), QStringLiteral("number"),
         QStringLiteral("10")},
        {QStringLiteral("plugin"), QStringLiteral("The plug-in's library."), QStringLiteral("file"),
         QStringLiteral(MERIVO_PLUGIN_FILE)},
    });
    parser.process(app);
    const int runs = parser.value(QStringLiteral("runs")).toInt();
    const int every = parser.value(QStringLiteral("every")).toInt();
    if (runs < 1 || every < 1) {
        std::fprintf(stderr, "endurance-runs: --runs and --every take a whole number from 1 on\n");
        return 2;
    }
    // As in a host. The records go to it all the same.
    QLoggingCategory::setFilterRules(QStringLiteral("*.debug=false\n*.info=false\n*.warning=false\n*.critical=false"));
    QApplication::setQuitOnLastWindowClosed(false);

    const QTemporaryDir folder;
    InstantReader reader;
    RecordingHost host;
    host.deviceAdmin.drivePath = reader.drive();
    host.deviceAdmin.holdChanges = true; // so that the pause on the way in is taken too
    host.services.paths.insert(IServices::TranslationsPath, folder.path());

    QPluginLoader loader(parser.value(QStringLiteral("plugin")));
    auto* plugin = qobject_cast<IPlugin*>(loader.instance());
    if (!plugin)
        giveUp(QStringLiteral("can't load the plug-in: %1").arg(loader.errorString()));
    {
        QSettings settings(folder.filePath(QStringLiteral("plugin.ini")), QSettings::IniFormat);
        plugin->setExtensionRegistry(&host);
        plugin->initialize(settings, QDir(folder.path()));
        plugin->installTranslator();
    }
    bool kept = false;
    {
        Endurance endurance(plugin->components().value(0), host, reader, runs, every);
        QCoreApplication::exec();
        kept = endurance.tell();
    }
    // The library stays loaded, so that what looks for leaks at the end can name its functions.
    delete loader.instance();
    return kept ? 0 : 1;
}
