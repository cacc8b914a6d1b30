// SPDX-FileCopyrightText: 2026 The Merivo Connections developers
// SPDX-License-Identifier: MIT
#include "support/MessageCapture.h"

#include <QBuffer>
#include <QDataStream>
#include <QDir>
#include <QImageReader>
#include <QProcess>
#include <QResource>
#include <QTemporaryDir>
#include <QTest>
#include <QTranslator>
#include <QXmlStreamReader>

namespace {

const QString images = QStringLiteral(":/img/Images/");
const QString translation = QStringLiteral(":/lang/i18n/mc_en_GB.qm");

struct Message
{
    QByteArray context;
    QByteArray source;
    QByteArray comment;
};

/// The messages as the compiled translation holds them: a part 0x69 of tagged fields, each message closed by tag 1.
QVector<Message> storedMessages()
{
    enum Tag : quint8 { End = 1, Source = 6, Context = 7, Comment = 8 };
    QByteArray content = QResource(translation).uncompressedData();
    QBuffer buffer(&content);
    buffer.open(QIODevice::ReadOnly);
    buffer.seek(16);
    QDataStream parts(&buffer);
    QVector<Message> messages;
    quint8 part = 0;
    QByteArray body;
    while (!parts.atEnd()) {
        parts >> part >> body;
        if (part != 0x69) {
            continue;
        }
        QDataStream fields(body);
        Message message;
        while (!fields.atEnd()) {
            quint8 tag = 0;
            fields >> tag;
            if (tag == End) {
                messages.append(std::exchange(message, {}));
                continue;
            }
            QByteArray text;
            fields >> text;
            text = text.constData(); // Without the closing zero.
            switch (tag) {
            case Source:
                message.source = text;
                break;
            case Context:
                message.context = text;
                break;
            case Comment:
                message.comment = text;
                break;
            default:
                break;
            }
        }
    }
    return messages;
}

/// A point of a picture in parts of its size, and the colour to be seen there. Cut out means fully transparent.
struct Spot
{
    double x, y;
    const char* colour;
};

} // namespace

Q_DECLARE_METATYPE(Spot)

class ResourcesTest final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase()
    {
        QVERIFY(m_translator.load(QStringLiteral("mc_en_GB"), QStringLiteral(":/lang/i18n/"), {}, {}));
    }
    void picture_data();
    void picture();
    void nothingElseIsStored();
    void spinner();
    void storedTexts();
    void displayedText_data();
    void displayedText();
    void everyTextOfTheCodeIsTranslated();

private:
    QTranslator m_translator;
};

void ResourcesTest::picture_data()
{
    QTest::addColumn<QString>("width");
    QTest::addColumn<QString>("height");
    QTest::addColumn<QVector<Spot>>("spots");
    const auto row = [](const char* name, const char* width, const char* height, const QVector<Spot>& spots) {
        QTest::newRow(name) << QString::fromLatin1(width) << QString::fromLatin1(height) << spots;
    };
    const Spot corner{0.01, 0.01, "#00000000"};
    const Spot hole{0.5, 0.5, "#00000000"};
    row("Cygnara.svg", "46.11", "30.74", {corner, {0.99, 0.99, "#00000000"}});
    row("DeviceReader.svg", "63.24", "81.23", {corner, {0.99, 0.99, "#00000000"}});
    // The ends of the ring's axes.
    row("ConfirmCode.svg", "111.13", "74.08", {corner, {0.6077, 0.6071, "#59c68c"}, {0.381, 0.7455, "#59c68c"}});
    row("CancelOnPump.svg", "111.13", "75.54",
        {corner,
         {0.381, 0.1805, "#484444"},
         {0.425, 0.1805, "#fbfbfb"},
         {0.337, 0.1805, "#fbfbfb"},
         {0.6077, 0.1805, "#59c68c"}});
    row("PumpFinger.svg", "77.04", "70.76", {corner, {0.71, 0.2, "#efefef"}, {0.275, 0.687, "#59c68c"}});
    const Spot display{0.3, 0.28, "#00000000"};
    row("PumpDownloadGreyDark.svg", "10.59", "8.57", {display, {0.05, 0.5, "#111010"}});
    row("PumpDownloadGreyLight.svg", "10.59", "8.57", {display, {0.05, 0.5, "#59111111"}});
    row("PumpDownloadWhite.svg", "10.59", "8.57", {display, {0.05, 0.5, "#ffffff"}});
    row("icon_pump_data_download.svg", "13", "13", {corner, {0.5, 0.1, "#484444"}, {0.25, 0.55, "#ffffff"}});
    // The colour of what is half transparent is rounded when it is premultiplied.
    row("icon_pump_data_download_deactivated.svg", "13", "13", {corner, {0.5, 0.1, "#59484545"}});
    for (const char* mark : {"plus", "minus", "data_download", "help"}) {
        const Spot cut = qstrcmp(mark, "help") == 0 ? Spot{0.5, 0.81, "#00000000"} : hole;
        const QByteArray stem = QByteArray("icon_") + mark;
        row(stem + "_grey_dark.svg", "13", "13", {corner, cut, {0.1, 0.5, "#484444"}});
        row(stem + "_grey_light.svg", "13", "13", {corner, cut, {0.1, 0.5, "#cccccc"}});
    }
    row("icon_connected.svg", "5.32", "8.66", {corner, {0.88, 0.5, "#484444"}, {0.65, 0.5, "#00000000"}});
    row("icon_check_green.svg", "13", "13",
        {corner, {0.04, 0.5, "#5cc78e"}, {0.44, 0.66, "#5cc78e"}, {0.5, 0.25, "#00000000"}});
    row("result_succeeded.svg", "512", "512", {corner, {0.1, 0.5, "#59c68c"}, {0.44, 0.67, "#ffffff"}});
    row("result_failed.svg", "512", "512", {corner, hole, {0.1, 0.5, "#ff9900"}});
}

void ResourcesTest::picture()
{
    QFETCH(QString, width);
    QFETCH(QString, height);
    QFETCH(QVector<Spot>, spots);
    const QString name = QString::fromLatin1(QTest::currentDataTag());
    const QResource resource(images + name);
    QVERIFY(resource.isValid());
    QCOMPARE(resource.compressionAlgorithm(),
             name == QLatin1String("PumpFinger.svg") ? QResource::ZlibCompression : QResource::NoCompression);

    static const QStringList drawable{"svg", "path", "ellipse", "image"};
    QXmlStreamReader xml(resource.uncompressedData());
    QVERIFY(xml.readNextStartElement());
    QCOMPARE(xml.attributes().value("viewBox").toString(), QStringLiteral("0 0 %1 %2").arg(width, height));
    if (!name.startsWith(QLatin1String("result_"))) {
        QCOMPARE(xml.attributes().value("width").toString(), width + QStringLiteral("mm"));
        QCOMPARE(xml.attributes().value("height").toString(), height + QStringLiteral("mm"));
    }
    while (!xml.atEnd()) {
        QVERIFY2(!xml.isStartElement() || drawable.contains(xml.name().toString()), qPrintable(xml.name().toString()));
        xml.readNext();
    }
    QVERIFY2(!xml.hasError(), qPrintable(xml.errorString()));

    const MessageCapture capture;
    QImageReader reader(images + name);
    reader.setScaledSize(QSize(800, qRound(800 * height.toDouble() / width.toDouble())));
    const QImage image = reader.read();
    QVERIFY2(!image.isNull(), qPrintable(reader.errorString()));
    for (const Spot& spot : qAsConst(spots)) {
        const QColor seen = image.pixelColor(int(spot.x * image.width()), int(spot.y * image.height()));
        QCOMPARE(seen.alpha() == 0 ? QColor(Qt::transparent).name(QColor::HexArgb) : seen.name(QColor::HexArgb),
                 QColor(spot.colour).name(QColor::HexArgb));
    }
    QCOMPARE(capture.texts(QtWarningMsg), QStringList());
}

void ResourcesTest::nothingElseIsStored()
{
    // The rows above and the spinner.
    QCOMPARE(QDir(images).entryList().size(), 23);
    QCOMPARE(QResource(images + QStringLiteral("busy.gif")).compressionAlgorithm(), QResource::NoCompression);
    QCOMPARE(QDir(QStringLiteral(":/lang/i18n")).entryList(), QStringList{"mc_en_GB.qm"});
    QCOMPARE(QResource(translation).compressionAlgorithm(), QResource::ZlibCompression);
    QFile collection(QStringLiteral(MERIVO_COLLECTION));
    QVERIFY(collection.open(QIODevice::ReadOnly));
    QCOMPARE(collection.readAll().count("int version = 2;"), 2); // Where it registers itself and where it leaves.
}

void ResourcesTest::spinner()
{
    const MessageCapture capture;
    QImageReader reader(images + QStringLiteral("busy.gif"));
    QCOMPARE(reader.size(), QSize(74, 74));
    QCOMPARE(reader.imageCount(), 31);
    QCOMPARE(reader.loopCount(), -1);
    QImage before;
    for (int frame = 0; frame < 31; ++frame) {
        const QImage image = reader.read();
        QVERIFY2(!image.isNull() && image != before, qPrintable(QString::number(frame)));
        QCOMPARE(reader.nextImageDelay(), 30);
        QCOMPARE(image.pixelColor(1, 1).alpha(), 0);
        QCOMPARE(image.pixelColor(37, 37).alpha(), 0);
        before = image;
    }
    QCOMPARE(capture.texts(QtWarningMsg), QStringList());
}

void ResourcesTest::storedTexts()
{
    QMap<QByteArray, int> perContext;
    QStringList commented;
    const QVector<Message> messages = storedMessages();
    for (const Message& message : messages) {
        ++perContext[message.context];
        if (!message.comment.isEmpty()) {
            commented.append(QString::fromUtf8(message.context + '|' + message.source + '|' + message.comment));
        }
    }
    commented.sort();
    QCOMPARE(messages.size(), 87);
    QCOMPARE(perContext, (QMap<QByteArray, int>{{"DevicesModel", 3},
                                                {"ErrorHandler", 13},
                                                {"MerivoConnectionsComponent", 4},
                                                {"MainDialog", 11},
                                                {"PatientSession", 2},
                                                {"PumpAddDialog", 31},
                                                {"PumpDialog", 2},
                                                {"PumpReadDialog", 11},
                                                {"PumpRemoveDialog", 8},
                                                {"ReadoutPumpControl", 2}}));
    QCOMPARE(
        commented,
        (QStringList{
            "ErrorHandler|<b>Connection Error</b>|Title when the LM2 must be removed from the pump.",
            "ErrorHandler|<b>Connection Error</b>|Title when the pump must be removed.",
            "MainDialog|Merivo Connections|Message box title used in communication error/warning messages",
            "PatientSession|%1, %2|Pattern to display patient line 2 (birthday and extension)",
            "PumpAddDialog|Merivo Connections|Default message box title used within plugin questions.",
            "PumpAddDialog|Search|Button description within 'Start' page to search and open the 'Overview' page"}));
}

void ResourcesTest::displayedText_data()
{
    QTest::addColumn<QByteArray>("context");
    QTest::addColumn<QByteArray>("source");
    QTest::addColumn<QByteArray>("comment");
    QTest::addColumn<QString>("shown");
    const auto row = [](const char* context, const char* source, const char* comment, const char* shown) {
        QTest::addRow("%s, %.40s, %.20s", context, source, comment)
            << QByteArray(context) << QByteArray(source) << QByteArray(comment) << QString::fromUtf8(shown);
    };
    const char* const boxTitle = "Sanvio Merivo Pump Plugin";
    const char* const brokenReader = "The Sanvio Lumo device is not responding. Disconnect the device from the PC and "
                                     "reconnect it.";
    for (const char* context : {"MainDialog", "PumpAddDialog", "PumpDialog"}) {
        row(context, "Merivo Connections", "Default message box title used within plugin warnings.", boxTitle);
        row(context, "Something is wrong with the devicereader. Please reconnect it to the PC.", "", brokenReader);
    }
    row("MainDialog", "Read pump", "", "Read pump");
    row("PumpReadDialog", "Read pump", "", "Read pump");
    row("PumpReadDialog", "Read out pump", "", "Read pump");
    row("PumpAddDialog", "Merivo Connection - Add pump", "", "Sanvio Merivo Pump Plugin - Add pump");
    row("PumpReadDialog", "Merivo Connection - Add pump", "", "Sanvio Merivo Pump Plugin - Read pump");
    row("PumpRemoveDialog", "Merivo Connection - Add pump", "", "Sanvio Merivo Pump Plugin - Remove pump");
    row("PumpAddDialog", "Search", "", "Search");
    row("PumpAddDialog", "Stop", "Button description within 'Start' page to stop the search", "Abort");
    row("PumpAddDialog",
        "<b>Note:</b><br/><i>The data that was downloaded from the pump remains in the patient record.</b>", "",
        "<b>Note:</b><br/>All data previously downloaded from this pump remain in the previous patient record.</b>");
    row("PumpAddDialog", "<b>Data can only be transmitted to the reader when your pump display is off.</b>", "",
        "<b>Note:</b> Only click “OK” when the pump display has turned off.");
    row("ErrorHandler", "<b>Connection Error</b>", "Title when the pump was not found.",
        "<b>Pump communication error</b>");
    row("ErrorHandler",
        "Maybe the battery is weak, or the pump is too far away. Please move it closer and try again to connect. The "
        "pump can't be connected to the LM2.",
        "",
        "If the pump display is on, wait for the pump display to turn off. <br/>\nThe pump may be too far away. Move "
        "the pump closer to the Sanvio Lumo device.<br/> \nTry to connect again.");
    row("MerivoConnectionsComponent",
        "No patient is selected. Please select first an patient and then start the plugin again.", "",
        "No patient record is selected.<br/>\n First, select a patient record. Then start the Sanvio Merivo pump "
        "plugin again.");
    row("PatientSession", "%1, %2", "Pattern to display patient name and surname", "%1, %2");
}

void ResourcesTest::displayedText()
{
    QFETCH(QByteArray, context);
    QFETCH(QByteArray, source);
    QFETCH(QByteArray, comment);
    QTEST(m_translator.translate(context, source, comment), "shown");
}

// A text that was changed in the code alone would reach the user as a working text.
void ResourcesTest::everyTextOfTheCodeIsTranslated()
{
    const QTemporaryDir folder;
    const QString found = folder.filePath(QStringLiteral("found.ts"));
    QStringList arguments{"-silent", "-no-obsolete", "-locations", "none", "-I", MERIVO_SOURCE_DIR};
    for (const char* part : {"plugin", "reader", "workflows", "commands", "dialogs"}) {
        arguments.append(QStringLiteral(MERIVO_SOURCE_DIR "/") + QLatin1String(part));
    }
    QCOMPARE(QProcess::execute(QStringLiteral(MERIVO_LUPDATE), arguments << "-ts" << found), 0);
    QFile file(found);
    QVERIFY(file.open(QIODevice::ReadOnly));
    QXmlStreamReader xml(&file);
    QByteArray context;
    QByteArray source;
    QByteArray comment;
    int count = 0;
    QStringList missing;
    while (!xml.atEnd()) {
        xml.readNext();
        if (xml.isEndElement() && xml.name() == QLatin1String("message")) {
            ++count;
            if (m_translator.translate(context, source, comment).isNull()) {
                missing.append(QString::fromUtf8(context + ": " + source));
            }
            comment.clear();
        } else if (xml.isStartElement() && xml.name() == QLatin1String("name")) {
            context = xml.readElementText().toUtf8();
        } else if (xml.isStartElement() && xml.name() == QLatin1String("source")) {
            source = xml.readElementText().toUtf8();
        } else if (xml.isStartElement() && xml.name() == QLatin1String("comment")) {
            comment = xml.readElementText().toUtf8();
        }
    }
    QVERIFY(count > 0);
    QCOMPARE(missing, QStringList());
}

QTEST_GUILESS_MAIN(ResourcesTest)

#include "tst_resources.moc"
