// SPDX-FileCopyrightText: 2026 The Merivo Connections developers
// SPDX-License-Identifier: MIT
#include "toolkit/LmMessageBox.h"
#include "toolkit/LmTooltip.h"

#include <QAbstractButton>
#include <QApplication>
#include <QFontMetricsF>
#include <QMouseEvent>
#include <QScreen>
#include <QTest>

namespace {

class RecordingParent final : public QWidget, public LmLogProxy
{
public:
    RecordingParent()
        : LmLogProxy(nullptr)
    {}
    void logCritical(QString title, QString text, QString detail) override { records << title + text + detail; }
    void logWarning(QString, QString, QString) override { records << "wrong level"; }
    void logInformation(QString, QString, QString) override { records << "wrong level"; }

    QStringList records;
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

class ToolkitBoxesTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void boxHasRoomForItsTitle()
    {
        QCOMPARE(LmMessageBox(nullptr).minimumWidth(), 101);
        for (const char* title : {"", "i", "A title that is a good deal longer than any text below it"}) {
            const LmMessageBox box(QMessageBox::Question, QString::fromLatin1(title), QStringLiteral("One<br/>two"),
                                   QMessageBox::Yes | QMessageBox::No, nullptr);
            QVERIFY2(fits(box.minimumWidth(), box, box.windowTitle(), 100), title);
            QVERIFY(box.windowFlags() & Qt::MSWindowsFixedSizeDialogHint);
        }
    }

    void buttonIsWidenedToItsText()
    {
        LmMessageBox box(QMessageBox::Warning, QString(), QString(), QMessageBox::Ok, nullptr);
        const QAbstractButton* ok = box.button(QMessageBox::Ok);
        box.setButtonText(QMessageBox::Ok, QStringLiteral("i"));
        QCOMPARE(ok->minimumWidth(), 60);
        const QString text = QStringLiteral("Forget this pump for good");
        box.setButtonText(QMessageBox::Ok, text);
        QVERIFY(fits(ok->minimumWidth(), box, text, 50));
        QCOMPARE(ok->text(), text);
        box.setButtonText(QMessageBox::Cancel, text); // The box has no such button, and gets none.
        QCOMPARE(box.buttons().size(), 1);
    }

    void displayedMessageGoesUpTheChain()
    {
        RecordingParent parent;
        QWidget stranger;
        for (int icon = QMessageBox::NoIcon; icon <= QMessageBox::Question; ++icon) {
            for (QWidget* owner : {static_cast<QWidget*>(&parent), &stranger, static_cast<QWidget*>(nullptr)})
                LmMessageBox(QMessageBox::Icon(icon), QStringLiteral("Title %1").arg(icon), QStringLiteral("; text"),
                             QMessageBox::Ok, owner)
                    .logDisplayedMessage();
        }
        // The box only forwards, so every level arrives as a critical message.
        QCOMPARE(parent.records, QStringList({"Title 1; text", "Title 2; text", "Title 3; text"}));
    }

    void tooltipIsDraggedWithinTheScreens()
    {
        const QRect screen = QGuiApplication::primaryScreen()->geometry();
        struct Row
        {
            int width;
            QPointF mouse;
            QPoint position; // The window is held at (5.6, 4.4), so at (6, 4).
        };
        const Row rows[] = {
            {100, {50.4, 60.6}, {44, 57}},
            {100, {-300, -900}, {screen.left(), -904}},
            {100, {9000, 60}, {screen.right() - 100, 56}},
            {screen.width() + 9, {50, 60}, {screen.left(), 56}},
        };
        for (const Row& row : rows) {
            LmTooltip tooltip(nullptr);
            tooltip.resize(row.width, 30);
            tooltip.show();
            sendMouse(tooltip, QEvent::MouseButtonPress, {5.6, 4.4}, {5.6, 4.4});
            sendMouse(tooltip, QEvent::MouseMove, {0, 0}, row.mouse);
            QCOMPARE(tooltip.pos(), row.position);
            tooltip.hide();
            tooltip.show();
            sendMouse(tooltip, QEvent::MouseMove, {0, 0}, {10, 80}); // Still dragging, but held at the corner now.
            const QPoint last(row.width > screen.width() ? screen.left() : 10, 80);
            QCOMPARE(tooltip.pos(), last);
            sendMouse(tooltip, QEvent::MouseButtonRelease, {0, 0}, row.mouse);
            sendMouse(tooltip, QEvent::MouseMove, {0, 0}, row.mouse);
            QCOMPARE(tooltip.pos(), last);
        }
    }

    void growingTooltipStaysOnTheScreen()
    {
        const QRect screen = QGuiApplication::primaryScreen()->geometry();
        LmTooltip tooltip(nullptr);
        tooltip.setText(QStringLiteral("Text"));
        tooltip.show();
        tooltip.resize(60, 30);
        tooltip.move(screen.right() - 70, screen.bottom() - 40);
        tooltip.resize(100, 50);
        QCOMPARE(tooltip.pos(), QPoint(screen.right() - 100, screen.bottom() - 50));
        tooltip.resize(100, screen.height() + 9);
        QCOMPARE(tooltip.pos(), QPoint(screen.right() - 100, screen.top()));
        QCOMPARE(tooltip.property("LmTooltip"), QVariant(true));
        QVERIFY(!tooltip.childAt(tooltip.rect().center())); // The label lets the mouse through.
    }
};

QTEST_MAIN(ToolkitBoxesTest)

#include "test_toolkit_boxes.moc"
