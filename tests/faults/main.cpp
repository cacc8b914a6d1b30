// SPDX-FileCopyrightText: 2026 The Merivo Connections developers
// SPDX-License-Identifier: MIT
#include "bench/endurance/VirtualTime.h"
#include "faults/Weather.h"
#include "host/IComponent.h"
#include "workbench/host/HostApplication.h"
#include "workbench/host/HostOptions.h"

#include <QApplication>
#include <QDialogButtonBox>
#include <QDir>
#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QMessageBox>
#include <QMetaEnum>
#include <QPushButton>
#include <QTableView>
#include <QThread>
#include <QThreadPool>
#include <QTimer>

#include <cstdio>
#include <iostream>
#include <string>
#include <utility>

int runStaleDrive(int commands);

namespace {

/// The host of this process, steered by lines on standard input: a verb, and a value behind a blank. Tells on standard
/// output, one JSON object a line each with the time, of what can be pressed in the window in front whenever that has
/// changed, of each record that the log gets, of each second, and of the end of a run of the plug-in. Behind each it
/// stands still, and with it the time, until it reads "go".
class SteeredHost final : public QObject
{
public:
    explicit SteeredHost(HostApplication& host)
        : m_host(host)
    {
        connect(&host.log(), &HostLog::rowsInserted, this, [this](const QModelIndex&, int row, int last) {
            for (; row <= last; ++row)
                tell({{"record", m_host.log().index(row, HostLog::MessageColumn).data().toString()},
                      {"level", m_host.log().index(row, HostLog::LevelColumn).data().toString()}});
        });
        connect(&m_looks, &QTimer::timeout, this, &SteeredHost::look);
        connect(&m_seconds, &QTimer::timeout, this, [this] { tell({}); });
        connect(&m_repetition, &QTimer::timeout, this, [this] { m_told = {}; });
        m_repetition.setSingleShot(true);
        tell({{"ready", true}});
        m_looks.start(30);
        m_seconds.start(1000);
    }

private:
    void tell(QJsonObject object);
    void obey(const QString& verb, const QString& value);
    void runPlugin();
    void press(const QString& name);
    QJsonObject see();
    void look();

    HostApplication& m_host;
    QTimer m_looks;
    QTimer m_seconds;
    QTimer m_repetition; // of what was told, for a press without effect
    QMap<QString, QPointer<QWidget>> m_choices;
    QJsonObject m_seen;
    QJsonObject m_told;
};

void SteeredHost::tell(QJsonObject object)
{
    object["at"] = VirtualTime::milliseconds();
    std::puts(QJsonDocument(object).toJson(QJsonDocument::Compact).constData());
    std::fflush(stdout);
    std::string order;
    while (std::getline(std::cin, order) && order != "go") {
        // Not from here: an order can begin a loop, in which the next must be read.
        const QString text = QString::fromStdString(order);
        QTimer::singleShot(0, this, [this, text] { obey(text.section(' ', 0, 0), text.section(' ', 1)); });
    }
    if (!std::cin)
        QCoreApplication::quit();
}

void SteeredHost::obey(const QString& verb, const QString& value)
{
    static const QStringList failures{"open", "read", "cut-read", "write", "no-space", "close", "list", "kill"};
    HostDatabase& database = m_host.database();
    if (const int failure = failures.indexOf(verb); failure >= 0)
        Weather::spoil(Weather::Failure(failure), value.section(' ', 0, 0).toInt(),
                       value.section(' ', 1).toLocal8Bit());
    else if (verb == "run")
        runPlugin();
    else if (verb == "press")
        press(value);
    else if (verb == "after")
        QTimer::singleShot(value.section(' ', 0, 0).toInt(), this, [this, value] {
            tell({{"due", value.section(' ', 1)}});
        });
    else if (verb == "clock")
        VirtualTime::shiftWallClock(value.toInt());
    else if (verb == "add")
        database.addPatient({value, {"Name", value}});
    else if (verb == "change" && database.changePatient({value, {"Other", value}}))
        m_host.events().publishChanged({value, {"Other", value}});
    else if (verb == "delete" && database.removePatient(value))
        m_host.events().publishDeleted(value);
    else if (verb == "diary" && value.isEmpty())
        m_host.events().closeDiary();
    else if (verb == "diary")
        m_host.events().openDiary({value, {"Name", value}});
    else if (verb == "slip-away") // between the plug-in's trigger and its reading of the status
        Weather::onOpening([drive = value](const QByteArray& path) {
            thread_local bool hasTriggered = false;
            if (path.endsWith("/MISCNoCommand.txt"))
                hasTriggered = true;
            else if (hasTriggered && path.endsWith("/STATUS.TXT"))
                QDir().rename(drive, drive + ".away");
        });
    else if (verb == "swap") // by the plug-in and the host, not by the watcher of the traffic
        Weather::onOpening([nth = value.toInt()](const QByteArray& path) mutable {
            if (QThread::currentThread() == qApp->thread() && path.contains("/MISC/I") && --nth == 0)
                if (QFile file(path); file.open(QIODevice::Append))
                    file.write("changed");
        });
    else
        qFatal("can't do '%s %s': %s", qPrintable(verb), qPrintable(value), qPrintable(database.errorText()));
}

void SteeredHost::runPlugin()
{
    IComponent* component = m_host.pluginHost().components().constFirst();
    // A second run beside the first is begun as by a host that leaves its entry open.
    if (m_host.pluginHost().isRunning()) {
        component->execute(&m_host.window());
        return;
    }
    m_host.pluginHost().run(component, &m_host.window());
    const int spoiled = Weather::spoiled();
    Weather::spoil(Weather::Open, 0, {});
    Weather::onOpening({});
    // The log shows its records a little later.
    QTimer::singleShot(300, this, [this, spoiled] { tell({{"ended", true}, {"spoiled", spoiled}}); });
}

/// By the names of buttons, of standard buttons, and of the cells in a table's first column.
QJsonObject SteeredHost::see()
{
    static const QMetaEnum standard = QMetaEnum::fromType<QDialogButtonBox::StandardButtons>();
    m_choices.clear();
    QJsonObject seen;
    if (QWidget* window = QApplication::activeModalWidget()) {
        for (auto* button : window->findChildren<QPushButton*>()) {
            const auto* box = qobject_cast<QDialogButtonBox*>(button->parentWidget());
            if (button->isVisible() && button->isEnabled())
                m_choices[box ? standard.valueToKey(box->standardButton(button)) : button->objectName()] = button;
        }
        if (auto* table = window->findChild<QTableView*>(); table && table->isVisible())
            for (int row = 0; row < table->model()->rowCount(); ++row)
                m_choices[table->model()->index(row, 0).data().toString()] = table;
        const auto* box = qobject_cast<QMessageBox*>(window);
        const auto* label = window->findChild<QLabel*>("m_pumpAssignLabel");
        seen = {{"window", box ? "box" : window->objectName()},
                {"text", box     ? box->windowTitle() + ": " + box->text()
                         : label ? label->text()
                                 : ""},
                {"choices", QJsonArray::fromStringList(m_choices.keys())}};
    }
    return seen;
}

/// What passes from one look to the next isn't told of.
void SteeredHost::look()
{
    const QJsonObject seen = see();
    if (seen == std::exchange(m_seen, seen) && seen != m_told) {
        m_repetition.stop();
        m_told = seen;
        tell({{"seen", seen}});
    }
}

void SteeredHost::press(const QString& name)
{
    m_repetition.start(3000);
    see();
    QWidget* widget = m_choices.value(name);
    if (auto* button = qobject_cast<QPushButton*>(widget)) {
        button->click();
    } else if (auto* table = qobject_cast<QTableView*>(widget)) {
        const QModelIndexList cells = table->model()->match(table->model()->index(0, 0), Qt::DisplayRole, name);
        table->setCurrentIndex(cells.value(0));
        Q_EMIT table->clicked(cells.value(0));
    }
}

} // namespace

int main(int argc, char** argv)
{
    qputenv("QT_QPA_PLATFORM", "offscreen");
    const QByteArray clock = qgetenv("MERIVO_TRIAL_CLOCK"); // for two processes
    if (clock.isEmpty())
        VirtualTime::start();
    else if (!VirtualTime::join(clock.toStdString(), 0))
        qFatal("%s: can't be used as a clock", clock.constData());
    const QApplication application(argc, argv);
    QThreadPool::globalInstance()->setExpiryTimeout(0); // the clock waits for a thread that doesn't wait for time
    const QStringList arguments = QCoreApplication::arguments();
    if (arguments.value(1) == "--stale-drive")
        return runStaleDrive(arguments.value(2).toInt());
    QString error;
    const HostOptions options = HostOptions::parse(arguments, &error);
    HostApplication host;
    if (!error.isEmpty() || !host.start(options, &error))
        qFatal("%s", qPrintable(error));
    const SteeredHost steered(host);
    return QApplication::exec();
}
