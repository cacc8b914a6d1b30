// SPDX-FileCopyrightText: 2026 The Merivo Connections developers
// SPDX-License-Identifier: MIT
#include "bench/Report.h"

#include <QCommandLineParser>
#include <QCoreApplication>
#include <QLocale>
#include <QLoggingCategory>

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstdlib>

namespace {

constexpr int LimitMissed = 3;

/// Returns a number with three significant digits and without an exponent.
QString withUnit(double value, const QString& unit)
{
    const double size = std::abs(value);
    return QString::number(value, 'f', size >= 100 ? 0 : size >= 10 ? 1 : size >= 1 ? 2 : 3) + ' ' + unit;
}

QString row(const QString& figure, const QString& what, const QString& limit = {}, const QString& verdict = {})
{
    return QString("%1  %2").arg(figure, 14).arg(limit.isEmpty() ? what : what.leftJustified(82)) +
           (limit.isEmpty() ? QString() : QString("  %1  %2").arg(limit, -20).arg(verdict));
}

} // namespace

Report::Report(const QString& title, const QVector<Option>& options)
    : m_title(title)
{
    disableLog();
    QCommandLineParser parser;
    parser.setApplicationDescription(title + ". The exit code is 3 if a limit is exceeded.");
    parser.addHelpOption();
    for (const Option& option : options)
        parser.addOption({option.name, option.description, "N", QString::number(option.number)});
    parser.process(*QCoreApplication::instance());
    bool isSound = parser.positionalArguments().isEmpty();
    for (const Option& option : options) {
        bool isNumber = false;
        const int number = parser.value(option.name).toInt(&isNumber);
        isSound = isSound && isNumber && number >= std::min(option.number, 1);
        m_numbers.insert(option.name, number);
    }
    if (!isSound) {
        std::fprintf(stderr, "%s\n", qUtf8Printable(parser.helpText()));
        std::exit(2);
    }
}

void Report::add(const QString& what, double figure, const QString& unit, double limit)
{
    const bool isMet = figure <= limit;
    m_missed |= !isMet;
    m_rows << row(withUnit(figure, unit), what, "at most " + withUnit(limit, unit), isMet ? "PASS" : "FAIL");
}

void Report::note(const QString& what, double figure, const QString& unit)
{
    m_rows << row(withUnit(figure, unit), what);
}

void Report::addMissing(const QString& what, const QString& why)
{
    m_missed = true;
    m_rows << row("-", what, why, "NOT MEASURED");
}

int Report::print() const
{
    std::printf("%s\n%s\n", qUtf8Printable(m_title), qUtf8Printable(m_rows.join('\n')));
    return m_missed ? LimitMissed : 0;
}

void disableLog()
{
    QLoggingCategory::setFilterRules("*.debug=false\n*.info=false\n*.warning=false");
}

int benchmarkFailed(const QString& why)
{
    std::fprintf(stderr, "%s: %s\n", qUtf8Printable(QCoreApplication::applicationName()), qUtf8Printable(why));
    return 1;
}

double percentile(std::vector<double> samples, double share)
{
    if (samples.empty())
        return 0;
    const double rank = std::ceil(share * static_cast<double>(samples.size()));
    const auto place = samples.begin() + static_cast<std::ptrdiff_t>(std::max(rank, 1.0)) - 1;
    std::nth_element(samples.begin(), place, samples.end());
    return *place;
}

void Comparison::addTo(Report& report, const QString& what, const QString& unit, double limit) const
{
    report.add(what + ", median", percentile(ratios, 0.5), "times", limit);
    report.note("one such call, median", percentile(ours, 0.5), unit);
    report.note("the bare call, median", percentile(bare, 0.5), unit);
}

Growth::Growth(QString what, QString things, QString unit)
    : m_what(std::move(what))
    , m_things(std::move(things))
    , m_unit(std::move(unit))
{}

void Growth::addTo(Report& report, std::optional<double> limit) const
{
    const auto grouped = [](double size) {
        return QLocale(QLocale::English).toString(static_cast<qlonglong>(size));
    };
    for (const auto& [size, cost] : m_points)
        report.note(m_what + ", " + grouped(size) + ' ' + m_things, cost, m_unit);
    if (m_points.size() < 2)
        return;
    const auto [fromSize, fromCost] = m_points.at(m_points.size() - 2);
    const auto [toSize, toCost] = m_points.back();
    const QString step = m_what + ", " + grouped(fromSize) + " to " + grouped(toSize) + ' ' + m_things;
    const double ratio = toCost / fromCost / (toSize / fromSize);
    if (limit)
        report.add(step + ", against linear", ratio, "times", *limit);
    else
        report.note(step + ", against linear", ratio, "times");
}
