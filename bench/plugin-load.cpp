// SPDX-FileCopyrightText: 2026 The Merivo Connections developers
// SPDX-License-Identifier: MIT

// Loading the plug-in up to its components, compared with a plug-in that does nothing. Each load has a separate
// process.

#include "bench/Machine.h"
#include "bench/Report.h"
#include "hostapi/IPlugin.h"
#include "support/RecordingHost.h"

#include <QApplication>
#include <QDir>
#include <QPluginLoader>
#include <QSettings>
#include <QTemporaryDir>

#include <array>
#include <cstdio>
#include <functional>
#include <numeric>

namespace {

const std::array<const char*, 6> StepNames{
    "load the library", "create the instance", "setExtensionRegistry()",
    "initialize()",     "installTranslator()", "components()",
};

/// Makes the calls of a host, and prints the duration of each step in milliseconds.
int loadAsChild(const QString& library)
{
    const QTemporaryDir folder;
    QSettings settings(folder.filePath("plugin.ini"), QSettings::IniFormat);
    RecordingHost host;
    host.services.paths.insert(IServices::TranslationsPath, folder.path());
    const QDir directory(folder.path());

    QPluginLoader loader(library);
    IPlugin* plugin = nullptr;
    const std::array<std::function<void()>, StepNames.size()> steps{
        [&] {
            // A host compares the interface id before it loads anything.
            if (loader.metaData().value("IID").toString() == MERIVO_PLUGIN_IID)
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
            return benchmarkFailed("can't load " + library + ": " + loader.errorString());
        std::printf("%.6f ", millisecondsOf(steps.at(i)));
    }
    return 0;
}

} // namespace

int main(int argc, char** argv)
{
    QApplication app(argc, argv);
    if (const auto library = childArgument(argc, argv))
        return loadAsChild(*library);
    Report report("Loading the plug-in up to components(), compared with an empty one",
                  {{"rounds", 60, "Loads of each library."}});

    std::array<std::array<std::vector<double>, StepNames.size()>, 2> times;
    const auto load = [&times](const QString& library, std::size_t which) {
        return [&times, library, which] {
            const auto steps = runChild(library);
            if (!steps || steps->size() != StepNames.size())
                return -1.0;
            for (std::size_t i = 0; i < StepNames.size(); ++i)
                times.at(which).at(i).push_back(steps->at(i));
            return std::accumulate(steps->cbegin(), steps->cend(), 0.0);
        };
    };
    const auto loads = compare(report.number("rounds"), load(MERIVO_PLUGIN_FILE, 0), load(EMPTY_PLUGIN_FILE, 1));
    if (!loads)
        return benchmarkFailed("a load failed");
    loads->addTo(report, "the plug-in / an empty one", "ms", 2);
    for (std::size_t i = 0; i < StepNames.size(); ++i) {
        report.note(QString("the plug-in: ") + StepNames.at(i), percentile(times[0].at(i), 0.5), "ms");
        report.note(QString("an empty one: ") + StepNames.at(i), percentile(times[1].at(i), 0.5), "ms");
    }
    return report.print();
}
