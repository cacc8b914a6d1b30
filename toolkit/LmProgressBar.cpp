// SPDX-FileCopyrightText: 2026 The Merivo Connections developers
// SPDX-License-Identifier: MIT
#include "toolkit/LmProgressBar.h"

#include <limits>

LmProgressBar::LmProgressBar(QWidget* parent)
    : QProgressBar(parent)
{
    setFormat(QStringLiteral("%p%"));
}

QString LmProgressBar::text() const
{
    // "%1" becomes "%p", since arg() below would also replace it, without the digits of the locale.
    QString format = this->format();
    format.replace(QLatin1String("%1"), QLatin1String("%p"));
    if (!format.contains(QLatin1String("%L1")))
        return QProgressBar::text();

    constexpr int Unset = std::numeric_limits<int>::min();
    if ((maximum() == 0 && minimum() == 0) || value() < minimum() || (value() == Unset && minimum() == Unset))
        return QString();

    const qint64 range = qint64(maximum()) - minimum();
    const double done = double(qint64(value()) - minimum());
    const qint64 percentage = range == 0 ? 100 : static_cast<qint64>(done * 100 / double(range));
    return format.arg(percentage);
}
