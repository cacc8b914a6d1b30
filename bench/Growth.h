// SPDX-FileCopyrightText: 2026 The Merivo Connections developers
// SPDX-License-Identifier: MIT
#pragma once

#include "bench/Report.h"

#include <QString>

#include <algorithm>
#include <limits>
#include <optional>
#include <vector>

/// One figure at growing sizes, and how it grows.
class Growth final
{
public:
    /// @p what is measured, in @p unit, for that many @p things.
    Growth(QString what, QString things, QString unit);

    void add(double size, double figure);
    /// Adds to the report how much more the largest size takes than the one before it, against the linear, which wants
    /// to be at most @p limit, if there is one; that step as an exponent; and each figure.
    void tell(Report& report, std::optional<double> limit) const;

private:
    struct Point
    {
        double size;
        double figure;
    };

    QString m_what;
    QString m_things;
    QString m_unit;
    std::vector<Point> m_points;
};

/// The shortest of some calls in milliseconds, since whatever disturbs the machine only ever adds to one: as many as
/// fit into half a second, but three at least. Each call returns its own milliseconds; one below 0 has failed and ends
/// the rounds.
template <typename Call>
double shortest(Call call)
{
    double best = std::numeric_limits<double>::max();
    const auto start = BenchClock::now();
    for (int i = 0; i < 3 || millisecondsSince(start) < 500; ++i) {
        const double time = call();
        if (time < 0)
            return time;
        best = std::min(best, time);
    }
    return best;
}
