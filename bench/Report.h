// SPDX-FileCopyrightText: 2026 The Merivo Connections developers
// SPDX-License-Identifier: MIT
#pragma once

#include <QCommandLineParser>
#include <QString>
#include <QVector>

#include <chrono>
#include <vector>

/// What one benchmark measured: its command line, its table and its exit code.
///
/// The table has one row a figure: the figure, what it is, the limit that is wanted, and whether that is met. Figures
/// without a limit explain the others. With --rows the same goes out as tab-separated lines for bench/run.
class Report final
{
public:
    explicit Report(const QString& description);

    /// An option with a whole number, ahead of parse().
    void addNumber(const QString& name, const QString& description, int defaultValue);
    /// Reads the command line; ends the program with 2 if it is wrong. Needs the application object.
    void parse();
    int number(const QString& name) const;

    /// A figure that wants to be at most @p limit.
    void add(const QString& what, double figure, const QString& unit, double limit);
    /// A figure that is told without a limit.
    void tell(const QString& what, double figure, const QString& unit);
    /// A figure that this machine can't give: it counts as missed.
    void lack(const QString& what, const QString& why);

    /// Prints the table. 0, or with --strict 1 if a limit was missed.
    int print() const;

    QCommandLineParser parser;

private:
    struct Row
    {
        QString figure;
        QString what;
        QString wanted;
        QString verdict;
    };

    QVector<Row> m_rows;
    bool m_missed = false;
};

/// Writes to standard error that the benchmark couldn't measure and why, and returns the exit code for it.
int benchmarkFailed(const QString& why);

/// Turns Qt's log off but for critical messages: plain debug lines are off in a host too, and the others only tell of
/// the benchmark's own surroundings. What goes wrong is told by benchmarkFailed().
void quietLog();

/// The value that @p share of the samples don't exceed: 0.5 gives the median, 1 the maximum. 0 without samples.
double percentile(std::vector<double> samples, double share);

using BenchClock = std::chrono::steady_clock;

inline double millisecondsSince(BenchClock::time_point start)
{
    return std::chrono::duration<double, std::milli>(BenchClock::now() - start).count();
}
