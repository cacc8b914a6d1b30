// SPDX-FileCopyrightText: 2026 The Merivo Connections developers
// SPDX-License-Identifier: MIT

// lmIcon() of an SVG, the first time and again, against a QIcon of the same file that draws the same pixmap.

#include "bench/Report.h"
#include "toolkit/LmIcons.h"

#include <QFile>
#include <QGuiApplication>
#include <QTemporaryDir>

#include <array>

namespace {

constexpr int Side = 48;

/// Milliseconds that @p work takes.
template <typename Work>
double timed(Work work)
{
    const BenchClock::time_point start = BenchClock::now();
    work();
    return millisecondsSince(start);
}

} // namespace

int main(int argc, char** argv)
{
    QGuiApplication app(argc, argv);
    Report report(QStringLiteral("Icons of SVG files, against QIcon alone"));
    report.addNumber(QStringLiteral("rounds"), QStringLiteral("Files, each loaded once and then again."), 300);
    report.parse();
    quietLog();

    const QTemporaryDir folder;
    std::vector<double> first;
    std::vector<double> bareFirst;
    std::vector<double> again;
    std::vector<double> bareAgain;
    bool isSame = true;
    for (int i = 0; i < report.number(QStringLiteral("rounds")); ++i) {
        // A file of its own for each, as both keep what they have read, and Qt its pixmaps by the file's name.
        const std::array<QString, 2> paths{folder.filePath(QStringLiteral("lm%1.svg").arg(i)),
                                           folder.filePath(QStringLiteral("qt%1.svg").arg(i))};
        for (const QString& path : paths) {
            if (!QFile::copy(QStringLiteral(BENCH_SVG_FILE), path))
                return benchmarkFailed(QStringLiteral("can't write %1").arg(path));
        }
        QPixmap own;
        QPixmap bare;
        const auto measure = [&](std::vector<double>& ownTimes, std::vector<double>& bareTimes) {
            for (const int turn : {i % 2, 1 - i % 2}) {
                if (turn == 0)
                    ownTimes.push_back(timed([&] { own = lmIcon(paths[0], Side, Side).pixmap(Side, Side); }));
                else
                    bareTimes.push_back(timed([&] { bare = QIcon(paths[1]).pixmap(Side, Side); }));
            }
        };
        measure(first, bareFirst);
        measure(again, bareAgain);
        isSame = isSame && !own.isNull() && own.toImage() == bare.toImage();
    }
    if (!isSame)
        return benchmarkFailed(QStringLiteral("the pixmaps differ"));

    const QString times = QStringLiteral("times");
    const QString microseconds = QStringLiteral("us");
    // The first time reads the file three times over (see docs/performance.md), which is why it may cost more than 2.
    report.add(QStringLiteral("first lmIcon() / QIcon, median"), percentile(first, 0.5) / percentile(bareFirst, 0.5),
               times, 5);
    report.tell(QStringLiteral("first lmIcon(), median"), 1000 * percentile(first, 0.5), microseconds);
    report.add(QStringLiteral("lmIcon() again / QIcon again, median"),
               percentile(again, 0.5) / percentile(bareAgain, 0.5), times, 2);
    report.tell(QStringLiteral("lmIcon() again, median"), 1000 * percentile(again, 0.5), microseconds);
    return report.print();
}
