// SPDX-FileCopyrightText: 2026 The Merivo Connections developers
// SPDX-License-Identifier: MIT
#include "support/MessageCapture.h"
#include "toolkit/LmGuiConfig.h"
#include "toolkit/LmLogging.h"
#include "toolkit/LmMessageBox.h"
#include "toolkit/LmText.h"
#include "toolkit/LmTooltip.h"
#include "toolkit/LmTranslator.h"
#include "toolkit/LmWidgets.h"

#include <QAbstractButton>
#include <QApplication>
#include <QDir>
#include <QFontMetricsF>
#include <QLabel>
#include <QMouseEvent>
#include <QPalette>
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
    void logWarning(QString title, QString, QString) override { records << "warning: " + title; }

    QStringList records;
};

/// Forwards a warning as one.
class WarningBox final : public LmMessageBox
{
public:
    using LmMessageBox::LmMessageBox;
    void logWarning(QString title, QString text, QString detail) override
    {
        nextProxy()->logWarning(title, text, detail);
    }
};

void sendMouse(QWidget& widget, QEvent::Type type, QPointF local, QPointF screen)
{
    QMouseEvent event(type, local, local, screen, Qt::LeftButton, Qt::LeftButton, Qt::NoModifier);
    QCoreApplication::sendEvent(&widget, &event);
}

/// Whether @p width is the text's width, rounded to the next whole pixel, and @p margin.
bool fits(int width, const QWidget& widget, const QString& text, int margin)
{
    const qreal needed = QFontMetricsF(widget.font()).horizontalAdvance(text) + margin;
    return width > needed && width <= needed + 1;
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
        QCOMPARE(fresh->styleName() + ' ' + fresh->dateFormat() + ' ' + fresh->timeFormat(),
                 QStringLiteral("Fusion yyyy-MM-dd hh:mm"));
        QCOMPARE(fresh->firstWeekDay(), 1);
        for (int day = Qt::Monday; day <= Qt::Sunday; ++day)
            QCOMPARE(fresh->isWeekend(QDate(2024, 1, day)), day >= Qt::Saturday);
        QVERIFY(!fresh->isWeekend(QDate()));
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
            const MessageCapture log;
            QCOMPARE(lmInstallTranslator(translator, {"mc_de_DE", "mc_en_GB"}, {"host", "own"}), !files.isEmpty());
            QCOMPARE(log.texts(QtWarningMsg, "default") + log.texts(QtInfoMsg, "default"), expected);
            QCOMPARE(QCoreApplication::translate("Sample", "working text"),
                     QString(files.isEmpty() ? "working text" : "displayed text"));
            // A failure leaves the translator out.
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
        QVERIFY(fits(box.minimumWidth(), box, text, 100));
        QVERIFY(box.windowFlags() & Qt::MSWindowsFixedSizeDialogHint);

        const QAbstractButton* ok = box.button(QMessageBox::Ok);
        box.setButtonText(QMessageBox::Ok, QStringLiteral("i"));
        QCOMPARE(ok->minimumWidth(), 60);
        box.setButtonText(QMessageBox::Ok, text);
        QVERIFY(fits(ok->minimumWidth(), box, text, 50) && ok->text() == text);
    }

    void displayedMessageGoesUpTheChain()
    {
        RecordingParent parent(nullptr);
        QWidget stranger;
        for (int icon = QMessageBox::NoIcon; icon <= QMessageBox::Question; ++icon) {
            for (QWidget* owner : {static_cast<QWidget*>(&parent), &stranger, static_cast<QWidget*>(nullptr)})
                LmMessageBox(QMessageBox::Icon(icon), QStringLiteral("Title %1").arg(icon), QStringLiteral("; text"),
                             QMessageBox::Ok, owner)
                    .logDisplayedMessage();
        }
        // The box only forwards, so every level arrives as a critical message.
        WarningBox(QMessageBox::Warning, "4", {}, QMessageBox::Ok, &parent).logDisplayedMessage();
        QCOMPARE(parent.records, QStringList({"Title 1; text", "Title 2; text", "Title 3; text", "warning: 4"}));
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
        QVERIFY(!tooltip.childAt(50, 15));                            // The window itself gets the mouse.
        sendMouse(tooltip, QEvent::MouseButtonPress, {5.6, 4.4}, {}); // Held at (6, 4).
        const std::pair<QPointF, QPoint> drags[] = {
            {{-300, -900}, {screen.left(), -904}},
            {{9000, 60}, {screen.right() - 100, 56}},
            {{screen.right() - 93., 60}, {screen.right() - 100, 56}}, // From the very border.
            {{50.4, 60.6}, {44, 57}},
        };
        for (const auto& [mouse, position] : drags) {
            sendMouse(tooltip, QEvent::MouseMove, {}, mouse);
            QCOMPARE(tooltip.pos(), position);
        }
        sendMouse(tooltip, QEvent::MouseButtonRelease, {}, {});
        sendMouse(tooltip, QEvent::MouseMove, {}, {10, 80});
        QCOMPARE(tooltip.pos(), QPoint(44, 57));

        // What grows is held at the right and bottom edge, and what is larger than the screen at the top.
        tooltip.move(screen.right() - 119, screen.bottom() - 49);
        tooltip.resize(120, 50);
        QCOMPARE(tooltip.pos(), QPoint(screen.right() - 120, screen.bottom() - 50));
        tooltip.resize(120, screen.height() + 9);
        QCOMPARE(tooltip.pos(), QPoint(screen.right() - 120, screen.top()));
        tooltip.resize(screen.width() + 9, 50);
        QCOMPARE(tooltip.pos().x(), screen.left());

        // Showing it again forgets where the mouse took hold, but not that it did.
        tooltip.resize(100, 30);
        sendMouse(tooltip, QEvent::MouseButtonPress, {5, 4}, {});
        tooltip.hide();
        tooltip.show();
        sendMouse(tooltip, QEvent::MouseMove, {}, {50, 60});
        QCOMPARE(tooltip.pos(), QPoint(50, 60));
    }

    void styleSheetSeesAChangedProperty()
    {
        qApp->setStyleSheet(
            QStringLiteral("[LmTooltip=\"true\"] { color: #ff0000 } [LmTooltip=\"1\"] { color: #00ff00 }"));
        LmTooltip tooltip(nullptr);
        const auto color = [&tooltip] {
            return tooltip.palette().color(QPalette::WindowText);
        };
        tooltip.ensurePolished();
        tooltip.setProperty("LmTooltip", 1);
        lmRepolish(nullptr);
        QCOMPARE(color(), QColor(Qt::red));
        lmRepolish(&tooltip);
        QCOMPARE(color(), QColor(Qt::green));
        qApp->setStyleSheet({});
    }
};

QTEST_MAIN(TestToolkitApplication)

#include "tst_toolkit_application.moc"
