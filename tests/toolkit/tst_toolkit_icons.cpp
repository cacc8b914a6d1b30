// SPDX-FileCopyrightText: 2026 The Merivo Connections developers
// SPDX-License-Identifier: MIT
#include "support/MessageCapture.h"
#include "toolkit/LmIcons.h"

#include <QGuiApplication>
#include <QImage>
#include <QPainter>
#include <QResource>
#include <QScreen>
#include <QTemporaryDir>
#include <QTest>
#include <QWindow>

#include <tuple>

namespace {

/// The view box is wider than what is drawn in it: a red square at the left, nothing at the right.
const QByteArray LeftSquare = "<svg xmlns='http://www.w3.org/2000/svg' width='20' height='10' viewBox='0 0 40 20'>"
                              "<rect x='0' y='0' width='20' height='20' fill='#ff0000'/></svg>";

} // namespace

class TestToolkitIcons : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase()
    {
        QCoreApplication::setAttribute(Qt::AA_UseHighDpiPixmaps, true);
        QImage raster(20, 10, QImage::Format_ARGB32);
        raster.fill(Qt::blue);
        QVERIFY(raster.save(file("r.png")) && QFile::copy(file("r.png"), file("r.svg")));
        QFile svg(file("v.svg"));
        QVERIFY(svg.open(QIODevice::WriteOnly) && svg.write(LeftSquare) > 0 && svg.copy(file("v.SVG")));
    }

    void sizes()
    {
        const QString r = file("r.png");
        const QString v = file("v.svg");
        const QString n = file("r.svg"); // no SVG: the icon has nothing but what is drawn from the image
        // Path, size asked for and given, pixmaps that the cached icon gets for it. A row finds what those above left.
        const std::tuple<QString, QSize, QSize, int> rows[] = {
            {r, {-1, -1}, {20, 10}, 0}, {r, {10, 5}, {10, 5}, 0},  {r, {50, 50}, {50, 50}, 1},
            {r, {10, 20}, {10, 20}, 1}, {v, {7, -1}, {20, 10}, 0}, {v, {30, 30}, {30, 30}, 0},
            {n, {-1, -1}, {20, 10}, 0},
        };
        for (const auto& [path, asked, given, added] : rows) {
            const int before = lmIcon(path).availableSizes().size();
            for (int i = 0; i < 3; ++i) {
                const QPixmap pixmap = lmPixmap(path, asked.width(), asked.height());
                QCOMPARE(pixmap.size() / pixmap.devicePixelRatio(), given);
            }
            QCOMPARE(lmIcon(path, asked.width(), asked.height()).availableSizes().size() - before, added);
        }
        const int scale = int(qGuiApp->devicePixelRatio());
        const QImage image = lmPixmap(r, 50, 50).toImage();
        QCOMPARE(image.pixelColor(20 * scale - 1, 10 * scale - 1), QColor(Qt::blue));
        QCOMPARE(image.pixelColor(20 * scale, 0).alpha(), 0);

        // The application's ratio is that of its start, so that this is another one for the window.
        qGuiApp->primaryScreen()->setProperty("_q_scaleFactor", 3);
        QWindow window;
        QCOMPARE(lmDevicePixelRatio(&window), scale == 1 ? 1 : 3);
        QCOMPARE(lmDevicePixelRatio(nullptr), scale);
        QCoreApplication::setAttribute(Qt::AA_UseHighDpiPixmaps, false);
        QCOMPARE(lmDevicePixelRatio(&window) + lmDevicePixelRatio(nullptr), 2);
    }

    void unreadableImageIsToldAtEachRequest()
    {
        for (const QString& path : {QString(), file("missing.png"), m_dir.path()}) {
            const MessageCapture log;
            QVERIFY(lmIcon(path).isNull() && lmPixmap(path, 8, 8).isNull() && lmMirroredPicture(path).isNull());
            const QStringList texts = log.texts(QtCriticalMsg, QStringLiteral("default"));
            QCOMPARE(texts.size(), path.isEmpty() ? 2 : 3); // An empty path of a picture isn't worth a word.
            QCOMPARE(texts.count(QStringLiteral("icon \"%1\" cannot be loaded").arg(path)), log.messages().size());
        }
    }

    void leastRecentlyUsedImageIsForgotten()
    {
        QVector<QString> paths(101);
        for (QString& path : paths) {
            path = QStringLiteral("%1/%2.png").arg(m_dir.path()).arg(&path - paths.data());
            QVERIFY(QFile::copy(file("r.png"), path));
            lmIcon(paths[0]); // Used again and again, so that 1 is the eldest when 100 comes.
            QVERIFY(!lmIcon(path).isNull() && QFile::remove(path));
        }
        const MessageCapture log;
        for (int i = 100; i >= 0; --i)
            QCOMPARE(lmIcon(paths[i]).isNull(), i == 1);
    }

    void painting()
    {
        QImage image(200, 100, QImage::Format_ARGB32);
        image.fill(Qt::transparent);
        QPainter painter(&image);
        const QRectF rect(10.25, 20.25, 101, 51);
        const QRectF right = lmPaintPicture(&painter, lmPicture(file("v.svg")), rect, Qt::AlignRight);
        lmPaintPicture(&painter, lmMirroredPicture(file("v.svg")), QPointF(89, 36), Qt::AlignLeft | Qt::AlignTop);
        lmPaintHatched(&painter, {3, 65, 21, 30}, QPen(Qt::black));
        lmPaintHatched(&painter, {24, 65, 29, 30}, QPen(Qt::red));

        QPicture sheet;
        QPainter other(&sheet);
        // A resource's picture is that of its loading.
        const QString flag = QStringLiteral(":/img/images/flag.svg");
        QVERIFY(QResource::registerResource(GALLERY_RCC));
        QVERIFY(!lmIcon(flag).isNull() && QResource::unregisterResource(GALLERY_RCC));
        QVERIFY(lmPicture(flag).boundingRect() == QRect(0, 0, 48, 48) && lmMirroredPicture(flag).isNull());
        // Capitals make a raster image; negative halves too go away from zero.
        const QRectF capitals = lmPaintPicture(&other, lmPicture(file("v.SVG")), QPointF(-2.5, -3.5), 0x21);
        QCOMPARE(capitals, QRectF(-3, -4, 20.5, 10.5));
        QCOMPARE(lmPicture(file("v.SVG")).boundingRect(), QRect(0, 0, 20, 10));
        const QRectF top = lmPaintPicture(&other, lmPicture(file("v.svg")), rect, Qt::AlignTop);
        const QRectF bottom = lmPaintPicture(&other, lmPicture(file("v.svg")), rect, Qt::AlignBottom);

        // What rounding moves of the left and top edge, the size takes up.
        QCOMPARE(right, QRectF(71, 36, 40.25, 19.75));
        QCOMPARE(top, QRectF(41, 20, 39.75, 20.25));
        QCOMPARE(bottom, QRectF(41, 51, 39.75, 20.25));
        const QImage pictures = image.copy(0, 0, 200, 60);
        QCOMPARE(pictures.pixelColor(71, 36), QColor(Qt::red));
        QCOMPARE(pictures.pixelColor(70, 36).alpha() + pictures.pixelColor(91, 36).alpha(), 0);
        QCOMPARE(pictures, pictures.mirrored(true, false));
        for (const int y : {65, 80, 94}) // The hatches of neighbours line up, from the top to the bottom.
            for (int x = 0; x < image.width(); ++x)
                QCOMPARE(image.pixelColor(x, y), QColor(x < 3 || x >= 53 || (x + y) % 8 != 1 ? Qt::transparent
                                                        : x < 24                             ? Qt::black
                                                                                             : Qt::red));
    }

    void colorizing()
    {
        const QIcon icon = lmColorizeIcon(QIcon(file("v.svg")), Qt::green);
        const QImage image = icon.pixmap(32, 32, QIcon::Selected, QIcon::On).toImage();
        QCOMPARE(image.pixelColor(2, 8), QColor(Qt::green));
        QCOMPARE(image.pixelColor(image.width() - 1, 8).alpha(), 0);

        // Each mode and state keeps its own pixmaps, with their transparency.
        QIcon raster(file("r.png"));
        QPixmap half(5, 5);
        half.fill(QColor(255, 0, 0, 128));
        for (const QIcon::Mode mode : {QIcon::Disabled, QIcon::Active, QIcon::Selected})
            raster.addPixmap(half, mode, QIcon::On);
        const QIcon green = lmColorizeIcon(raster, Qt::green);
        for (const QIcon::Mode mode : {QIcon::Disabled, QIcon::Active, QIcon::Selected})
            QCOMPARE(green.pixmap(5, 5, mode, QIcon::On).toImage().pixelColor(2, 2), QColor(0, 255, 0, 128));
        QCOMPARE(green.pixmap(20, 10, QIcon::Normal, QIcon::Off).toImage().pixelColor(2, 2), QColor(Qt::green));

        const MessageCapture log;
        QVERIFY(lmColorizeIcon(QIcon(), Qt::green).isNull());
        QCOMPARE(log.texts(QtCriticalMsg), QStringList("icon \"\" (isNull = true) converted to null icon"));
    }

private:
    QString file(const char* name) const { return m_dir.filePath(QString::fromLatin1(name)); }

    QTemporaryDir m_dir;
};

QTEST_MAIN(TestToolkitIcons)

#include "tst_toolkit_icons.moc"
