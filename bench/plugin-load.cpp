// SPDX-FileCopyrightText: 2026 The Merivo Connections developers
// SPDX-License-Identifier: MIT

// Loading the plug-in up to its components, against a plug-in that does nothing. Each load has a process of its own.

#include "bench/Report.h"
#include "host/IPlugin.h"
#include "support/RecordingHost.h"

#include <QApplication>
#include <QDir>
#include <QPluginLoader>
#include <QProcess>
#include <QSettings>
#include <QTemporaryDir>

#include <array>
#include <cstdio>
#include <functional>

namespace {

const std::array<const char*, 6> StepNames{
    "load the library", "make the instance",   "setExtensionRegistry()",
    "initialize()",     "installTranslator()", "components()",
};
using Steps = std::array<double, StepNames.size()>; // milliseconds

/// Does what a host does and prints the time of each step.
int loadAsChild(const QString& library)
{
    quietLog();
    const QTemporaryDir folder;
    QSettings settings(folder.filePath(QStringLiteral("plugin.ini")), QSettings::IniFormat);
    RecordingHost host;
    host.services.paths.insert(IServices::TranslationsPath, folder.path());
    const QDir directory(folder.path());

    QPluginLoader loader(library);
    IPlugin* plugin = nullptr;
    const std::array<std::function<void()>, StepNames.size()> steps{
        [&] {
            // A host compares the interface id before it loads anything.
            if (loader.metaData().value(QStringLiteral("IID")).toString() == QLatin1String(MERIVO_PLUGIN_IID))
                loader.load();
        },
        [&] { plugin = loader.isLoaded() ? qobject_cast<IPlugin*>(loader.instance()) : nullptr; },
        [&] { plugin->setExtensionRegistry(&host); },
        [&] { plugin->initialize(settings, directory); },
        [&] { plugin->installTranslator(); },
        [&] { plugin->components(); },
    };
    for (std::size_t i = 0; i < steps.size(); ++i) {
        if (i == 2 && !plugin)
            return benchmarkFailed(QStringLiteral("can't load %1: %2").arg(library, loader.errorString()));
        const BenchClock::time_point start = BenchClock::now();
        steps.at(i)();
        std::printf("%.6f\n", millisecondsSince(start));
    }
    return 0;
}

/// One load in a fresh process; false if that failed.
bool load(const QString& library, Steps& steps)
{
    QProcess child;
    child.setProcessChannelMode(QProcess::ForwardedErrorChannel);
    child.start(QCoreApplication::applicationFilePath(), {QStringLiteral("--child"), library});
    if (!child.waitForFinished(-1) || child.exitStatus() != QProcess::NormalExit || child.exitCode() != 0)
        return false;
    const QList<QByteArray> lines = child.readAllStandardOutput().trimmed().split('\n');
    for (std::size_t i = 0; i < steps.size(); ++i)
        steps.at(i) = lines.value(static_cast<int>(i)).toDouble();
    return true;
}

/// The loads of one library, and what they took step by step.
struct Series
{
    QString library;
    std::vector<double> totals;
    std::array<std::vector<double>, StepNames.size()> steps;

    bool loadOnce()
    {
        Steps times{};
        if (!load(library, times))
            return false;
        double total = 0;
        for (std::size_t i = 0; i < times.size(); ++i) {
            steps.at(i).push_back(times.at(i));
            total += times.at(i);
        }
        totals.push_back(total);
        return true;
    }
};

} // namespace

int main(int argc, char** argv)
{
    QApplication app(argc, argv);
    Report report(QStringLiteral("Loading the plug-in up to components(), against an empty one"));
    const QString childOption = QStringLiteral("child");
    QCommandLineOption child(childOption, {}, QStringLiteral("LIBRARY"));
    child.setFlags(QCommandLineOption::HiddenFromHelp);
    report.parser.addOption(child);
    report.addNumber(QStringLiteral("rounds"), QStringLiteral("Loads of each library."), 60);
    report.parse();
    if (report.parser.isSet(childOption))
        return loadAsChild(report.parser.value(childOption));

    Series ours{QStringLiteral(MERIVO_PLUGIN_FILE), {}, {}};
    Series empty{QStringLiteral(EMPTY_PLUGIN_FILE), {}, {}};
    std::vector<double> ratios;
    const int rounds = report.number(QStringLiteral("rounds"));
    for (int i = 0; i < rounds; ++i) {
        Series& first = i % 2 ? ours : empty;
        Series& second = i % 2 ? empty : ours;
        if (!first.loadOnce() || !second.loadOnce())
            return benchmarkFailed(QStringLiteral("a load failed"));
        ratios.push_back(ours.totals.back() / empty.totals.back());
    }

    const QString unit = QStringLiteral("ms");
    report.add(QStringLiteral("the plug-in / an empty one, median"), percentile(ratios, 0.5), QStringLiteral("times"),
               2.0);
    report.tell(QStringLiteral("the plug-in, median"), percentile(ours.totals, 0.5), unit);
    report.tell(QStringLiteral("an empty one, median"), percentile(empty.totals, 0.5), unit);
    for (std::size_t i = 0; i < StepNames.size(); ++i) {
        const QString name = QString::fromLatin1(StepNames.at(i));
        report.tell(QStringLiteral("the plug-in: %1").arg(name), percentile(ours.steps.at(i), 0.5), unit);
        report.tell(QStringLiteral("an empty one: %1").arg(name), percentile(empty.steps.at(i), 0.5), unit);
    }
    return report.print();
}
