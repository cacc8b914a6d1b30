// SPDX-FileCopyrightText: 2026 The Merivo Connections developers
// SPDX-License-Identifier: MIT
#include "workbench/Programs.h"

#include <QDir>
#include <QImage>
#include <QTemporaryDir>

#include <tuple>

class GalleryProgramTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void picturesDifferByLocaleAndDirection()
    {
        const QTemporaryDir dir;
        const QVector<QStringList> runs{
            {"--locale", "en_GB"}, {"--locale", "en_GB", "--rtl"}, {"--locale", "de_DE"}, {"--locale", "en_GB"}};
        QVector<QImage> pictures;
        for (const QStringList& options : runs) {
            qputenv("QT_SCALE_FACTOR", pictures.size() == 3 ? "2" : "1");
            const QString folder = QStringLiteral("new/%1").arg(pictures.size());
            QCOMPARE(Program(MERIVO_GALLERY_PROGRAM, options + QStringList{"--write", folder}, dir.path()).end(),
                     QString("0 "));
            QCOMPARE(QDir(dir.filePath(folder)).entryList(QDir::Files).join(' '),
                     QString("buttons.png dates.png lists.png menus.png messages.png months.png numbers.png "
                             "pictures.png progress.png"));
            pictures.append(QImage(dir.filePath(folder + "/numbers.png")));
            for (int i = 0; i < pictures.size() - 1; ++i)
                QVERIFY(pictures.at(i) != pictures.constLast());
        }
        // To the corner, at two device pixels per logical pixel.
        const QImage &plain = pictures.first(), &scaled = pictures.constLast();
        const QColor corner = scaled.pixelColor(scaled.rect().bottomRight() - QPoint(36, 36));
        QCOMPARE(corner, plain.pixelColor(plain.rect().bottomRight() - QPoint(18, 18)));
        QVERIFY(scaled.size() == 2 * plain.size() && corner != plain.pixelColor(0, 0));
    }

    void wrongCallsAreTold()
    {
        const QTemporaryDir dir;
        QVERIFY(write(dir.filePath("file"), ""));
        const std::tuple<QStringList, const char*, const char*> rows[] = {
            {{"--locale", "xx_YY"}, "2 ", "no locale 'xx_YY'"},
            {{"--write", ""}, "2 ", "--write needs a value"},
            {{"more"}, "2 ", "unexpected argument 'more'"},
            {{"--write", "file/below"}, "1 ", "file/below"},
        };
        for (const auto& [options, status, told] : rows) {
            const QString end = Program(MERIVO_GALLERY_PROGRAM, options, dir.path()).end();
            QVERIFY2(end.startsWith(status) && end.contains(told), qPrintable(end));
        }
    }
};

QTEST_GUILESS_MAIN(GalleryProgramTest)

#include "test_gallery_program.moc"
