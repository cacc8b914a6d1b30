// SPDX-FileCopyrightText: 2026 The Merivo Connections developers
// SPDX-License-Identifier: MIT
#pragma once

#include <QHash>
#include <QString>
#include <QStringList>
#include <QVector>

#include <chrono>
#include <limits>
#include <optional>
#include <utility>
#include <vector>

/// The command line, the table and the exit code of one benchmark.
///
/// The table has a row for each figure: the figure, what it is, its limit, and whether the limit is met. Figures
/// without a limit explain the others.
class Report final
{
public:
    struct Option
    {
        QString name;
        int number;
        QString description;
    };

    /// Parses the command line, which can set each option to another number. Ends the program with 2 if it is wrong.
    /// Needs the application object. Calls disableLog().
    explicit Report(const QString& title, const QVector<Option>& options = {});
    int number(const QString& option) const { return m_numbers.value(option); }

    /// Adds a figure that must not exceed @p limit.
    void add(const QString& what, double figure, const QString& unit, double limit);
    /// Adds a figure without a limit.
    void note(const QString& what, double figure, const QString& unit);
    /// Adds a figure that can't be measured here, which counts as an exceeded limit.
    void addMissing(const QString& what, const QString& why);

    /// Prints the table. Returns the exit code: 0, or 3 if a limit is exceeded.
    int print() const;

private:
    QString m_title;
    QHash<QString, int> m_numbers;
    QStringList m_rows;
    bool m_missed = false;
};

/// Disables Qt's log messages except critical ones, as their output takes time that it doesn't take in a host.
void disableLog();

/// Prints to standard error why the benchmark couldn't measure, and returns the exit code 1.
int benchmarkFailed(const QString& why);

/// Returns the value that @p share of the samples don't exceed: 0 the minimum, 0.5 the median, 1 the maximum. Returns 0
/// without samples.
double percentile(std::vector<double> samples, double share);

using BenchClock = std::chrono::steady_clock;

inline double millisecondsSince(BenchClock::time_point start)
{
    return std::chrono::duration<double, std::milli>(BenchClock::now() - start).count();
}

/// Returns how many milliseconds @p work takes.
template <typename Work>
double millisecondsOf(const Work& work)
{
    const BenchClock::time_point start = BenchClock::now();
    work();
    return millisecondsSince(start);
}

/// The costs of two ways to do something, round by round.
struct Comparison
{
    std::vector<double> ours;
    std::vector<double> bare;
    std::vector<double> ratios;

    /// Adds the median ratio with its limit and the median costs.
    void addTo(Report& report, const QString& what, const QString& unit, double limit) const;
};

/// Calls both, which return their costs, @p rounds times after some rounds that are ignored. They take turns in being
/// called first, as the first call affects the caches for the second. Returns nothing if a cost is below 0.
template <typename Ours, typename Bare>
std::optional<Comparison> compare(int rounds, const Ours& ours, const Bare& bare)
{
    Comparison result;
    for (int i = -rounds / 20; i < rounds; ++i) {
        double first = i % 2 ? ours() : bare();
        double second = i % 2 ? bare() : ours();
        if (first < 0 || second < 0)
            return std::nullopt;
        if (i % 2 == 0)
            std::swap(first, second);
        if (i >= 0) {
            result.ours.push_back(first);
            result.bare.push_back(second);
            result.ratios.push_back(first / second);
        }
    }
    return result;
}

/// A cost at growing sizes.
class Growth final
{
public:
    /// @p what is measured, in @p unit, for a number of @p things.
    Growth(QString what, QString things, QString unit);

    void add(double size, double cost) { m_points.emplace_back(size, cost); }
    /// Adds each cost and the ratio of the last step to linear growth, with a limit if there is one.
    void addTo(Report& report, std::optional<double> limit) const;

private:
    QString m_what;
    QString m_things;
    QString m_unit;
    std::vector<std::pair<double, double>> m_points;
};

/// Calls @p call, which returns its cost in milliseconds, for half a second and at least three times. Returns the
/// lowest cost, since disturbances only add to it, or the first cost below 0, which stands for a failure.
template <typename Call>
double lowestCost(const Call& call)
{
    double best = std::numeric_limits<double>::max();
    const auto start = BenchClock::now();
    for (int i = 0; i < 3 || millisecondsSince(start) < 500; ++i) {
        const double cost = call();
        if (cost < 0)
            return cost;
        best = std::min(best, cost);
    }
    return best;
}
