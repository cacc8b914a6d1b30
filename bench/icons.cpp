// SPDX-FileCopyrightText: 2026 The Merivo Connections developers
// SPDX-License-Identifier: MIT

// lmIcon() of an SVG, the first time and again, against a QIcon of the same file that draws the same pixmap.

#include "bench/Report.h"
#include "toolkit/LmIcons.h"

#include <QFile>
#include <QGuiApplication>
#include <QTemporaryDir>

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
    std::vector<double> bareKept;
    for (int i = 0; i < report.number(QStringLiteral("rounds")); ++i) {
        // A file of its own for each, as both keep what they have read, and Qt its pixmaps by the file's name.
        const QString ownPath = folder.filePath(QStringLiteral("lm%1.svg").arg(i));
        const QString barePath = folder.filePath(QStringLiteral("qt%1.svg").arg(i));
        if (!QFile::copy(QStringLiteral(BENCH_SVG_FILE), ownPath) || !QFile::copy(ownPath, barePath))
            return benchmarkFailed(QStringLiteral("can't write %1 or %2").arg(ownPath, barePath));

        QPixmap own;
        QPixmap bare;
        QIcon kept;
        const auto ownWork = [&] {
            own = lmIcon(ownPath, Side, Side).pixmap(Side, Side);
        };
        const auto bareWork = [&] {
            kept = QIcon(barePath);
            bare = kept.pixmap(Side, Side);
        };
        const auto measure = [&](std::vector<double>& ownTimes, std::vector<double>& bareTimes) {
            // Each goes first every second time.
            if (i % 2 == 0)
                ownTimes.push_back(timed(ownWork));
            bareTimes.push_back(timed(bareWork));
            if (i % 2 != 0)
                ownTimes.push_back(timed(ownWork));
        };
        measure(first, bareFirst);
        measure(again, bareAgain);
        bareKept.push_back(timed([&] { bare = kept.pixmap(Side, Side); }));
        if (own.isNull() || own.toImage() != bare.toImage())
            return benchmarkFailed(QStringLiteral("the pixmaps of round %1 differ").arg(i));
    }

    const auto addRatio = [&report](const QString& what, const std::vector<double>& times,
                                    const std::vector<double>& bareTimes, double limit) {
        report.add(what + QStringLiteral(", medians"), percentile(times, 0.5) / percentile(bareTimes, 0.5),
                   QStringLiteral("times"), limit);
    };
    // The first time an image, an icon and a picture are made of the file, which is why it may cost more than twice.
    addRatio(QStringLiteral("first lmIcon() / QIcon"), first, bareFirst, 2.5);
    report.tell(QStringLiteral("first lmIcon(), median"), 1000 * percentile(first, 0.5), QStringLiteral("us"));
    addRatio(QStringLiteral("lmIcon() again / QIcon made again"), again, bareAgain, 2);
    // By name and with a hold on the cache, in place of an icon at hand: a microsecond that no drawing notices.
    addRatio(QStringLiteral("lmIcon() again / pixmap of a kept QIcon"), again, bareKept, 5);
    report.tell(QStringLiteral("lmIcon() again, median"), 1000 * percentile(again, 0.5), QStringLiteral("us"));
    return report.print();
}
