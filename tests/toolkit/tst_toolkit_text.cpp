// SPDX-FileCopyrightText: 2026 The Merivo Connections developers
// SPDX-License-Identifier: MIT
#include "support/MessageCapture.h"
#include "support/Pixels.h"
#include "toolkit/LmBidiText.h"
#include "toolkit/LmCsv.h"
#include "toolkit/LmGuiConfig.h"
#include "toolkit/LmNumberText.h"
#include "toolkit/LmShortcuts.h"
#include "toolkit/LmText.h"
#include "toolkit/LmTranslator.h"

#include <QAction>
#include <QGuiApplication>
#include <QLabel>
#include <QLocale>
#include <QPainter>
#include <QTemporaryDir>
#include <QTest>
#include <QTranslator>

#include <cmath>
#include <memory>
#include <tuple>
#include <utility>

using TextFunction = QString (*)();
Q_DECLARE_METATYPE(TextFunction)

class TestToolkitText : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void cleanup()
    {
        QLocale::setDefault(QLocale::c());
        QGuiApplication::setLayoutDirection(Qt::LeftToRight);
    }

    void firstConfigIsTheInstance()
    {
        class : public LmGuiConfig
        {
            QString timeFormat() const override { return QStringLiteral("h.mm"); }
        } first;
        auto second = std::make_unique<LmGuiConfig>();
        LmGuiConfig::setInstance(second.get());
        QVERIFY(LmGuiConfig::instance() == &first && lmLocalizedTime({4, 5}) == QLatin1String("4.05"));
        second.reset(); // Takes the instance with it, whichever that is.
        const std::unique_ptr<LmGuiConfig> fresh(LmGuiConfig::instance());
        QVERIFY(fresh && fresh.get() != &first && fresh.get() == LmGuiConfig::instance());
        QVERIFY(fresh->styleName() == "Fusion" && fresh->dateFormat() == "yyyy-MM-dd");
        QVERIFY(fresh->timeFormat() == "hh:mm" && fresh->firstWeekDay() == 1);
        for (int day = Qt::Monday; day <= Qt::Sunday; ++day)
            QCOMPARE(fresh->isWeekend(QDate(2024, 1, day)), day >= Qt::Saturday);
        QVERIFY(!fresh->isWeekend(QDate()));
    }

    void numbersRoundAsAReaderExpects()
    {
        QVERIFY(lmRoundTo(1.005, 2) == 1.01 && lmRoundTo(-1.005, 2) == -1.01 && lmRoundTo(-1250, -2) == -1300);
        QVERIFY(lmRoundTo(0.4999, 0) == 0 && lmRoundTo(0.499995, 0) == 1 && lmRoundTo(1.23, 400) == 1.23);
        const double byDecimals[] = {1, 1.2, 1.23, 1.235, 1.2346, 1.23457, 1.234568, 1.2345679, 1.23456789};
        for (int decimals = 0; decimals < 9; ++decimals)
            QVERIFY2(lmRoundTo(1.23456789, decimals) == byDecimals[decimals], QByteArray::number(decimals));
        QVERIFY(lmRoundTo(1.0000000014, 9) == 1.000000001 && lmRoundTo(0.123456789123, 10) == 0.1234567891);
        // What an int can't hold is left as it is.
        QVERIFY(lmRoundTo(2147483647.4, 0) == 2147483647 && lmRoundTo(2147483647.6, 0) == 2147483647.6);
        QVERIFY(lmRoundTo(-2147483647.6, 0) == -2147483648 && lmRoundTo(-2147483648.4, 0) == -2147483648.4);
        QVERIFY(std::isnan(lmRoundTo(std::nan(""), 2)) && std::isinf(lmRoundTo(-HUGE_VAL, 2)));
        QVERIFY(!std::signbit(lmRoundTo(-0.001, 2)));
    }

    void textsFollowTheLocale_data()
    {
        QTest::addColumn<QString>("expected");
        QTest::addColumn<TextFunction>("text");
        const auto row = [](const char* locale, const QString& expected, TextFunction text) {
            QTest::addRow("%s %s", locale, qPrintable(expected)) << expected << text;
        };
        row("de_DE", "-1.234.567", [] { return lmLocalizedInt(-1234567); });
        row("ar_EG", "١٬٢٣٤", [] { return lmLocalizedIntText(" +1234 "); });
        row("de_DE", "0x10", [] { return lmLocalizedIntText("0x10"); });
        row("en_GB", "3", [] { return lmLocalizedDouble(2.499995, 0, 0, 'f'); });
        row("de_DE", "1,23E+04", [] { return lmLocalizedDouble(12345.678, 2, 0, 'E'); });
        row("en_GB", "2.000001", [] { return lmLocalizedDouble(2.0000005, -1, 0, 'f'); });
        row("de_DE", "  -1,3", [] { return lmLocalizedDouble(-1.25, 1, 6, 'f'); });
        row("ar_EG", "-١٫٥", [] { return lmLocalizedDouble(-1.5, 1, 0, 'f'); });
        row("he_IL", "\u200f   1.01-", [] { return lmLocalizedDouble(-1.005, 2, 7, 'f'); });
        row("he_IL", "0.0", [] { return lmLocalizedDouble(0, 1, 0, 'f'); });
        row("he_IL", "-1234.57", [] { return lmPlainDouble(-1234.565, 2, 0, 'f'); });
        row("en_GB", "1.0", [] { return lmLocalizedDoubleTrimmed(1, 2, 0, 'f'); });
        row("en_GB", "1.00", [] { return lmLocalizedDoubleTrimmed(1, 2, 2, 'f'); });
        row("ar_EG", "١٫٥٠", [] { return lmLocalizedDoubleTrimmed(1.5, 2, 0, 'f'); });
        row("en_GB", "60", [] { return lmDurationText(3599999999999); });
        row("he_IL", "\u200f1.0-", [] { return lmDurationText(-3600000000000); });
        row("en_GB", "9.5", [] { return lmDurationText(34199999999999); });
        row("en_GB", "10", [] { return lmDurationText(34200000000000); });
        row("de_DE", "-0,667", [] { return lmRatioText(-2, 3, 3); });
        row("de_DE", "So. 7 März 2021", [] { return lmLocalizedDate("ddd d MMM yyyy", QDate(2021, 3, 7)); });
        row("en_GB", "", [] { return lmLocalizedDate("d", QDate(2021, 2, 29)); });
        row("ar_EG", "١٤:٠٥", [] { return lmLocalizedTime(QTime(14, 5)); });
        row("en_GB", "Éclair %1%2", [] { return lmCapitalized("éCLAIR %1%2"); });
        row("he_IL", "a%1.txt", [] { return lmEmbedLeftToRight("a%1.txt", QString("a")); });
        row("en_GB", "\u202eקובץ \u202aa%1.txt\u202c \u202aa%1.txt\u202c\u202c",
            [] { return lmEmbedLeftToRight("קובץ a%1.txt a%1.txt", QString("a%1.txt")); });
        row("he_IL", "\u202eקובץ \u202a\u202aa\u202c%1\u202c b\u202c", [] {
            return lmEmbedLeftToRight("קובץ a%1 b", QStringList{"a%1", "", "a"});
        });
        row("de_DE", "1.234.5%", [] { return lmFixCsvItem("1.234,5%"); });
        row("de_DE", "=\"1.5\"", [] { return lmFixCsvItem("1.5"); });
        row("he_IL", "1.5-", [] { return lmFixCsvItem("\u200f1.5-"); });
        row("he_IL", "=\"\u200f1.5\"", [] { return lmFixCsvItem("\u200f1.5"); });
        row("en_GB", "=\"2021-03-07\"", [] { return lmFixCsvItem("2021-03-07"); });
        row("en_GB", "=\"\"a\"bc\\\\\"", [] { return lmFixCsvItem("\"a\"\r\nb\tc\\"); });
        row("en_GB", "0", [] { return lmFixTextCsvItem("0", false); });
        row("en_GB", "-", [] { return lmFixTextCsvItem("-", false); });
        row("de_DE", "1.234,5-", [] { return lmFixTextCsvItem("\u200f1.234,5- ", false); });
        row("en_GB", "One. Two three.  Four", [] { return lmFixTextCsvItem("One.\nTwo\nthree.\r\n\nFour", false); });
        row("en_GB", "ab \\\\ \"c\" 5%", [] { return lmFixTextCsvItem("a\tb \\ \"c\" 5%", false); });
        row("de_DE", "", [] { return lmFixTextCsvItem("-0,00 %", true); });
        row("en_GB", "0.001", [] { return lmFixTextCsvItem("0.001", true); });
        row("en_GB", "", [] { return lmFixTextCsvItem("\r-", true); });
    }
    void textsFollowTheLocale()
    {
        QFETCH(TextFunction, text);
        QLocale::setDefault(QLocale(QString(QTest::currentDataTag()).left(5)));
        QTEST(text(), "expected");
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
        lmFixTextCsvItem(" \n\u00a0", false);
        const QString entry = QStringLiteral("Negative number in R2L-label fixed as '%1'->'%2'");
        QCOMPARE(log.texts(QtDebugMsg),
                 QStringList({entry.arg("-1.5", "1.5-"), entry.arg(" -2", " -2"),
                              "lmFixTextCsvItem(' \n\u00a0') --> '' (trailing spaces removed)"}));
    }

    void textIsDrawnAtTheEdgeOfTheDirection()
    {
        lmDrawTextLeading(nullptr, {}, 0, "x", nullptr);
        QWidget opposite;
        for (const bool rightToLeft : {false, true}) {
            const auto direction = rightToLeft ? Qt::RightToLeft : Qt::LeftToRight;
            QGuiApplication::setLayoutDirection(direction);
            opposite.setLayoutDirection(rightToLeft ? Qt::LeftToRight : Qt::RightToLeft);
            for (QWidget* widget : {static_cast<QWidget*>(nullptr), &opposite}) {
                for (const auto& [draw, atLeft] : {std::pair(&lmDrawTextLeading, true), {&lmDrawTextTrailing, false}}) {
                    const QImage image = imageOf({200, 90}, Qt::white, [&, draw = draw](QPainter& painter) {
                        painter.setLayoutDirection(direction); // As on a widget.
                        draw(&painter, {0, 0, 200, 90}, 20, "HH", widget);
                    });
                    const QRect text = boundsOf(image, [](QRgb pixel) { return qGray(pixel) < 255; });
                    const bool isMirrored = rightToLeft != bool(widget);
                    QCOMPARE(text.center().x() < 100, atLeft != isMirrored);
                    QVERIFY(text.left() >= 20 && text.right() < 180);
                }
            }
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

    void firstTranslationFoundIsInstalled()
    {
        const QTemporaryDir dir;
        const QStringList names{"mc_de_DE", "mc_en_GB"};
        QVERIFY(QFile::copy(":/lang/i18n/mc_en_GB.qm", dir.filePath("mc_de_DE.qm")));
        QTranslator translator;
        const MessageCapture log;
        QVERIFY(lmInstallTranslator(translator, names, {":/lang/i18n", dir.path()}));
        QVERIFY(log.texts(QtInfoMsg).value(0).startsWith("Translator \"mc_de_DE\" installed"));
        // A failure removes the translator.
        QVERIFY(!lmInstallTranslator(translator, names, {dir.filePath("missing")}));
        QCOMPARE(log.texts(QtWarningMsg).size(), 2);
        QVERIFY(!QCoreApplication::removeTranslator(&translator));
    }
};

QTEST_MAIN(TestToolkitText)
#include "tst_toolkit_text.moc"
