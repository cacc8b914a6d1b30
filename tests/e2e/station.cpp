// SPDX-FileCopyrightText: 2026 The Merivo Connections developers
// SPDX-License-Identifier: MIT
#include "e2e/FaultyFiles.h"
#include "hostapi/IComponent.h"
#include "support/ModalUser.h"
#include "support/VirtualTime.h"
#include "tools/host/HostApplication.h"
#include "tools/host/HostOptions.h"
#include "tools/reader/ReaderDrive.h"
#include "tools/reader/ReaderSimulator.h"
#include "tools/reader/Scenario.h"
#include "tools/support/LogFile.h"

#include <QApplication>
#include <QDateTime>
#include <QFile>
#include <QJsonDocument>
#include <QJsonObject>
#include <QLabel>
#include <QMessageBox>
#include <QStackedWidget>
#include <QTableView>
#include <QTest>
#include <QThread>
#include <QTimer>
#include <QWindow>

#include <atomic>
#include <cstdio>
#include <iostream>
#include <string>
#include <utility>

#include <unistd.h>

int runStaleDrive(int commands);

namespace {

constexpr unsigned MaxRealSeconds = 240; // from one report to the next

/// The simulated reader, on a thread of its own. It runs only while the host waits, and the other way round.
class ReaderThread final
{
    Q_DISABLE_COPY_MOVE(ReaderThread)

public:
    /// Called on the reader's thread with the cause when the reader fails, and with an empty text when it has started.
    using Report = std::function<void(const QString& error)>;

    /// The folder holds the drive, the reader's log and its scenario in world.json.
    ReaderThread(const QString& folder, Report report)
        : m_folder(folder)
        , m_report(std::move(report))
    {
        m_log.open(folder + "/reader.log");
        m_context.moveToThread(&m_thread);
        m_thread.start();
        post([] { VirtualTime::setPeer(true); });
    }
    ~ReaderThread()
    {
        m_isStalled = false;
        post([this] {
            stop();
            VirtualTime::setPeer(false);
        });
        m_thread.quit();
        while (!m_thread.isFinished()) // not wait(): the reader runs only while this thread waits for the time
            QThread::msleep(1);
    }

    /// Replaces the reader, if there is one.
    void start()
    {
        post([this] {
            stop();
            m_report(serve());
        });
    }
    void setStalled(bool isStalled)
    {
        m_isStalled = isStalled;
        post([this] {
            while (m_isStalled)
                QThread::msleep(20);
        });
    }

private:
    template <class Action>
    void post(Action action)
    {
        QMetaObject::invokeMethod(&m_context, action, Qt::QueuedConnection);
    }
    void stop()
    {
        m_reader.reset();
        m_drive.reset();
    }
    QString serve();

    const QString m_folder;
    const Report m_report;
    QThread m_thread;
    QObject m_context;
    std::atomic<bool> m_isStalled{false};
    // Used only on the thread.
    LogFile m_log;
    std::unique_ptr<ReaderDrive> m_drive;
    std::unique_ptr<ReaderSimulator> m_reader;
};

QString ReaderThread::serve()
{
    QStringList errors;
    const std::optional<Scenario> scenario = loadScenario(m_folder + "/world.json", &errors);
    if (!scenario)
        return errors.join('\n');
    // Of a reader that lost its drive. The lock's owner is this process, and alive.
    QFile::remove(m_folder + "/drive/.merivo-reader.lock");
    QString error;
    m_drive = std::make_unique<ReaderDrive>(m_folder + "/drive");
    if (!m_drive->open(&error))
        return error;
    m_reader = std::make_unique<ReaderSimulator>(*m_drive, *scenario, false);
    QObject::connect(m_reader.get(), &ReaderSimulator::logged, &m_context, [this](const QString& line) {
        m_log.write(QString("%1 %2\n").arg(QDateTime::currentDateTime().toString(Qt::ISODateWithMs), line).toUtf8());
    });
    const auto onFailed = [this](const QString& cause) {
        stop();
        m_report(cause);
    };
    QObject::connect(m_reader.get(), &ReaderSimulator::failed, &m_context, onFailed, Qt::QueuedConnection);
    m_reader->start(&error);
    return error;
}

/// Returns the table whose rows can be selected by a press on their first cell, or null.
QTableView* tableOf(const QWidget& window)
{
    auto* table = window.findChild<QTableView*>();
    return table && table->isVisible() ? table : nullptr;
}

/// Returns what the modal window shows, and what can be pressed there: buttons with their texts, and rows.
QJsonObject view()
{
    const QWidget* window = QApplication::activeModalWidget();
    if (!window)
        return {};
    QJsonObject choices;
    const QMap<QString, QPushButton*> buttons = pressableButtons(*window);
    for (auto it = buttons.cbegin(); it != buttons.cend(); ++it)
        choices[it.key()] = it.value()->text().remove('&');
    if (const QTableView* table = tableOf(*window))
        for (int row = 0; row < table->model()->rowCount(); ++row)
            choices[table->model()->index(row, 0).data().toString()] = "row";
    QJsonObject labels;
    for (const auto* label : window->findChildren<QLabel*>())
        if (label->isVisible())
            labels[label->objectName()] = label->text();
    const auto* box = qobject_cast<const QMessageBox*>(window);
    const auto* pages = window->findChild<QStackedWidget*>();
    return {{"window", box ? "box" : window->objectName()},
            {"title", window->windowTitle()},
            {"text", box ? box->text() : QString()},
            {"page", pages && pages->currentWidget() ? pages->currentWidget()->objectName() : QString()},
            {"labels", labels},
            {"choices", choices}};
}

/// The host with a reader in one process, controlled by lines on standard input: a verb, and a value after a space.
/// Reports on standard output, one JSON object a line with the virtual time: what the window in front shows and what
/// can be pressed there, each record of the log, each second, the start and failure of the reader, and the end of a run
/// of the plug-in. After each report it stops, and with it the time, until it reads "go".
class Station final : public QObject
{
public:
    Station(HostApplication& host, const QString& folder)
        : m_host(host)
        , m_reader(folder, [this](const QString& error) {
            QTimer::singleShot(0, this, [this, error] { report({{"reader", error}}); });
        })
    {
        connect(&host.log(), &HostLog::rowsInserted, this, [this](const QModelIndex&, int row, int last) {
            for (; row <= last; ++row)
                report({{"record", m_host.log().index(row, HostLog::MessageColumn).data().toString()},
                        {"level", m_host.log().index(row, HostLog::LevelColumn).data().toString()}});
        });
        connect(&m_observations, &QTimer::timeout, this, &Station::observe);
        connect(&m_seconds, &QTimer::timeout, this, [this] { report({{"second", true}}); });
        connect(&m_repetition, &QTimer::timeout, this, [this] { m_reported = {}; });
        m_repetition.setSingleShot(true);
        report({{"ready", true}});
        m_observations.start(50);
        m_seconds.start(1000);
    }

private:
    void report(QJsonObject object);
    void obey(const QString& verb, const QString& value);
    void runPlugin();
    void press(const QString& name);
    void observe();

    HostApplication& m_host;
    ReaderThread m_reader;
    QTimer m_observations;
    QTimer m_seconds;
    QTimer m_repetition; // repeats the report after a press without effect
    QJsonObject m_seen;
    QJsonObject m_reported;
    int m_presses = 0;
};

void Station::report(QJsonObject object)
{
    object["at"] = VirtualTime::milliseconds();
    std::puts(QJsonDocument(object).toJson(QJsonDocument::Compact).constData());
    std::fflush(stdout);
    alarm(0);
    std::string line;
    while (std::getline(std::cin, line) && line != "go") {
        // Queued, since a command can begin an event loop in which the next one must be read.
        const QString text = QString::fromStdString(line);
        QTimer::singleShot(0, this, [this, text] { obey(text.section(' ', 0, 0), text.section(' ', 1)); });
    }
    if (!std::cin)
        QCoreApplication::quit();
    alarm(MaxRealSeconds); // ends the process
}

void Station::obey(const QString& verb, const QString& value)
{
    static const QStringList failures{"open",  "read", "cut-read", "write", "no-space",
                                      "close", "list", "kill",     "swap",  "slip-away"};
    HostDatabase& database = m_host.database();
    if (const int failure = failures.indexOf(verb); failure >= 0)
        FaultyFiles::fail(FaultyFiles::Failure(failure), value.section(' ', 0, 0).toInt(),
                          value.section(' ', 1).toLocal8Bit());
    else if (verb == "reader")
        m_reader.start();
    else if (verb == "stall")
        m_reader.setStalled(value == "on");
    else if (verb == "run")
        runPlugin();
    else if (verb == "press")
        press(value);
    else if (verb == "escape" && QApplication::activeModalWidget())
        QTest::keyClick(QApplication::activeModalWidget()->windowHandle(), Qt::Key_Escape);
    else if (verb == "after")
        QTimer::singleShot(value.toInt(), this, [this] { report({{"due", true}}); });
    else if (verb == "clock")
        VirtualTime::shiftWallClock(value.toInt());
    else if (verb == "add")
        database.addPatient({value.section(' ', 0, 0), value.split(' ').mid(1)});
    else if (verb == "change" && database.changePatient({value, {"Other", value}}))
        m_host.events().publishChanged({value, {"Other", value}});
    else if (verb == "delete" && database.removePatient(value))
        m_host.events().publishDeleted(value);
    else if (verb == "diary" && value.isEmpty())
        m_host.events().closeDiary();
    else if (verb == "diary" && database.findPatient(value))
        m_host.events().openDiary(*database.findPatient(value));
    else
        qFatal("can't do '%s %s': %s", qPrintable(verb), qPrintable(value), qPrintable(database.errorText()));
}

void Station::runPlugin()
{
    IComponent* component = m_host.pluginHost().components().constFirst();
    // A second run beside the first, as by a host that leaves its menu entry enabled.
    if (m_host.pluginHost().isRunning()) {
        component->execute(&m_host.window());
        return;
    }
    m_host.pluginHost().run(component, &m_host.window());
    const int failures = FaultyFiles::stop();
    // The log shows its records a little later.
    QTimer::singleShot(300, this, [this, failures] { report({{"ended", true}, {"failures", failures}}); });
}

/// Reports what two observations in a row agree on, so that nothing is reported that is passing.
void Station::observe()
{
    const QJsonObject seen = view();
    if (seen == std::exchange(m_seen, seen) && seen != m_reported) {
        m_repetition.stop();
        m_reported = seen;
        report({{"seen", seen}, {"presses", m_presses}});
    }
}

void Station::press(const QString& name)
{
    ++m_presses;
    m_repetition.start(3000);
    QWidget* window = QApplication::activeModalWidget();
    if (!window)
        return;
    QWidget* target = pressableButtons(*window).value(name);
    QPoint position = target ? target->rect().center() : QPoint();
    if (QTableView* table = target ? nullptr : tableOf(*window)) {
        const QModelIndexList cells = table->model()->match(table->model()->index(0, 0), Qt::DisplayRole, name);
        table->scrollTo(cells.value(0));
        target = table->viewport();
        position = table->visualRect(cells.value(0)).center();
    }
    if (target)
        QTest::mouseClick(window->windowHandle(), Qt::LeftButton, {}, target->mapTo(window, position));
}

} // namespace

int main(int argc, char** argv)
{
    VirtualTime::start();
    const QApplication application(argc, argv);
    VirtualTime::endIdleThreads();
    QLocale::setDefault(QLocale("de_DE"));
    const QStringList arguments = QCoreApplication::arguments();
    if (arguments.value(1) == "stale-drive")
        return runStaleDrive(arguments.value(2).toInt());
    HostOptions options;
    options.plugin = arguments.value(1);
    const QString folder = arguments.value(2);
    options.drive = folder + "/drive";
    options.database = folder + "/db";
    options.log = folder + "/host.log";
    options.robot = "-"; // no diagnostics
    QString error;
    HostApplication host;
    if (!host.start(options, &error))
        qFatal("%s", qPrintable(error));
    const Station station(host, folder);
    return QApplication::exec();
}
