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

const QString images = QStringLiteral(":/img/Images/");
const QString translation = QStringLiteral(":/lang/i18n/mc_en_GB.qm");

/// A picture, its size in millimetres, and the colour to be seen at a point in parts of that size.
struct Picture
{
    const char* name;
    const char* size;
    double x, y;
    const char* colour;
};

constexpr Picture Pictures[] = {
    {"Cygnara.svg", "46.11 30.74", 0.99, 0.99, "#00000000"},
    {"DeviceReader.svg", "63.24 81.23", 0.99, 0.99, "#00000000"},
    {"ConfirmCode.svg", "111.13 74.08", 0.6077, 0.6071, "#59c68c"}, // The end of the ring's axis.
    {"CancelOnPump.svg", "111.13 75.54", 0.381, 0.1805, "#484444"},
    {"PumpFinger.svg", "77.04 70.76", 0.275, 0.687, "#59c68c"},
    {"PumpDownloadGreyDark.svg", "10.59 8.57", 0.05, 0.5, "#111010"},
    {"PumpDownloadGreyLight.svg", "10.59 8.57", 0.05, 0.5, "#59111111"},
    {"PumpDownloadWhite.svg", "10.59 8.57", 0.05, 0.5, "#ffffff"},
    {"icon_pump_data_download.svg", "13 13", 0.25, 0.55, "#ffffff"},
    {"icon_pump_data_download_deactivated.svg", "13 13", 0.5, 0.1, "#59484545"}, // Rounded when it was premultiplied.
    {"icon_connected.svg", "5.32 8.66", 0.88, 0.5, "#484444"},
    {"icon_check_green.svg", "13 13", 0.44, 0.66, "#5cc78e"},
    {"result_succeeded.svg", "512 512", 0.44, 0.67, "#ffffff"},
    {"result_failed.svg", "512 512", 0.1, 0.5, "#ff9900"},
};

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
        else if (xml.isEndElement() && element == QLatin1String("message"))
            messages << fields["name"] + '|' + fields["source"] + '|' + fields.take("comment");
    }
    messages.sort();
    return messages;
}

} // namespace

Q_DECLARE_METATYPE(Picture)

class TestResources final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void picture_data()
    {
        QTest::addColumn<Picture>("expected");
        for (const Picture& picture : Pictures) {
            QTest::newRow(picture.name) << picture;
        }
        for (const QByteArray mark : {"plus", "minus", "data_download", "help"}) {
            QTest::newRow("icon_" + mark + "_grey_dark.svg") << Picture{"", "13 13", 0.1, 0.5, "#484444"};
            QTest::newRow("icon_" + mark + "_grey_light.svg") << Picture{"", "13 13", 0.1, 0.5, "#cccccc"};
        }
    }

    void picture()
    {
        QFETCH(Picture, expected);
        const QString name = QString::fromLatin1(QTest::currentDataTag());
        const QResource resource(images + name);
        QCOMPARE(resource.compressionAlgorithm(),
                 name == QLatin1String("PumpFinger.svg") ? QResource::ZlibCompression : QResource::NoCompression);

        QXmlStreamReader xml(resource.uncompressedData());
        QVERIFY(xml.readNextStartElement());
        const QXmlStreamAttributes attributes = xml.attributes();
        QCOMPARE(attributes.value("viewBox").toString(), QStringLiteral("0 0 ") + expected.size);
        if (!name.startsWith(QLatin1String("result_"))) {
            QCOMPARE(attributes.value("width") + QLatin1Char(' ') + attributes.value("height"),
                     QString::fromLatin1(expected.size).replace(QLatin1Char(' '), QLatin1String("mm ")) + "mm");
        }

        const MessageCapture capture;
        QImageReader reader(images + name);
        reader.setScaledSize(reader.size().scaled(800, 2000, Qt::KeepAspectRatio));
        const QImage image = reader.read();
        const QColor seen = image.pixelColor(int(expected.x * image.width()), int(expected.y * image.height()));
        QCOMPARE(seen.name(QColor::HexArgb), QColor(expected.colour).name(QColor::HexArgb));
        QCOMPARE(image.pixelColor(4, 4).alpha(), 0);
        QCOMPARE(capture.texts(QtWarningMsg), QStringList());
    }

    void nothingElseIsStored()
    {
        QCOMPARE(QDir(images).entryList().size(), 23); // The rows above and the spinner.
        QCOMPARE(QResource(images + QStringLiteral("busy.gif")).compressionAlgorithm(), QResource::NoCompression);
        QCOMPARE(QDir(QStringLiteral(":/lang/i18n")).entryList(), QStringList{"mc_en_GB.qm"});
        QCOMPARE(QResource(translation).compressionAlgorithm(), QResource::ZlibCompression);
        QFile collection(QStringLiteral(MERIVO_COLLECTION));
        QVERIFY(collection.open(QIODevice::ReadOnly));
        QCOMPARE(collection.readAll().count("int version = 2;"), 2); // Where it registers itself and where it leaves.
    }

    void spinner()
    {
        QImageReader reader(images + QStringLiteral("busy.gif"));
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
        const QString compiled = folder.filePath(QStringLiteral("stored.qm"));
        const QString stored = folder.filePath(QStringLiteral("stored.ts"));
        QVERIFY(QFile::copy(translation, compiled));
        QCOMPARE(QProcess::execute(MERIVO_LCONVERT, {"-i", compiled, "-o", stored}), 0);
        QStringList messages = messagesOf(stored);
        QCOMPARE(messages.size(), 87);
        messages = messages.filter(QRegularExpression(QStringLiteral("[^|]$")));
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
        QCOMPARE(translator.translate("PumpReadDialog", "Merivo Connection - Add pump"), // Told apart by its context.
                 QStringLiteral("Sanvio Merivo Pump Plugin - Read pump"));

        const QTemporaryDir folder;
        const QString found = folder.filePath(QStringLiteral("found.ts"));
        QVERIFY(QDir::setCurrent(MERIVO_SOURCE_DIR));
        const QString options("-silent -no-obsolete -locations none -I . plugin reader workflows commands dialogs -ts");
        QCOMPARE(QProcess::execute(MERIVO_LUPDATE, options.split(QLatin1Char(' ')) << found), 0);
        QVERIFY(!messagesOf(found).isEmpty());
        QCOMPARE(messagesOf(found).join('\n'), messagesOf("resources/lang/i18n/mc_en_GB.ts").join('\n'));
    }
};

QTEST_GUILESS_MAIN(TestResources)

#include "tst_resources.moc"
