// SPDX-FileCopyrightText: 2026 The Merivo Connections developers
// SPDX-License-Identifier: MIT
#include "bench/Report.h"

#include <QCoreApplication>
#include <QLoggingCategory>

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstdlib>

namespace {

/// Three significant digits, and no exponent.
QString numberText(double value)
{
    const double size = std::abs(value);
    return QString::number(value, 'f', size >= 100 ? 0 : size >= 10 ? 1 : size >= 1 ? 2 : 3);
}

QString numberText(double value, const QString& unit)
{
    return numberText(value) + QLatin1Char(' ') + unit;
}

void put(QString line)
{
    while (line.endsWith(QLatin1Char(' ')))
        line.chop(1);
    std::fprintf(stdout, "%s\n", qUtf8Printable(line));
}

} // namespace

Report::Report(const QString& description)
{
    parser.setApplicationDescription(description);
    parser.addHelpOption();
    parser.addOption({QStringLiteral("strict"), QStringLiteral("End with 1 if a limit is missed.")});
    parser.addOption({QStringLiteral("rows"), QStringLiteral("Print tab-separated rows instead of a table.")});
}

void Report::addNumber(const QString& name, const QString& description, int defaultValue)
{
    parser.addOption({name, description, QStringLiteral("N"), QString::number(defaultValue)});
}

void Report::parse()
{
    parser.process(*QCoreApplication::instance());
    if (!parser.positionalArguments().isEmpty()) {
        std::fprintf(stderr, "This program takes no argument: %s\n",
                     qUtf8Printable(parser.positionalArguments().constFirst()));
        std::exit(2);
    }
}

int Report::number(const QString& name) const
{
    bool valid = false;
    const int value = parser.value(name).toInt(&valid);
    if (!valid || value < 1) {
        std::fprintf(stderr, "--%s wants a whole number above 0, not '%s'\n", qUtf8Printable(name),
                     qUtf8Printable(parser.value(name)));
        std::exit(2);
    }
    return value;
}

void Report::add(const QString& what, double figure, const QString& unit, double limit)
{
    const bool met = figure <= limit;
    m_missed |= !met;
    m_rows.append({numberText(figure, unit), what, QStringLiteral("at most ") + numberText(limit, unit),
                   met ? QStringLiteral("met") : QStringLiteral("missed")});
}

void Report::tell(const QString& what, double figure, const QString& unit)
{
    m_rows.append({numberText(figure, unit), what, {}, {}});
}

void Report::lack(const QString& what, const QString& why)
{
    m_missed = true;
    m_rows.append({QStringLiteral("-"), what, why, QStringLiteral("not measured")});
}

int Report::print() const
{
    if (parser.isSet(QStringLiteral("rows"))) {
        for (const Row& row : m_rows)
            put(QStringList{row.figure, row.what, row.wanted, row.verdict}.join(QLatin1Char('\t')));
    } else {
        put(parser.applicationDescription());
        for (const Row& row : m_rows) {
            put(QStringLiteral("%1  %2  %3  %4")
                    .arg(row.figure, 14)
                    .arg(row.what, -78)
                    .arg(row.wanted, -20)
                    .arg(row.verdict));
        }
    }
    std::fflush(stdout);
    return m_missed && parser.isSet(QStringLiteral("strict")) ? 1 : 0;
}

int benchmarkFailed(const QString& why)
{
    std::fprintf(stderr, "%s: %s\n", qUtf8Printable(QCoreApplication::applicationName()), qUtf8Printable(why));
    return 1;
}

void quietLog()
{
    QLoggingCategory::setFilterRules(QStringLiteral("*.debug=false\n*.info=false\n*.warning=false"));
}

double percentile(std::vector<double> samples, double share)
{
    if (samples.empty())
        return 0;
    const double rank = std::ceil(share * static_cast<double>(samples.size()));
    const auto index = static_cast<std::vector<double>::difference_type>(std::max(rank, 1.0)) - 1;
    std::nth_element(samples.begin(), samples.begin() + index, samples.end());
    return samples.at(static_cast<std::size_t>(index));
}
