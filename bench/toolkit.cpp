// SPDX-FileCopyrightText: 2026 The Merivo Connections developers
// SPDX-License-Identifier: MIT

// The toolkit's icons, its calendar and its texts of numbers and CSV fields, compared with the Qt calls that do the
// same work.

#include "bench/Report.h"
#include "toolkit/LmCalendarWidget.h"
#include "toolkit/LmCsv.h"
#include "toolkit/LmIcons.h"
#include "toolkit/LmNumberText.h"

#include <QApplication>
#include <QFile>
#include <QImage>
#include <QLocale>
#include <QTemporaryDir>
#include <QtMath>

#include <array>
#include <random>
#include <type_traits>

namespace {

constexpr int Side = 48;
constexpr int CallsPerRound = 1000;
/// Volatile, as the compiler would otherwise compute the bare call's power of ten in advance.
volatile int s_decimals = 2;
/// Receives the results, so that no call is optimised away.
volatile double s_sum = 0;

/// Returns an operation that returns how many nanoseconds one call takes, over all of @p inputs.
template <typename Operation, typename Values>
auto nanosecondsOf(const Operation& operation, const Values& inputs)
{
    return [&operation, &inputs] {
        double sum = 0;
        const double time = millisecondsOf([&] {
            for (const auto& input : inputs) {
                const auto result = operation(input);
                if constexpr (std::is_same_v<decltype(result), const double>)
                    sum += result;
                else
                    sum += result.size();
            }
        });
        s_sum = s_sum + sum;
        return 1e6 * time / static_cast<double>(inputs.size());
    };
}

template <typename Ours, typename Bare, typename Values>
void compareCalls(Report& report, const QString& what, const Ours& ours, const Bare& bare, const Values& inputs)
{
    compare(report.number("rounds"), nanosecondsOf(ours, inputs), nanosecondsOf(bare, inputs))
        ->addTo(report, what + " / bare", "ns", 2);
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

/// Keeps a field that Qt reads as a number; any other becomes ="text" with doubled backslashes.
QString bareField(const QString& item)
{
    bool isNumber = false;
    QLocale().toDouble(item, &isNumber);
    return isNumber ? item
                    : QLatin1String("=\"") + QString(item).replace(QLatin1String("\\"), QLatin1String("\\\\")) +
                          QLatin1Char('"');
}

QString bareFraction(const QString& item, int numberSize)
{
    bool isNumber = false;
    QLocale().toDouble(item.left(numberSize), &isNumber);
    return isNumber ? QString(item).replace(QLocale().decimalPoint(), QLocale::system().decimalPoint()) : QString();
}

void compareTexts(Report& report)
{
    const auto fixed = [](const QString& item) {
        return lmFixCsvItem(item);
    };
    const auto barePercentage = [](const QString& item) {
        return bareFraction(item, item.size() - 1);
    };
    const auto bareNegative = [](const QString& item) {
        return bareFraction(item, item.size());
    };
    for (const char* const name : {"en_GB", "de_DE", "he_IL"}) {
        const QLocale locale{QLatin1String(name)};
        QLocale::setDefault(locale);
        std::array<double, CallsPerRound> numbers{};
        std::array<QString, CallsPerRound> wholes;
        std::array<QString, CallsPerRound> percentages;
        std::array<QString, CallsPerRound> negatives;
        std::array<QString, CallsPerRound> texts;
        std::mt19937 random(1); // NOLINT(cert-msc51-cpp): the same inputs each time
        for (std::size_t i = 0; i < numbers.size(); ++i) {
            const double number = static_cast<double>(random() % 100'000) / 100;
            const QString text = locale.toString(number, 'f', s_decimals);
            numbers.at(i) = i % 2 ? number : -number;
            wholes.at(i) = QString::number(qRound(number));
            percentages.at(i) = text + '%';
            negatives.at(i) = '-' + text;
            texts.at(i) = "Reading " + wholes.at(i) + " of C:\\data";
        }
        const QString where = QString(", ") + name;
        compareCalls(
            report, "lmLocalizedDouble()" + where,
            [](double value) { return lmLocalizedDouble(value, s_decimals, 0, 'f'); }, bareDouble, numbers);
        if (locale.language() == QLocale::Hebrew) {
            compareCalls(
                report, "lmRoundTo()", [](double value) { return lmRoundTo(value, s_decimals); }, bareRound, numbers);
            break;
        }
        compareCalls(report, "lmFixCsvItem() of 123" + where, fixed, bareField, wholes);
        compareCalls(report, "lmFixCsvItem() of 123.45%" + where, fixed, barePercentage, percentages);
        compareCalls(report, "lmFixCsvItem() of -123.45" + where, fixed, bareNegative, negatives);
        compareCalls(report, "lmFixCsvItem() of a text" + where, fixed, bareField, texts);
    }
}

/// Returns false if files can't be written or the pixmaps differ.
bool compareIcons(Report& report)
{
    const int rounds = report.number("rounds") / 3;
    const QTemporaryDir folder;
    // A new copy each time, as lmIcon() and Qt both cache by path.
    int copies = 0;
    const auto newCopy = [&] {
        const QString path = folder.filePath(QString("%1.svg").arg(++copies));
        return QFile::copy(BENCH_SVG_FILE, path) ? path : QString();
    };
    QPixmap own;
    QPixmap bare;
    const auto firstCost = [&](QPixmap& result, auto icon) {
        const QString path = newCopy();
        const double time = millisecondsOf([&] { result = icon(path).pixmap(Side, Side); });
        return own.isNull() || bare.isNull() || own.toImage() == bare.toImage() ? 1000 * time : -1;
    };
    const auto ownIcon = [](const QString& path) {
        return lmIcon(path, Side, Side);
    };
    const auto bareIcon = [](const QString& path) {
        return QIcon(path);
    };
    const auto first = compare(
        rounds, [&] { return firstCost(own, ownIcon); }, [&] { return firstCost(bare, bareIcon); });
    if (!first || own.isNull() || bare.isNull())
        return false;
    // lmIcon() creates an image, an icon and a recorded picture of the file, hence the higher limit.
    first->addTo(report, "first lmIcon() / QIcon", "us", 2.5);

    const QString path = newCopy();
    const QIcon kept(path);
    const auto again = [&path](auto icon) {
        return [&path, icon] {
            return 1000 * millisecondsOf([&] { icon(path).pixmap(Side, Side); });
        };
    };
    const auto keptIcon = [&kept](const QString&) -> const QIcon& {
        return kept;
    };
    compare(rounds, again(ownIcon), again(bareIcon))->addTo(report, "lmIcon() again / new QIcon", "us", 2);
    // The lookup by path takes a microsecond, which is negligible for painting.
    compare(rounds, again(ownIcon), again(keptIcon))->addTo(report, "lmIcon() again / kept QIcon", "us", 5);
    return true;
}

void comparePages(Report& report)
{
    QCalendarWidget bare;
    LmCalendarWidget own;
    own.setUp(0);
    bare.setFirstDayOfWeek(Qt::Monday);
    const QDate month(2024, 3, 1);
    for (QCalendarWidget* calendar : {&bare, static_cast<QCalendarWidget*>(&own)}) {
        calendar->setSelectedDate(month);
        calendar->resize(400, 300);
        calendar->show();
    }
    own.setRangeStart(month.addDays(4));
    own.setRangeEnd(month.addDays(20));
    QApplication::processEvents();

    QImage image(400, 300, QImage::Format_ARGB32_Premultiplied);
    const auto paint = [&image](QCalendarWidget& calendar) {
        return [&] {
            return 1000 * millisecondsOf([&] { calendar.render(&image); });
        };
    };
    compare(report.number("rounds") / 2, paint(own), paint(bare))
        ->addTo(report, "page of LmCalendarWidget / QCalendarWidget", "us", 2);
}

} // namespace

int main(int argc, char** argv)
{
    QApplication app(argc, argv);
    Report report("Icons, calendar, numbers and CSV fields, compared with Qt alone",
                  {{"rounds", 1000, "Rounds of 1000 texts; half as many pages, and a third as many icons."}});
    if (!compareIcons(report))
        return benchmarkFailed("a file can't be written, or the pixmaps differ");
    comparePages(report);
    compareTexts(report);
    return report.print();
}
