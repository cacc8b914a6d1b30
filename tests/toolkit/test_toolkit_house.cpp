// SPDX-FileCopyrightText: 2026 The Merivo Connections developers
// SPDX-License-Identifier: MIT
#include "support/MessageCapture.h"
#include "toolkit/LmGuiConfig.h"
#include "toolkit/LmTranslator.h"
#include "toolkit/LmWidgets.h"

#include <QApplication>
#include <QDate>
#include <QDialog>
#include <QDir>
#include <QLabel>
#include <QTemporaryDir>
#include <QTest>
#include <QTranslator>

#include <memory>
#include <utility>

/// House defaults, language, and the small operations on widgets.
class ToolkitHouseTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void firstConfigIsTheInstance()
    {
        LmGuiConfig first;
        auto second = std::make_unique<LmGuiConfig>();
        LmGuiConfig::setInstance(second.get());
        QCOMPARE(LmGuiConfig::instance(), &first);
        second.reset();
        LmGuiConfig::setInstance(nullptr);
        LmGuiConfig* const fresh = LmGuiConfig::instance();
        QVERIFY(fresh && fresh != &first && fresh == LmGuiConfig::instance());
        delete fresh;
        LmGuiConfig::setInstance(&first);
        QCOMPARE(LmGuiConfig::instance(), &first);
    }

    void weekend()
    {
        QString week; // From Monday on.
        for (int day = 0; day < 7; ++day)
            week += LmGuiConfig().isWeekend(QDate(2024, 1, 1).addDays(day)) ? QLatin1Char('x') : QLatin1Char('-');
        QCOMPARE(week, QStringLiteral("-----xx"));
        QVERIFY(!LmGuiConfig().isWeekend(QDate()));
    }

    void translationIsTheFirstThatThereIs()
    {
        const QString missing = QStringLiteral("Translator resource \"%1\" not found");
        const QString installed = QStringLiteral("Translator \"%1\" installed from \"%2\"");
        const std::pair<QStringList, QStringList> rows[] = {
            {{"host/mc_de_DE", "own/mc_de_DE", "host/mc_en_GB"}, {installed.arg("mc_de_DE", "host")}},
            {{"own/mc_de_DE", "host/mc_en_GB"}, {installed.arg("mc_de_DE", "own")}},
            // Names aren't shortened.
            {{"host/mc_de", "own/mc", "own/mc_en_GB"}, {missing.arg("mc_de_DE"), installed.arg("mc_en_GB", "own")}},
            {{}, {missing.arg("mc_de_DE"), missing.arg("mc_en_GB")}},
        };
        for (const auto& [files, expected] : rows) {
            const QTemporaryDir dir;
            QDir::setCurrent(dir.path());
            QVERIFY(QDir().mkdir("host") && QDir().mkdir("own"));
            for (const QString& file : files)
                QVERIFY(QFile::copy(SAMPLE_TRANSLATION, file + ".qm"));

            QTranslator translator;
            for (int i = 0; i < 2; ++i) {
                const MessageCapture log;
                QCOMPARE(lmInstallTranslator(translator, {"mc_de_DE", "mc_en_GB"}, {"host", "own"}), !files.isEmpty());
                QCOMPARE(log.texts(QtWarningMsg, "default") + log.texts(QtInfoMsg, "default"), expected);
                QCOMPARE(QCoreApplication::translate("Sample", "working text"),
                         QString(files.isEmpty() ? "working text" : "displayed text"));
            }
            // A failure leaves the translator out.
            const MessageCapture log;
            QVERIFY(!lmInstallTranslator(translator, {"mc_de_DE"}, {}));
            QVERIFY(!QCoreApplication::removeTranslator(&translator));
        }
        QDir::setCurrent(QDir::rootPath());
    }

    void widgetOperations()
    {
        QDialog dialog(nullptr, Qt::Dialog | Qt::WindowContextHelpButtonHint | Qt::WindowCloseButtonHint);
        const Qt::WindowFlags flags = dialog.windowFlags();
        lmRemoveHelpButton(&dialog);
        QCOMPARE(dialog.windowFlags(), flags & ~Qt::WindowContextHelpButtonHint);

        QLabel label;
        qApp->setStyleSheet(QStringLiteral("QLabel[Mark=\"true\"] { color: #59c68c }"));
        label.ensurePolished();
        label.setProperty("Mark", true);
        lmRepolish(&label);
        QCOMPARE(label.palette().color(QPalette::WindowText), QColor(0x59, 0xc6, 0x8c));
    }
};

QTEST_MAIN(ToolkitHouseTest)

#include "test_toolkit_house.moc"
