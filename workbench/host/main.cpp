// SPDX-FileCopyrightText: 2026 The Merivo Connections developers
// SPDX-License-Identifier: MIT
#include "host/PluginIdentity.h"
#include "workbench/host/HostApplication.h"
#include "workbench/host/HostOptions.h"
#include "workbench/host/Robot.h"
#include "workbench/host/RobotScript.h"
#include "workbench/support/Platform.h"

#include <QApplication>
#include <QLocale>
#include <QScopeGuard>
#include <QTimer>

#include <cstdio>

namespace {

enum ExitStatus { Success = 0, Failure = 1, WrongCall = 2 };

int report(ExitStatus status, const QString& sentence)
{
    std::fprintf(stderr, "merivo-host: %s\n", qPrintable(sentence));
    return status;
}

HostLog* hostLog = nullptr; // set once, before the plug-in is loaded
QStringList earlyMessages;  // those before that, of this thread alone

/// Qt's own messages go into the host's log: standard error is for what the caller must know. Any thread.
void takeQtMessage(QtMsgType type, const QMessageLogContext& context, const QString& text)
{
    // What the plug-in writes to Qt's log comes to the host's by itself; the rest of the debug output is no news.
    if (type == QtDebugMsg || QByteArray(context.category).startsWith("plugin.") || Platform::isKnownNoise(text))
        return;
    if (type == QtFatalMsg) {
        std::fprintf(stderr, "merivo-host: %s\n", qPrintable(text));
        return;
    }
    if (!hostLog) {
        earlyMessages.append(text);
        return;
    }
    const QString channel = type == QtInfoMsg ? "Info" : "Warning";
    QMetaObject::invokeMethod(
        hostLog, [channel, text] { hostLog->write("Qt", channel, text); }, Qt::QueuedConnection);
}

int showText(int& argc, char** argv, const HostOptions& options)
{
    const QCoreApplication application(argc, argv);
    const QString text =
        options.help ? HostOptions::helpText() : QString("merivo-host %1\n").arg(MERIVO_PLUGIN_VERSION);
    std::fputs(qPrintable(text), stdout);
    return Success;
}

} // namespace

int main(int argc, char** argv)
{
    QStringList arguments;
    for (int i = 0; i < argc; ++i)
        arguments.append(QString::fromLocal8Bit(argv[i]));
    QString error;
    const HostOptions options = HostOptions::parse(arguments, &error);
    if (error.endsWith('.')) // as Qt's own sentences do
        error.chop(1);
    if (!error.isEmpty())
        return report(WrongCall, error + "; see --help");
    if (options.help || options.version)
        return showText(argc, argv, options);

    RobotScript script;
    if (!options.robot.isEmpty() && !script.load(options.robot, &error))
        return report(Failure, error);
    if (Platform::isWithoutDisplay()) {
        if (options.robot.isEmpty() && options.report.isEmpty())
            return report(Failure, "there is no display for the window");
        qputenv("QT_QPA_PLATFORM", "offscreen");
    }
    if (!options.locale.isEmpty())
        QLocale::setDefault(QLocale(options.locale));

    qInstallMessageHandler(takeQtMessage);
    int onlyTheName = 1; // the rest are options of ours, of which Qt would take some for its own
    QApplication application(onlyTheName, argv);
    QApplication::setApplicationName("merivo-host");
    QApplication::setApplicationDisplayName("Merivo Host");
    QApplication::setApplicationVersion(MERIVO_PLUGIN_VERSION);
    // Plug-ins mark what shall stand out and leave the looks to the application.
    application.setStyleSheet("QLabel[HighlightFont=\"true\"] { font-weight: bold; }"
                              "QLabel[BigSizeFont=\"true\"] { font-size: 16pt; }");

    HostApplication host;
    for (const QString& text : qAsConst(earlyMessages))
        host.log().write("Qt", "Warning", text);
    if (!options.report.isEmpty()) {
        const bool isSaved = host.saveReport(options, &error);
        if (isSaved)
            std::fprintf(stdout, "%s\n", qPrintable(error));
        return isSaved ? Success : report(Failure, error);
    }
    hostLog = &host.log();
    const auto forgetLog = qScopeGuard([] { hostLog = nullptr; });
    if (!host.start(options, &error))
        return report(Failure, error);
    if (options.robot.isEmpty())
        return QApplication::exec();

    Robot robot(host, script, {options.json, options.pictures});
    QTimer::singleShot(0, &robot, &Robot::start);
    QApplication::exec();
    return robot.failure().isEmpty() ? Success : report(Failure, robot.failure());
}
