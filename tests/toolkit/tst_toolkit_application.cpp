// SPDX-FileCopyrightText: 2026 The Merivo Connections developers
// SPDX-License-Identifier: MIT
#include "support/MessageCapture.h"
#include "toolkit/LmGuiConfig.h"
#include "toolkit/LmLogging.h"
#include "toolkit/LmMessageBox.h"
#include "toolkit/LmText.h"
#include "toolkit/LmTooltip.h"
#include "toolkit/LmTranslator.h"

#include <QAbstractButton>
#include <QApplication>
#include <QDir>
#include <QFontMetricsF>
#include <QLabel>
#include <QMouseEvent>
#include <QScreen>
#include <QTemporaryDir>
#include <QTest>
#include <QTranslator>

#include <memory>
#include <utility>

namespace {

class RecordingParent final : public QWidget, public LmLogProxy
{
public:
    using LmLogProxy::LmLogProxy;
    void logCritical(QString title, QString text, QString detail) override { records << title + text + detail; }
    void logWarning(QString, QString, QString) override { records << "warning"; }

    QStringList records;
};

void sendMouse(QWidget& widget, QEvent::Type type, QPointF local, QPointF screen)
{
    QMouseEvent event(type, local, local, screen, Qt::LeftButton, Qt::LeftButton, Qt::NoModifier);
    QCoreApplication::sendEvent(&widget, &event);
}

} // namespace

class TestToolkitApplication : public QObject
{
    Q_OBJECT

private Q_SLOTS:
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

    void firstTranslationFoundIsInstalled()
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
            QVERIFY(QDir::setCurrent(dir.path()) && QDir().mkdir("host") && QDir().mkdir("own"));
            for (const QString& file : files)
                QVERIFY(QFile::copy(":/lang/i18n/mc_en_GB.qm", file + ".qm"));

            QTranslator translator;
            const MessageCapture log;
            QCOMPARE(lmInstallTranslator(translator, {"mc_de_DE", "mc_en_GB"}, {"host", "own"}), !files.isEmpty());
            QCOMPARE(log.texts(QtWarningMsg, "default") + log.texts(QtInfoMsg, "default"), expected);
            QCOMPARE(QCoreApplication::translate("DevicesModel", "Serial Number"),
                     QString(files.isEmpty() ? "Serial Number" : "Serial number"));
            // A failure removes the translator.
            QVERIFY(!lmInstallTranslator(translator, {"mc_de_DE"}, {}));
            QVERIFY(!QCoreApplication::removeTranslator(&translator));
        }
        QDir::setCurrent(QDir::rootPath());
    }

    void boxHasRoomForItsTexts()
    {
        QCOMPARE(LmMessageBox(nullptr).minimumWidth(), 101);
        const QString text = QStringLiteral("A title that is a good deal longer than any text below it");
        LmMessageBox box(QMessageBox::Question, text, QStringLiteral("Two"), QMessageBox::Ok, nullptr);
        const int width = qRound(QFontMetricsF(box.font()).horizontalAdvance(text) + 0.5);
        QCOMPARE(box.minimumWidth(), width + 100);
        QVERIFY(box.windowFlags() & Qt::MSWindowsFixedSizeDialogHint);

        const QAbstractButton* ok = box.button(QMessageBox::Ok);
        box.setButtonText(QMessageBox::Ok, QStringLiteral("i"));
        QCOMPARE(ok->minimumWidth(), 60);
        box.setButtonText(QMessageBox::Ok, text);
        QVERIFY(ok->minimumWidth() == width + 50 && ok->text() == text);
    }

    void displayedMessageGoesUpTheChain()
    {
        RecordingParent parent(nullptr);
        QWidget stranger;
        for (int icon = QMessageBox::NoIcon; icon <= QMessageBox::Question; ++icon) {
            for (QWidget* owner : {static_cast<QWidget*>(&parent), &stranger}) {
                LmMessageBox box(QMessageBox::Icon(icon), QString::number(icon), "; text", QMessageBox::Ok, owner);
                box.logDisplayedMessage();
            }
        }
        QCOMPARE(parent.records, QStringList({"1; text", "2; text", "3; text"})); // All as critical messages.
        struct Box : LmMessageBox
        {
            using LmMessageBox::LmMessageBox;
            using LmMessageBox::nextProxy;
        };
        QCOMPARE(Box(&parent).nextProxy(), &parent);
        QCOMPARE(
            QByteArrayList({lmProfileLog().categoryName(), lmUsageLog().categoryName(), lmPluginLog().categoryName()}),
            QByteArrayList({"profile", "usage", "plugin"}));
    }

    void tooltipStaysWithinTheScreens()
    {
        const QRect screen = QGuiApplication::primaryScreen()->geometry();
        LmTooltip tooltip(nullptr);
        QVERIFY(tooltip.setProperty("text", "Text"));
        QCOMPARE(tooltip.findChild<QLabel*>()->text() + tooltip.property("text").toString(), QString("TextText"));
        tooltip.resize(100, 30);
        tooltip.show();
        QVERIFY(!tooltip.childAt(50, 15)); // The window itself gets the mouse.
        const auto drag = [&tooltip](QPointF mouse) {
            sendMouse(tooltip, QEvent::MouseMove, {}, mouse);
            return tooltip.pos();
        };
        sendMouse(tooltip, QEvent::MouseButtonPress, {5.6, 4.4}, {}); // Held at (6, 4).
        QCOMPARE(drag({-300, -900}), QPoint(screen.left(), -904));
        QCOMPARE(drag({screen.right() - 93., 60}), QPoint(screen.right() - 100, 56));
        QCOMPARE(drag({50.4, 60.6}), QPoint(44, 57));
        sendMouse(tooltip, QEvent::MouseButtonRelease, {}, {});
        QCOMPARE(drag({10, 80}), QPoint(44, 57));

        // What grows is held at the right and bottom edge, and what is larger than the screen at the left and top.
        tooltip.move(screen.right() - 119, screen.bottom() - 49);
        tooltip.resize(120, 50);
        QCOMPARE(tooltip.pos(), QPoint(screen.right() - 120, screen.bottom() - 50));
        tooltip.resize(screen.width() + 9, screen.height() + 9);
        QCOMPARE(tooltip.pos(), screen.topLeft());

        // Showing it again resets where the mouse took hold, and the drag goes on.
        tooltip.resize(100, 30);
        sendMouse(tooltip, QEvent::MouseButtonPress, {5, 4}, {});
        tooltip.hide();
        tooltip.show();
        QCOMPARE(drag({50, 60}), QPoint(50, 60));
    }
};

QTEST_MAIN(TestToolkitApplication)

#include "tst_toolkit_application.moc"
