// SPDX-FileCopyrightText: 2026 The Merivo Connections developers
// SPDX-License-Identifier: MIT
#include "support/MessageCapture.h"
#include "toolkit/LmIcons.h"

#include <QGuiApplication>
#include <QImage>
#include <QPainter>
#include <QTemporaryDir>
#include <QTest>
#include <QWindow>

#include <tuple>

namespace {

/// The view box is wider than what is drawn in it: a red square at the left, nothing at the right.
const QByteArray LeftSquare = "<svg xmlns='http://www.w3.org/2000/svg' width='20' height='10' viewBox='0 0 40 20'>"
                              "<rect x='0' y='0' width='20' height='20' fill='#ff0000'/></svg>";

template <typename Paint>
QImage painted(Paint paint)
{
    QImage image(200, 100, QImage::Format_ARGB32);
    image.fill(Qt::transparent);
    QPainter painter(&image);
    paint(&painter);
    return image;
}

} // namespace

/// Runs at one and at two device pixels per logical pixel.
class ToolkitIconsTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase()
    {
        QCoreApplication::setAttribute(Qt::AA_UseHighDpiPixmaps, true);
        QImage raster(20, 10, QImage::Format_ARGB32);
        raster.fill(Qt::blue);
        QVERIFY(raster.save(file("r.png")));
        for (const char* name : {"v.svg", "v.SVG"}) {
            QFile svg(file(name));
            QVERIFY(svg.open(QIODevice::WriteOnly) && svg.write(LeftSquare) == LeftSquare.size());
        }
    }

    void sizes()
    {
        struct Row
        {
            const char* name;
            QSize asked;
            QSize given; // Empty: the icon's own choice.
            int added;   // Pixmaps that the icon gets for this size, however often it is asked for.
        };
        // Some rows find what the row above left in the cached icon.
        const Row rows[] = {
            {"r.png", {-1, -1}, {20, 10}, 0}, {"r.png", {7, -1}, {20, 10}, 0},      {"r.png", {10, 5}, {10, 5}, 0},
            {"r.png", {50, 50}, {50, 50}, 1}, {"r.png", {10, 20}, {10, 20}, 1},     {"r.png", {0, 5}, {}, 0},
            {"v.svg", {-1, -1}, {20, 10}, 0}, {"v.svg", {200, 100}, {200, 100}, 0}, {"v.svg", {30, 30}, {30, 30}, 0},
        };
        for (const Row& row : rows) {
            const int before = lmIcon(file(row.name)).availableSizes().size();
            QPixmap pixmap;
            for (int i = 0; i < 3; ++i)
                pixmap = lmPixmap(file(row.name), row.asked.width(), row.asked.height());
            const QIcon icon = lmIcon(file(row.name), row.asked.width(), row.asked.height());
            QCOMPARE(icon.availableSizes().size() - before, row.added);
            if (!row.given.isEmpty())
                QCOMPARE(pixmap.size() / pixmap.devicePixelRatio(), row.given);
        }
        const int scale = int(qGuiApp->devicePixelRatio());
        const QImage image = lmPixmap(file("r.png"), 50, 50).toImage();
        QCOMPARE(image.pixelColor(20 * scale - 1, 10 * scale - 1), QColor(Qt::blue));
        QCOMPARE(image.pixelColor(20 * scale, 0).alpha(), 0);
    }

    void unreadableImageIsToldAtEachRequest()
    {
        for (const QString& path : {QString(), file("missing.png"), m_dir.path()}) {
            const MessageCapture log;
            QVERIFY(lmIcon(path).isNull() && lmIcon(path, 8, 8).isNull() && lmPixmap(path).isNull());
            QVERIFY(lmPicture(path).isNull() && lmMirroredPicture(path).isNull());
            const QStringList texts = log.texts(QtCriticalMsg, QStringLiteral("default"));
            QCOMPARE(texts.size(), path.isEmpty() ? 3 : 5); // An empty path of a picture isn't worth a word.
            QCOMPARE(texts.count(QStringLiteral("icon \"%1\" cannot be loaded").arg(path)), log.messages().size());
        }
    }

    void leastRecentlyUsedImageIsForgotten()
    {
        const auto path = [this](int i) {
            return m_dir.filePath(QStringLiteral("%1.png").arg(i));
        };
        for (int i = 0; i < 101; ++i) {
            QVERIFY(QFile::copy(file("r.png"), path(i)));
            if (i == 100)
                lmIcon(path(0)); // Used again, so that 1 is the eldest when 100 comes.
            QVERIFY(!lmIcon(path(i)).isNull());
        }
        for (int i = 0; i < 101; ++i)
            QVERIFY(QFile::remove(path(i)));
        const MessageCapture log;
        for (int i = 100; i >= 0; --i)
            QCOMPARE(lmIcon(path(i)).isNull(), i == 1);
    }

    void pictures()
    {
        QCOMPARE(lmPicture(file("v.svg")).boundingRect(), QRect(0, 0, 40, 20));
        QCOMPARE(lmPicture(file("v.SVG")).boundingRect(), QRect(0, 0, 20, 10));
        QCOMPARE(lmPicture(file("r.png")).boundingRect(), QRect(0, 0, 20, 10));
        for (int i = 0; i < 2; ++i) {
            QPicture picture = lmPicture(file("v.svg"));
            const QImage straight = painted([&](QPainter* painter) { painter->drawPicture(0, 0, picture); });
            picture = lmMirroredPicture(file("v.svg"));
            const QImage mirrored = painted([&](QPainter* painter) { painter->drawPicture(160, 0, picture); });
            QCOMPARE(straight.pixelColor(19, 19), QColor(Qt::red));
            QCOMPARE(straight.pixelColor(20, 19).alpha(), 0);
            QCOMPARE(mirrored, straight.mirrored(true, false));
        }
        const MessageCapture log; // Qt's reader of SVGs doesn't like the file.
        QVERIFY(lmMirroredPicture(file("r.png")).isNull());
    }

    void colorizing()
    {
        QPixmap half(8, 8);
        half.fill(Qt::transparent);
        QPainter(&half).fillRect(0, 0, 4, 8, QColor(255, 0, 0, 100));
        const QImage green = lmColorizePixmap(half, Qt::green).toImage();
        QCOMPARE(green.pixelColor(0, 0), QColor(0, 255, 0, 100));
        QCOMPARE(green.pixelColor(7, 7).alpha(), 0);
        QIcon icon(half);
        icon.addPixmap(half.scaled(4, 4), QIcon::Disabled, QIcon::On);
        icon = lmColorizeIcon(icon, Qt::green);
        QCOMPARE(icon.availableSizes(QIcon::Normal, QIcon::Off), {QSize(8, 8)});
        QCOMPARE(icon.availableSizes(QIcon::Disabled, QIcon::On), {QSize(4, 4)});
        QVERIFY(icon.availableSizes(QIcon::Selected, QIcon::On).isEmpty());
        icon = lmColorizeIcon(QIcon(file("v.svg")), Qt::green);
        QCOMPARE(icon.pixmap(32, 32, QIcon::Selected, QIcon::On).toImage().pixelColor(2, 8), QColor(Qt::green));

        const MessageCapture log;
        QVERIFY(lmColorizeIcon(QIcon(), Qt::green).isNull());
        QCOMPARE(log.texts(QtCriticalMsg), {"icon \"\" (isNull = true) converted to null icon"});
    }

    void placing()
    {
        // The picture is 40 by 20; what rounding moves of the left and top edge, the size takes up.
        const std::tuple<Qt::Alignment, QRectF, QRectF> rows[] = {
            {Qt::AlignLeft | Qt::AlignRight | Qt::AlignTop, {-1, 3, 40.5, 19.5}, {10, 20, 40.25, 20.25}},
            {Qt::AlignRight | Qt::AlignBottom, {-41, -18, 40.5, 20.5}, {71, 51, 40.25, 20.25}},
            {{}, {-21, -8, 40.5, 20.5}, {41, 36, 39.75, 19.75}},
        };
        const QPicture picture = lmPicture(file("v.svg"));
        for (const auto& [alignment, atPoint, inRect] : rows) {
            QRectF covered[2];
            const QImage image = painted([&, alignment = int(alignment)](QPainter* painter) {
                covered[0] = lmPaintPicture(painter, picture, QPointF(-0.5, 2.5), alignment);
                painter->eraseRect(0, 0, 200, 100);
                covered[1] = lmPaintPicture(painter, picture, QRectF(10.25, 20.25, 101, 51), alignment);
            });
            QCOMPARE(covered[0], atPoint);
            QCOMPARE(covered[1], inRect);
            QCOMPARE(image.pixelColor(inRect.topLeft().toPoint()), QColor(Qt::red));
            QVERIFY(image.pixelColor(inRect.topLeft().toPoint() - QPoint(1, 0)) != QColor(Qt::red));
        }
    }

    void hatchesOfNeighboursLineUp()
    {
        const QImage image = painted([](QPainter* painter) {
            lmPaintHatched(painter, {3, 5, 21, 30}, QPen(Qt::black));
            lmPaintHatched(painter, {24, 5, 29, 30}, QPen(Qt::black));
        });
        for (int i = 0; i < image.width() * image.height(); ++i) {
            const int x = i % image.width();
            const int y = i / image.width();
            // From (1, 4) on, one to the left for each one down, every 8.
            const bool drawn = QRect(3, 5, 50, 30).contains(x, y) && (x + y - 5) % 8 == 0;
            QVERIFY2((image.pixelColor(x, y).alpha() > 0) == drawn, qPrintable(QStringLiteral("%1, %2").arg(x).arg(y)));
        }
    }

    void pixelRatioNeedsTheAttribute()
    {
        QWindow window;
        QCOMPARE(lmDevicePixelRatio(&window), window.devicePixelRatio());
        QCOMPARE(lmDevicePixelRatio(nullptr), qGuiApp->devicePixelRatio());
        QCoreApplication::setAttribute(Qt::AA_UseHighDpiPixmaps, false);
        QCOMPARE(lmDevicePixelRatio(&window) + lmDevicePixelRatio(nullptr), 2.0);
    }

private:
    QString file(const char* name) const { return m_dir.filePath(QString::fromLatin1(name)); }

    QTemporaryDir m_dir;
};

QTEST_MAIN(ToolkitIconsTest)

#include "test_toolkit_icons.moc"
