// SPDX-FileCopyrightText: 2026 The Merivo Connections developers
// SPDX-License-Identifier: MIT
#include "tools/host/HostApplication.h"
#include "tools/host/HostOptions.h"
#include "tools/robot/Robot.h"
#include "tools/robot/RobotScript.h"
#include "tools/support/CommandLine.h"
#include "tools/support/Platform.h"

#include <QApplication>
#include <QScopeGuard>
#include <QTimer>

namespace {

HostLog* hostLog = nullptr; // set once, before the plug-in is loaded

/// Writes Qt's messages to the host's log, as standard error has only the program's own errors. Any thread.
void takeQtMessage(QtMsgType type, const QMessageLogContext& context, const QString& text)
{
    // The plug-in also logs its messages through the host; other debug output isn't needed.
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

/// Returns the operations of the host that the robot doesn't perform at the window.
RobotHost robotHostOf(HostApplication& host)
{
    const auto addOrChangePatient = [&host](const QString& puid, const QStringList& ids) {
        const PatientRecord patient{puid, ids};
        HostDatabase& database = host.database();
        const bool isThere = database.findPatient(patient.puid).has_value();
        if (!(isThere ? database.changePatient(patient) : database.addPatient(patient)))
            return database.errorText();
        if (isThere)
            host.events().publishChanged(patient);
        else
            host.events().publishCreated();
        return QString();
    };
    const auto openDiary = [&host](const QString& puid) {
        const auto patient = host.database().findPatient(puid);
        if (!patient)
            return QString("no patient '%1' was found %2").arg(puid, host.database().errorText());
        host.events().openDiary(*patient);
        return QString();
    };
    return {host.window(), addOrChangePatient, openDiary};
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
    int onlyTheName = 1; // Qt would interpret some of our options as its own
    QApplication application(onlyTheName, argv);
    QApplication::setApplicationDisplayName("Merivo Host");
    // Plug-ins only mark labels to highlight; the application defines their appearance.
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

    Robot robot(robotHostOf(host), script.steps(), options.pictures);
    QTimer::singleShot(0, &robot, &Robot::start);
    QApplication::exec();
    return robot.failure().isEmpty() ? Success : complain(Failure, robot.failure());
}
