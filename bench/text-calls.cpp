// SPDX-FileCopyrightText: 2026 The Merivo Connections developers
// SPDX-License-Identifier: MIT

// The toolkit's operations on numbers and CSV fields against the bare Qt calls that do the same work.

#include "bench/Report.h"
#include "toolkit/LmCsv.h"
#include "toolkit/LmNumberText.h"

#include <QCoreApplication>
#include <QLocale>
#include <QtMath>

#include <array>
#include <random>

namespace {

/// As many calls as rounds of the default make a million.
constexpr int CallsPerRound = 1000;
/// Known at run time only: with a constant, the compiler would work out the bare call's power of ten beforehand.
volatile int s_decimals = 2;

/// What the results add up to, so that no call can be left out as unused.
volatile double s_sum = 0;

double weight(double result)
{
    return result;
}

double weight(const QString& result)
{
    return result.size();
}

/// The numbers and fields of a round: the same at each start of the program.
struct Inputs
{
    std::array<double, CallsPerRound> numbers;
    std::array<QString, CallsPerRound> wholes;    ///< "123"
    std::array<QString, CallsPerRound> fractions; ///< "123.45%", in the locale
    std::array<QString, CallsPerRound> signs;     ///< "-123.45", in the locale
    std::array<QString, CallsPerRound> texts;     ///< "Reading 123 of C:\data"

    explicit Inputs(const QLocale& locale)
    {
        std::mt19937 random(1); // NOLINT(cert-msc51-cpp)
        for (std::size_t i = 0; i < numbers.size(); ++i) {
            const double number = static_cast<double>(random() % 100'000) / 100;
            const QString text = locale.toString(number, 'f', s_decimals);
            numbers.at(i) = i % 2 ? number : -number;
            wholes.at(i) = QString::number(qRound(number));
            fractions.at(i) = text + QLatin1Char('%');
            signs.at(i) = QLatin1Char('-') + text;
            texts.at(i) = QStringLiteral("Reading %1 of C:\\data").arg(qRound(number));
        }
    }
};

/// Nanoseconds for one call of @p operation, over all of @p inputs.
template <typename Operation, typename Values>
double nanosecondsOf(const Operation& operation, const Values& inputs)
{
    double sum = 0;
    const BenchClock::time_point start = BenchClock::now();
    for (const auto& input : inputs)
        sum += weight(operation(input));
    const double each = 1e6 * millisecondsSince(start) / static_cast<double>(inputs.size());
    s_sum = s_sum + sum;
    return each;
}

template <typename Ours, typename Bare, typename Values>
void compare(Report& report, const QString& what, const Ours& ours, const Bare& bare, const Values& inputs)
{
    const int rounds = report.number(QStringLiteral("rounds"));
    std::vector<double> oursEach;
    std::vector<double> bareEach;
    std::vector<double> ratios;
    for (int i = -rounds / 20; i < rounds; ++i) {
        // Who goes first changes, so that neither always finds what the other left in the caches.
        const double first = i % 2 ? nanosecondsOf(ours, inputs) : nanosecondsOf(bare, inputs);
        const double second = i % 2 ? nanosecondsOf(bare, inputs) : nanosecondsOf(ours, inputs);
        if (i < 0)
            continue; // warming up
        oursEach.push_back(i % 2 ? first : second);
        bareEach.push_back(i % 2 ? second : first);
        ratios.push_back(oursEach.back() / bareEach.back());
    }
    report.add(what + QStringLiteral(" / bare, median"), percentile(ratios, 0.5), QStringLiteral("times"), 2);
    report.tell(QStringLiteral("one call, median"), percentile(oursEach, 0.5), QStringLiteral("ns"));
    report.tell(QStringLiteral("the bare call, median"), percentile(bareEach, 0.5), QStringLiteral("ns"));
}

double bareRound(double value)
{
    const double scale = qPow(10, s_decimals);
    return qRound(value * scale) / scale;
}

QString bareDouble(double value)
{
    return QStringLiteral("%L1").arg(value, 0, 'f', s_decimals, QLatin1Char(' '));
}

/// A field that Qt reads as a number stays, any other becomes ="text" with doubled backslashes.
QString bareField(const QString& item)
{
    bool isNumber = false;
    QLocale().toDouble(item, &isNumber);
    return isNumber ? item
                    : QLatin1String("=\"") + QString(item).replace(QLatin1String("\\"), QLatin1String("\\\\")) +
                          QLatin1Char('"');
}

/// The same for a number with a percent sign behind it, or a minus before it.
QString barePercentage(const QString& item)
{
    bool isNumber = false;
    QLocale().toDouble(item.left(item.size() - 1), &isNumber);
    return isNumber ? QString(item).replace(QLocale().decimalPoint(), QLocale::system().decimalPoint()) : QString();
}

QString bareNegative(const QString& item)
{
    bool isNumber = false;
    QLocale().toDouble(item, &isNumber);
    return isNumber ? QString(item).replace(QLocale().decimalPoint(), QLocale::system().decimalPoint()) : QString();
}

} // namespace

int main(int argc, char** argv)
{
    QCoreApplication app(argc, argv);
    Report report(QStringLiteral("Texts of numbers and CSV fields, against the bare Qt calls"));
    report.addNumber(QStringLiteral("rounds"), QStringLiteral("Rounds of 1000 calls each way."), 1000);
    report.parse();

    const auto roundTo = [](double value) {
        return lmRoundTo(value, s_decimals);
    };
    const auto localized = [](double value) {
        return lmLocalizedDouble(value, s_decimals, 0, 'f');
    };
    for (const char* const name : {"en_GB", "de_DE", "he_IL"}) {
        QLocale::setDefault(QLocale(QLatin1String(name)));
        const Inputs inputs{QLocale()};
        const QString where = QStringLiteral(", ") + QLatin1String(name);
        compare(report, QStringLiteral("lmLocalizedDouble()") + where, localized, bareDouble, inputs.numbers);
        if (QLocale().language() == QLocale::Hebrew)
            break;
        compare(report, QStringLiteral("lmFixCsvItem() of 123") + where, lmFixCsvItem, bareField, inputs.wholes);
        compare(report, QStringLiteral("lmFixCsvItem() of 123.45%") + where, lmFixCsvItem, barePercentage,
                inputs.fractions);
        compare(report, QStringLiteral("lmFixCsvItem() of -123.45") + where, lmFixCsvItem, bareNegative, inputs.signs);
        compare(report, QStringLiteral("lmFixCsvItem() of a text") + where, lmFixCsvItem, bareField, inputs.texts);
    }
    compare(report, QStringLiteral("lmRoundTo()"), roundTo, bareRound, Inputs(QLocale::c()).numbers);
    return report.print();
}
