// SPDX-FileCopyrightText: 2026 The Merivo Connections developers
// SPDX-License-Identifier: MIT
#include "workbench/Programs.h"

#include <QDir>
#include <QImage>
#include <QTemporaryDir>

class GalleryProgramTest final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void picturesDifferByLocaleDirectionAndScale()
    {
        const QTemporaryDir dir;
        const auto picture = [&dir](const QStringList& options) {
            const QString folder = dir.filePath("new/" + options.join(QString()));
            const QString end = Program(MERIVO_GALLERY_PROGRAM, options + QStringList{"--write", folder}).end();
            const int count = QDir(folder).entryList({"*.png"}).size();
            return end == "0 " && count == 15 ? QImage(folder + "/numbers.png") : QImage();
        };
        const QImage plain = picture({"--locale=en_GB"});
        QVERIFY(!plain.isNull() && plain != picture({"--locale=en_GB", "--rtl"}) &&
                plain != picture({"--locale=de_DE"}));
        qputenv("QT_SCALE_FACTOR", "2");
        QCOMPARE(picture({"--locale=en_GB"}).size(), 2 * plain.size());
        QVERIFY(write(dir.filePath("file"), "") && picture({"--locale=xx_YY"}).isNull());
        const QString end = Program(MERIVO_GALLERY_PROGRAM, {"--write=file/below"}, dir.path()).end();
        QVERIFY2(end.startsWith("1 merivo-gallery: can't make the folder file/below"), qPrintable(end));
    }
};

QTEST_GUILESS_MAIN(GalleryProgramTest)

#include "tst_gallery_program.moc"
