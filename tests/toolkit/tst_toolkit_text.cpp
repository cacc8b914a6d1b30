// SPDX-FileCopyrightText: 2026 The Merivo Connections developers
// SPDX-License-Identifier: MIT
#include "support/MessageCapture.h"
#include "toolkit/LmBidiText.h"
#include "toolkit/LmCsv.h"
#include "toolkit/LmNumberText.h"
#include "toolkit/LmShortcuts.h"
#include "toolkit/LmText.h"

#include <QAction>
#include <QFile>
#include <QGuiApplication>
#include <QHash>
#include <QImage>
#include <QJsonDocument>
#include <QJsonObject>
#include <QLabel>
#include <QLocale>
#include <QPainter>
#include <QTest>

#include <cmath>
#include <functional>
#include <tuple>

namespace {

/// The rows of the table whose name begins with @p name.
QVariantList cases(const QString& name)
{
    QFile file(QStringLiteral(TEXT_CASES));
    if (!file.open(QIODevice::ReadOnly))
        return {};
    const QVariantMap tables = QJsonDocument::fromJson(file.readAll()).object().toVariantMap();
    return tables.lowerBound(name).value().toList();
}

template <typename Type>
Type taken(QVariantList& cells)
{
    return cells.takeFirst().value<Type>();
}

/// The format of a number.
template <>
char taken<char>(QVariantList& cells)
{
    return cells.takeFirst().toString().at(0).toLatin1();
}

/// @p function with its arguments from the cells of a row.
template <typename... Arguments>
std::function<QString(QVariantList)> by(QString (*function)(Arguments...))
{
    return [function](QVariantList cells) {
        // In braces, so that the cells are taken in their order.
        return std::apply(function, std::tuple<std::decay_t<Arguments>...>{taken<std::decay_t<Arguments>>(cells)...});
    };
}

/// The first and the last column of @p image that isn't white.
QPair<int, int> inkedColumns(const QImage& image)
{
    QPair<int, int> columns(image.width(), -1);
    for (int x = 0; x < image.width(); ++x) {
        for (int y = 0; y < image.height(); ++y) {
            if (image.pixelColor(x, y) != QColor(Qt::white))
                columns = {qMin(columns.first, x), x};
        }
    }
    return columns;
}

} // namespace

class TestToolkitText : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void cleanup()
    {
        QLocale::setDefault(QLocale::c());
        QGuiApplication::setLayoutDirection(Qt::LeftToRight);
    }

    void numbersRoundAsAReaderExpects()
    {
        const QVariantList rows = cases("rounding");
        QVERIFY(!rows.isEmpty());
        for (const QVariant& row : rows) {
            const QVariantList cells = row.toList();
            const double rounded = lmRoundTo(cells.at(0).toDouble(), cells.at(1).toInt());
            QVERIFY2(rounded == cells.at(2).toDouble(), qPrintable(cells.at(0).toString()));
        }
        QVERIFY(!std::signbit(lmRoundTo(-0.0, 2)) && !std::signbit(lmRoundTo(-0.001, 2)));
        QVERIFY(std::isnan(lmRoundTo(std::nan(""), 2)) && std::isinf(lmRoundTo(-HUGE_VAL, 2)));
    }

    void textsReadAsTheLocaleWrites()
    {
        const QHash<QString, std::function<QString(QVariantList)>> operations{
            {"LocalizedInt", by(lmLocalizedInt)},
            {"LocalizedIntText", by(lmLocalizedIntText)},
            {"PlainDouble", by(lmPlainDouble)},
            {"LocalizedDouble", by(lmLocalizedDouble)},
            {"Trimmed", by(lmLocalizedDoubleTrimmed)},
            {"Duration", by(lmDurationText)},
            {"Ratio", by(lmRatioText)},
            {"Date", by(lmLocalizedDate)},
            {"Time", by<const QString&, const QTime&>(lmLocalizedTime)},
            {"HouseTime", by<const QTime&>(lmLocalizedTime)},
            {"Capitalized", by(lmCapitalized)},
            {"Embed", by<const QString&, QString>(lmEmbedLeftToRight)},
            {"EmbedAll", by<const QString&, QStringList>(lmEmbedLeftToRight)},
            {"Csv", by(lmFixCsvItem)},
            {"TextCsv", by(lmFixTextCsvItem)}};
        const MessageCapture log;
        const QVariantList rows = cases("locale");
        QVERIFY(!rows.isEmpty());
        for (const QVariant& row : rows) {
            QVariantList cells = row.toList();
            QLocale::setDefault(QLocale(cells.takeFirst().toString()));
            const QString operation = cells.takeFirst().toString();
            const QString result = operations.value(operation)(cells);
            QVERIFY2(result == cells.last().toString(), qPrintable(operation + ": " + result));
        }
        const QString trimmed = QStringLiteral("lmFixTextCsvItem('%1') --> '%2' (trailing spaces removed)");
        QCOMPARE(log.texts(QtDebugMsg),
                 QStringList({trimmed.arg("\u200f1.5- ", "\u200f1.5-"), trimmed.arg(" \n\u00a0\u3000", "")}));
    }

    void labelsAndMarksFollowTheApplication()
    {
        const auto fixed = [](const QString& text) {
            QLabel label(text);
            lmFixNegativeNumberLabel(&label);
            return label.text();
        };
        const MessageCapture log;
        QCOMPARE(fixed("-1.5") + lmMarkRightToLeft("5"), QString("-1.55"));
        QGuiApplication::setLayoutDirection(Qt::RightToLeft);
        QCOMPARE(lmMarkRightToLeft("5") + lmMarkRightToLeft("ש"), QString("\u200f5ש"));
        lmFixNegativeNumberLabel(nullptr);
        for (const QString text : {"3", "-0", "-1,5", "-", "1.5-"})
            QCOMPARE(fixed(text), text);
        QCOMPARE(fixed("-1.5"), QString("1.5-"));
        QCOMPARE(fixed(" -2"), QString(" -2"));
        const QString entry = QStringLiteral("Negative number in R2L-label fixed as '%1'->'%2'");
        QCOMPARE(log.texts(QtDebugMsg), QStringList({entry.arg("-1.5", "1.5-"), entry.arg(" -2", " -2")}));
    }

    void textStandsAtTheEdgeOfTheDirection()
    {
        QWidget mirrored;
        mirrored.setLayoutDirection(Qt::RightToLeft);
        lmDrawTextLeading(nullptr, {}, 0, "x", nullptr);
        for (int way = 0; way < 16; ++way) {
            const bool leading = way & 1;
            const QString text = way & 2 ? "HH" : "שש";
            QWidget* const widget = way & 4 ? &mirrored : nullptr;
            const auto application = way & 8 ? Qt::RightToLeft : Qt::LeftToRight;
            QGuiApplication::setLayoutDirection(application);
            QImage image(200, 90, QImage::Format_RGB32);
            image.fill(Qt::white);
            QPainter painter(&image);
            painter.setLayoutDirection(application); // As on a widget.
            (leading ? lmDrawTextLeading : lmDrawTextTrailing)(&painter, {40, 0, 120, 90}, 20, text, widget);
            const auto [first, last] = inkedColumns(image);
            const bool atRight = leading == (widget || application == Qt::RightToLeft);
            QVERIFY2(atRight ? last > 135 && last < 140 : first >= 60 && first < 65, qPrintable(QString::number(way)));
            QCOMPARE(inkedColumns(image.copy(0, 30, 200, 30)), qMakePair(first, last));
        }
    }

    void keysAreListed()
    {
        QObject root;
        QAction saving(&root);
        QObject group(&root);
        QAction savingToo(&group);
        QAction refreshing(&group);
        const QAction keyless(&root);
        saving.setShortcut(QKeySequence("Ctrl+S"));
        savingToo.setShortcut(QKeySequence("Ctrl+S"));
        refreshing.setShortcuts({QKeySequence("F5"), QKeySequence("F6")});
        QCOMPARE(lmActionShortcuts(&root), (QMap<QString, QAction*>{{"Ctrl+S", &savingToo}, {"F5", &refreshing}}));
        QVERIFY(lmActionShortcuts(nullptr).isEmpty());

        const QMap<QString, QString> keys = lmStandardKeys();
        QCOMPARE(keys.value("Copy"), QKeySequence(QKeySequence::Copy).toString(QKeySequence::PortableText));
        QVERIFY(!keys.contains("Cancel") && !keys.contains("UnknownKey") && !keys.values().contains(""));
    }
};

QTEST_MAIN(TestToolkitText)
#include "tst_toolkit_text.moc"
