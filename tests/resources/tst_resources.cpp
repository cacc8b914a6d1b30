// SPDX-FileCopyrightText: 2026 The Merivo Connections developers
// SPDX-License-Identifier: MIT
#include "support/MessageCapture.h"

#include <QDir>
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
    void picture_data()
    {
        QTest::addColumn<QString>("size"); // in millimetres
        QTest::addColumn<double>("x");     // of a point, in parts of the size, with a colour
        QTest::addColumn<double>("y");
        QTest::addColumn<QString>("colour");
        QTest::newRow("Cygnara.svg") << "46.11 30.74" << 0.99 << 0.99 << "#00000000";
        QTest::newRow("DeviceReader.svg") << "63.24 81.23" << 0.99 << 0.99 << "#00000000";
        QTest::newRow("ConfirmCode.svg") << "111.13 74.08" << 0.6077 << 0.6071 << "#ff59c68c";
        QTest::newRow("CancelOnPump.svg") << "111.13 75.54" << 0.381 << 0.1805 << "#ff484444";
        QTest::newRow("PumpFinger.svg") << "77.04 70.76" << 0.275 << 0.687 << "#ff59c68c";
        QTest::newRow("PumpDownloadGreyDark.svg") << "10.59 8.57" << 0.05 << 0.5 << "#ff111010";
        QTest::newRow("PumpDownloadGreyLight.svg") << "10.59 8.57" << 0.05 << 0.5 << "#59111111";
        QTest::newRow("PumpDownloadWhite.svg") << "10.59 8.57" << 0.05 << 0.5 << "#ffffffff";
        QTest::newRow("icon_pump_data_download.svg") << "13 13" << 0.25 << 0.55 << "#ffffffff";
        QTest::newRow("icon_pump_data_download_deactivated.svg") << "13 13" << 0.5 << 0.1 << "#59484545";
        QTest::newRow("icon_connected.svg") << "5.32 8.66" << 0.88 << 0.5 << "#ff484444";
        QTest::newRow("icon_check_green.svg") << "13 13" << 0.44 << 0.66 << "#ff5cc78e";
        QTest::newRow("result_succeeded.svg") << "512 512" << 0.44 << 0.67 << "#ffffffff";
        QTest::newRow("result_failed.svg") << "512 512" << 0.1 << 0.5 << "#ffff9900";
        for (const QByteArray mark : {"plus", "minus", "data_download", "help"}) {
            QTest::newRow("icon_" + mark + "_grey_dark.svg") << "13 13" << 0.1 << 0.5 << "#ff484444";
            QTest::newRow("icon_" + mark + "_grey_light.svg") << "13 13" << 0.1 << 0.5 << "#ffcccccc";
        }
    }

    void picture()
    {
        QFETCH(QString, size);
        QFETCH(double, x);
        QFETCH(double, y);
        const QString name = QTest::currentDataTag();
        const QResource resource(images + name);
        QCOMPARE(resource.compressionAlgorithm(),
                 name == "PumpFinger.svg" ? QResource::ZlibCompression : QResource::NoCompression);

        QXmlStreamReader xml(resource.uncompressedData());
        QVERIFY(xml.readNextStartElement());
        const QXmlStreamAttributes attributes = xml.attributes();
        QCOMPARE(attributes.value("viewBox").toString(), "0 0 " + size);
        if (!name.startsWith("result_"))
            QCOMPARE(attributes.value("width") + ' ' + attributes.value("height"), size.replace(' ', "mm ") + "mm");

        const MessageCapture capture;
        QImageReader reader(images + name);
        reader.setScaledSize(reader.size().scaled(800, 2000, Qt::KeepAspectRatio));
        const QImage image = reader.read();
        QTEST(image.pixelColor(int(x * image.width()), int(y * image.height())).name(QColor::HexArgb), "colour");
        QCOMPARE(image.pixelColor(4, 4).alpha(), 0);
        QCOMPARE(capture.texts(QtWarningMsg), QStringList());
    }

    void nothingElseIsStored()
    {
        QCOMPARE(QDir(images).entryList().size(), 23); // The rows above and the spinner.
        QCOMPARE(QResource(images + "busy.gif").compressionAlgorithm(), QResource::NoCompression);
        QCOMPARE(QDir(":/lang/i18n").entryList(), QStringList{"mc_en_GB.qm"});
        QCOMPARE(QResource(translation).compressionAlgorithm(), QResource::ZlibCompression);
        QFile collection(MERIVO_COLLECTION);
        QVERIFY(collection.open(QIODevice::ReadOnly));
        QCOMPARE(collection.readAll().count("int version = 2;"), 2); // where it is registered and unregistered
    }

    void spinner()
    {
        QImageReader reader(images + "busy.gif");
        QCOMPARE(reader.size(), QSize(74, 74));
        QCOMPARE(reader.imageCount(), 31);
        QCOMPARE(reader.loopCount(), -1);
        QImage before;
        for (int frame = 0; frame < 31; ++frame) {
            const QImage image = reader.read();
            QVERIFY2(!image.isNull() && image != before, qPrintable(QString::number(frame)));
            QCOMPARE(reader.nextImageDelay(), 30);
            QCOMPARE(image.pixelColor(1, 1).alpha() + image.pixelColor(37, 37).alpha(), 0);
            before = image;
        }
    }

    void storedTexts()
    {
        const QTemporaryDir folder;
        const QString compiled = folder.filePath("stored.qm");
        const QString stored = folder.filePath("stored.ts");
        QVERIFY(QFile::copy(translation, compiled));
        QCOMPARE(QProcess::execute(MERIVO_LCONVERT, {"-i", compiled, "-o", stored}), 0);
        QStringList messages = messagesOf(stored);
        QCOMPARE(messages.size(), 87);
        messages = messages.filter(QRegularExpression("[^|]$"));
        const QStringList commented{
            "ErrorHandler|<b>Connection Error</b>|Title when the LM2 must be removed from the pump.",
            "ErrorHandler|<b>Connection Error</b>|Title when the pump must be removed.",
            "MainDialog|Merivo Connections|Message box title used in communication error/warning messages",
            "PatientSession|%1, %2|Pattern to display patient line 2 (birthday and extension)",
            "PumpAddDialog|Merivo Connections|Default message box title used within plugin questions.",
            "PumpAddDialog|Search|Button description within 'Start' page to search and open the 'Overview' page"};
        QCOMPARE(messages, commented);
    }

    // A text whose wording or comment differs from the catalogue would be shown untranslated, or wrongly translated.
    void catalogueHasTheTextsOfTheCode()
    {
        QTranslator translator;
        QVERIFY(translator.load(translation));
        // The context distinguishes equal texts.
        QCOMPARE(translator.translate("PumpReadDialog", "Merivo Connection - Add pump"),
                 QString("Sanvio Merivo Pump Plugin - Read pump"));

        const QTemporaryDir folder;
        const QString found = folder.filePath("found.ts");
        QVERIFY(QDir::setCurrent(MERIVO_SOURCE_DIR));
        const QString options("-silent -no-obsolete -locations none -I . plugin reader workflows commands dialogs -ts");
        QCOMPARE(QProcess::execute(MERIVO_LUPDATE, options.split(' ') << found), 0);
        QCOMPARE(messagesOf(found).join('\n'), messagesOf("resources/lang/i18n/mc_en_GB.ts").join('\n'));
    }
};

QTEST_GUILESS_MAIN(TestResources)

#include "tst_resources.moc"
