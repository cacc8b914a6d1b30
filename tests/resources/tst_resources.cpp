// SPDX-FileCopyrightText: 2026 The Merivo Connections developers
// SPDX-License-Identifier: MIT
#include "support/MessageCapture.h"

#include <QDir>
#include <QFileInfo>
#include <QImageReader>
#include <QProcess>
#include <QRegularExpression>
#include <QResource>
#include <QTemporaryDir>
#include <QTest>
#include <QTranslator>
#include <QXmlStreamReader>

namespace {

const QString images = ":/img/Images/";
const QString translation = ":/lang/i18n/mc_en_GB.qm";

/// Context, source text and comment of each message in a translation file, sorted.
QStringList messagesOf(const QString& path)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return {};
    QStringList messages;
    QMap<QString, QString> fields;
    for (QXmlStreamReader xml(&file); !xml.atEnd(); xml.readNext()) {
        const QString element = xml.name().toString();
        if (xml.isStartElement() && QStringList{"name", "source", "comment"}.contains(element))
            fields[element] = xml.readElementText();
        else if (xml.isEndElement() && element == "message")
            messages << fields["name"] + '|' + fields["source"] + '|' + fields.take("comment");
    }
    messages.sort();
    return messages;
}

} // namespace

class TestResources final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void pictures()
    {
        const QString names =
            "CancelOnPump ConfirmCode Cygnara DeviceReader PumpDownloadGreyDark PumpDownloadGreyLight "
            "PumpDownloadWhite PumpFinger icon_check_green icon_connected icon_data_download_grey_dark "
            "icon_data_download_grey_light icon_help_grey_dark icon_help_grey_light icon_minus_grey_dark "
            "icon_minus_grey_light icon_plus_grey_dark icon_plus_grey_light icon_pump_data_download "
            "icon_pump_data_download_deactivated result_failed result_succeeded";
        const QStringList stored = QDir(images).entryList({"*.svg"}, QDir::Files, QDir::Name);
        QCOMPARE(stored.join(' ').remove(".svg"), names);

        QList<QImage> earlier;
        for (const QString& name : stored) {
            QCOMPARE(QResource(images + name).compressionAlgorithm(),
                     name == "PumpFinger.svg" ? QResource::ZlibCompression : QResource::NoCompression);
            const MessageCapture capture;
            QImageReader reader(images + name);
            reader.setScaledSize(QSize(400, 400));
            const QImage image = reader.read();
            QVERIFY2(!image.isNull() && !earlier.contains(image) && image.pixelColor(2, 2).alpha() == 0,
                     qPrintable(name));
            QCOMPARE(capture.texts(QtWarningMsg), QStringList());
            earlier << image;
        }
    }

    void spinnerAndTextsAreStored()
    {
        QCOMPARE(QDir(images).entryList().size(), 23);
        QCOMPARE(QDir(":/lang/i18n").entryList(), QStringList{"mc_en_GB.qm"});
        QCOMPARE(QResource(translation).compressionAlgorithm(), QResource::ZlibCompression);
        QFile collection(MERIVO_COLLECTION);
        QVERIFY(collection.open(QIODevice::ReadOnly));
        QCOMPARE(collection.readAll().count("int version = 2;"), 2); // where it is registered and unregistered
        QImageReader reader(images + "busy.gif");
        QCOMPARE(reader.size(), QSize(74, 74));
        QCOMPARE(reader.imageCount(), 31);
        QCOMPARE(reader.loopCount(), -1);
        QVERIFY(!reader.read().isNull());
        QCOMPARE(reader.nextImageDelay(), 30);
    }

    void storedTexts()
    {
        QTranslator translator;
        QVERIFY(translator.load(translation));
        // The context distinguishes equal texts.
        QCOMPARE(translator.translate("PumpReadDialog", "Merivo Connection - Add pump"),
                 QString("Sanvio Merivo Pump Plugin - Read pump"));

        if (!QFileInfo(MERIVO_LCONVERT).isExecutable())
            QSKIP("Qt's translation tools run only on the system of the build.");
        const QTemporaryDir folder;
        const QString compiled = folder.filePath("stored.qm");
        const QString stored = folder.filePath("stored.ts");
        QVERIFY(QFile::copy(translation, compiled));
        QCOMPARE(QProcess::execute(MERIVO_LCONVERT, {"-i", compiled, "-o", stored}), 0);
        const QStringList messages = messagesOf(stored);
        QCOMPARE(messages.size(), 87);
        const QStringList commented{
            "ErrorHandler|<b>Connection Error</b>|Title when the LM2 must be removed from the pump.",
            "ErrorHandler|<b>Connection Error</b>|Title when the pump must be removed.",
            "MainDialog|Merivo Connections|Message box title used in communication error/warning messages",
            "PatientSession|%1, %2|Pattern to display patient line 2 (birthday and extension)",
            "PumpAddDialog|Merivo Connections|Default message box title used within plugin questions.",
            "PumpAddDialog|Search|Button description within 'Start' page to search and open the 'Overview' page"};
        QCOMPARE(messages.filter(QRegularExpression("[^|]$")), commented);
    }

    // A text whose wording or comment differs from the catalogue would be shown untranslated, or wrongly translated.
    void catalogueHasTheTextsOfTheCode()
    {
        if (!QFileInfo(MERIVO_LUPDATE).isExecutable())
            QSKIP("Qt's translation tools run only on the system of the build.");
        const QTemporaryDir folder;
        const QString found = folder.filePath("found.ts");
        QVERIFY(QDir::setCurrent(MERIVO_SOURCE_DIR));
        const QString options("-silent -no-obsolete -locations none -I src src/plugin src/base src/readerlink "
                              "src/workflows src/hostcommands src/dialogs -ts");
        QCOMPARE(QProcess::execute(MERIVO_LUPDATE, options.split(' ') << found), 0);
        QCOMPARE(messagesOf(found).join('\n'), messagesOf("src/resources/lang/i18n/mc_en_GB.ts").join('\n'));
    }
};

QTEST_GUILESS_MAIN(TestResources)

#include "tst_resources.moc"
