// SPDX-FileCopyrightText: 2026 The Merivo Connections developers
// SPDX-License-Identifier: MIT
#include "workbench/host/HostApplication.h"
#include "workbench/host/HostOptions.h"
#include "workbench/host/Robot.h"
#include "workbench/host/RobotScript.h"
#include "workbench/support/CommandLine.h"
#include "workbench/support/Platform.h"

#include <QApplication>
#include <QScopeGuard>
#include <QTimer>

namespace {

HostLog* hostLog = nullptr; // set once, before the plug-in is loaded

/// Qt's own messages go into the host's log: standard error is for what the caller must know. Any thread.
void takeQtMessage(QtMsgType type, const QMessageLogContext& context, const QString& text)
{
    // What the plug-in writes to Qt's log comes to the host's by itself; the rest of the debug output is no news.
    if (type == QtDebugMsg || QByteArray(context.category).startsWith("plugin.") || Platform::isKnownNoise(text))
        return;
    if (type == QtFatalMsg || !hostLog) {
        complain(Failure, text);
        return;
    }
    const QString channel = type == QtInfoMsg ? "Info" : "Warning";
    QMetaObject::invokeMethod(
        hostLog, [channel, text] { hostLog->write("Qt", channel, text); }, Qt::QueuedConnection);
}

} // namespace

int main(int argc, char** argv)
{
    HostOptions options;
    if (const auto status = options.read(argc, argv))
        return *status;

    QString error;
    RobotScript script;
    if (!options.robot.isEmpty() && !script.load(options.robot, Robot::forms(), &error))
        return complain(Failure, error);
    if (Platform::isWithoutDisplay()) {
        if (options.robot.isEmpty() && options.report.isEmpty())
            return complain(Failure, "there is no display for the window");
        qputenv("QT_QPA_PLATFORM", "offscreen");
    }

    qInstallMessageHandler(takeQtMessage);
    int onlyTheName = 1; // the rest are options of ours, of which Qt would take some for its own
    QApplication application(onlyTheName, argv);
    QApplication::setApplicationDisplayName("Merivo Host");
    // Plug-ins mark what shall stand out and leave the looks to the application.
    application.setStyleSheet("QLabel[HighlightFont=\"true\"] { font-weight: bold; }"
                              "QLabel[BigSizeFont=\"true\"] { font-size: 16pt; }");

    HostApplication host;
    if (!options.report.isEmpty()) {
        const bool isSaved = host.saveReport(options, &error);
        if (isSaved)
            print(error);
        return isSaved ? Success : complain(Failure, error);
    }
    hostLog = &host.log();
    const auto forgetLog = qScopeGuard([] { hostLog = nullptr; });
    if (!host.start(options, &error))
        return complain(Failure, error);
    if (options.robot.isEmpty())
        return QApplication::exec();

    Robot robot(host, script.steps(), options.pictures);
    QTimer::singleShot(0, &robot, &Robot::start);
    QApplication::exec();
    return robot.failure().isEmpty() ? Success : complain(Failure, robot.failure());
}
