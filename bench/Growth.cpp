// SPDX-FileCopyrightText: 2026 The Merivo Connections developers
// SPDX-License-Identifier: MIT
#include "bench/Growth.h"

#include <QLocale>

#include <cmath>
#include <utility>

namespace {

QString grouped(double size)
{
    return QLocale(QLocale::English).toString(static_cast<qlonglong>(size));
}

} // namespace

Growth::Growth(QString what, QString things, QString unit)
    : m_what(std::move(what))
    , m_things(std::move(things))
    , m_unit(std::move(unit))
{}

void Growth::add(double size, double figure)
{
    m_points.push_back({size, figure});
}

void Growth::tell(Report& report, std::optional<double> limit) const
{
    if (m_points.size() > 1) {
        const Point& from = m_points.at(m_points.size() - 2);
        const Point& to = m_points.back();
        const double sizes = to.size / from.size;
        const double figures = to.figure / from.figure;
        const QString step =
            QStringLiteral("%1, %2 to %3 %4").arg(m_what, grouped(from.size), grouped(to.size), m_things);
        const QString ratio = step + QStringLiteral(", to the linear");
        if (limit)
            report.add(ratio, figures / sizes, QStringLiteral("times"), *limit);
        else
            report.tell(ratio, figures / sizes, QStringLiteral("times"));
        report.tell(step, std::log(figures) / std::log(sizes), QStringLiteral("exponent"));
    }
    for (const Point& point : m_points)
        report.tell(QStringLiteral("%1, %2 %3").arg(m_what, grouped(point.size), m_things), point.figure, m_unit);
}
