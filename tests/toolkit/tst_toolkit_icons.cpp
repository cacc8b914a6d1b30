// SPDX-FileCopyrightText: 2026 The Merivo Connections developers
// SPDX-License-Identifier: MIT
#include "support/MessageCapture.h"
#include "support/Pixels.h"
#include "toolkit/LmIcons.h"

#include <QGuiApplication>
#include <QTemporaryDir>
#include <QTest>

#include <tuple>

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
        // Half of the view box is empty.
        QFile svg(file("v.svg"));
        QVERIFY(svg.open(QIODevice::WriteOnly));
        svg.write("<svg xmlns='http://www.w3.org/2000/svg' width='20' height='10' viewBox='0 0 40 20'>"
                  "<rect width='20' height='20' fill='#ff0000'/></svg>");
    }

    void pixmapsHaveTheSizeAskedFor()
    {
        const QString raster = file("r.png");
        const QString vector = file("v.svg");
        // Path, size asked for and returned, and the pixmaps that the cached icon gets for it.
        const std::tuple<QString, QSize, QSize, int> rows[] = {
            {raster, {-1, -1}, {20, 10}, 0}, {raster, {10, 5}, {10, 5}, 0},   {raster, {50, 50}, {50, 50}, 1},
            {vector, {7, -1}, {20, 10}, 0},  {vector, {30, 30}, {30, 30}, 0}, {file("r.svg"), {-1, -1}, {20, 10}, 0},
        };
        for (const auto& [path, asked, returned, added] : rows) {
            const int before = lmIcon(path).availableSizes().size();
            for (int i = 0; i < 3; ++i) {
                const QPixmap pixmap = lmPixmap(path, asked.width(), asked.height());
                QCOMPARE(pixmap.size() / pixmap.devicePixelRatio(), returned);
            }
            QVERIFY(!lmIcon(path, asked.width(), asked.height()).isNull());
            QCOMPARE(lmIcon(path).availableSizes().size() - before, added);
        }
        const int scale = int(qGuiApp->devicePixelRatio());
        const QImage image = lmPixmap(raster, 50, 50).toImage();
        QCOMPARE(boundsOf(image, [](QRgb pixel) { return qAlpha(pixel) > 0; }), QRect(0, 0, 20 * scale, 10 * scale));

        QCOMPARE(lmDevicePixelRatio(nullptr), scale);
        QCoreApplication::setAttribute(Qt::AA_UseHighDpiPixmaps, false);
        QCOMPARE(lmDevicePixelRatio(nullptr), 1);
    }

    void unreadableImageIsLoggedAtEachRequest()
    {
        for (const QString& path : {QString(), file("missing.png")}) {
            const MessageCapture log;
            QVERIFY(lmIcon(path).isNull() && lmPixmap(path, 8, 8).isNull() && lmMirroredPicture(path).isNull());
            // A picture with an empty path isn't logged.
            QCOMPARE(log.texts(QtCriticalMsg, "default").count(QString("icon \"%1\" cannot be loaded").arg(path)),
                     path.isEmpty() ? 2 : 3);
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

    void picturesArePaintedAtTheirAnchor()
    {
        const QString vector = file("v.svg");
        const QImage image = imageOf({200, 60}, Qt::transparent, [&](QPainter& painter) {
            // Rounding moves the left and top edge; the right and bottom edge remain.
            const QRectF rect(10.25, 20.25, 101, 51);
            QCOMPARE(lmPaintPicture(&painter, lmPicture(vector), rect, Qt::AlignRight), QRectF(71, 36, 40.25, 19.75));
            lmPaintPicture(&painter, lmMirroredPicture(vector), QPointF(89, 36), Qt::AlignLeft | Qt::AlignTop);
        });
        QCOMPARE(boundsOf(image, [](QRgb pixel) { return pixel == qRgb(255, 0, 0); }), QRect(71, 36, 58, 20));
        QCOMPARE(qAlpha(image.pixel(91, 36)), 0);
    }

    void pictureOutlivesItsFile()
    {
        const QString copy = file("copy.svg");
        QVERIFY(QFile::copy(file("v.svg"), copy) && !lmIcon(copy).isNull() && QFile::remove(copy));
        QVERIFY(lmPicture(copy).boundingRect() == QRect(0, 0, 40, 20) && lmMirroredPicture(copy).isNull());
        QCOMPARE(lmPicture(":/img/images/flag.svg").boundingRect(), QRect(0, 0, 48, 48));
    }

    void colorizedIconKeepsItsShape()
    {
        const QIcon vector = lmColorizeIcon(QIcon(file("v.svg")), Qt::green);
        const QImage image = vector.pixmap(32, 32, QIcon::Selected, QIcon::On).toImage();
        QCOMPARE(image.pixelColor(2, 8), QColor(Qt::green));
        QCOMPARE(image.pixelColor(image.width() - 1, 8).alpha(), 0);

        QPixmap half(5, 5);
        half.fill(QColor(255, 0, 0, 128));
        const QIcon raster = lmColorizeIcon(QIcon(half), Qt::green);
        QCOMPARE(raster.pixmap(5, 5).toImage().pixelColor(2, 2), QColor(0, 255, 0, 128));

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
