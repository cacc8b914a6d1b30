// SPDX-FileCopyrightText: 2026 The Merivo Connections developers
// SPDX-License-Identifier: MIT

// Draws all pictures on one sheet, on a light and on a dark background, in the sizes in which dialogs, menus and
// buttons show them at the device pixel ratios 1 and 2.
#include <QDir>
#include <QFontMetrics>
#include <QGuiApplication>
#include <QImageReader>
#include <QPainter>

#include <algorithm>
#include <cstdio>

namespace {

constexpr int Gap = 14;
constexpr int SheetWidth = 1340;

const QColor Light(0xf0, 0xf0, 0xf0);
const QColor Dark(0x2a, 0x2c, 0x2e);

// Returns the widths in which a picture is shown; an icon that is never shown has those of similar icons.
QVector<int> widthsOf(const QString& name)
{
    static const QVector<QPair<QString, QVector<int>>> known = {
        {QStringLiteral("Cygnara"), {100}},     {QStringLiteral("DeviceReader"), {100}},
        {QStringLiteral("ConfirmCode"), {200}}, {QStringLiteral("CancelOnPump"), {200}},
        {QStringLiteral("PumpFinger"), {200}},  {QStringLiteral("PumpDownload"), {16, 24, 32}},
        {QStringLiteral("result_"), {50}},      {QStringLiteral("icon_connected"), {10, 16, 20}},
        {QStringLiteral("busy"), {74}},         {QStringLiteral("icon_"), {16, 26, 32}},
    };
    const auto it =
        std::find_if(known.begin(), known.end(), [&](const auto& entry) { return name.startsWith(entry.first); });
    if (it == known.end())
        qFatal("%s: no size is known for this picture", qPrintable(name));
    return it->second;
}

QImage picture(const QString& path, int width)
{
    QImageReader reader(path);
    const QSize natural = reader.size();
    const QSize size(width, qRound(width * double(natural.height()) / natural.width()));
    if (path.endsWith(QLatin1String(".svg")))
        reader.setScaledSize(size);
    const QImage image = reader.read();
    if (image.isNull())
        qFatal("%s: %s", qPrintable(path), qPrintable(reader.errorString()));
    return image.size() == size ? image : image.scaled(size, Qt::IgnoreAspectRatio, Qt::SmoothTransformation);
}

// Returns one picture in all its sizes, on both backgrounds, below its name.
QImage block(const QString& name)
{
    QVector<QImage> images;
    QSize half(Gap, 0);
    for (const int scale : {1, 2}) {
        for (const int width : widthsOf(name)) {
            images.append(picture(QStringLiteral(":/img/Images/") + name, width * scale));
            half = QSize(half.width() + images.last().width() + Gap, qMax(half.height(), images.last().height()));
        }
    }
    const int title = QFontMetrics(QGuiApplication::font()).height() + Gap / 2;
    QImage result(2 * half.width(), title + half.height() + 2 * Gap, QImage::Format_RGB32);
    result.fill(Qt::white);
    QPainter painter(&result);
    painter.setPen(Dark);
    painter.drawText(QRect(0, 0, result.width(), title), Qt::AlignVCenter, name);
    int x = 0;
    for (const QColor& background : {Light, Dark}) {
        painter.fillRect(x, title, half.width(), result.height() - title, background);
        x += Gap;
        for (const QImage& image : qAsConst(images)) {
            painter.drawImage(x, title + Gap + (half.height() - image.height()) / 2, image);
            x += image.width() + Gap;
        }
    }
    return result;
}

} // namespace

int main(int argc, char** argv)
{
    qputenv("QT_QPA_PLATFORM", "offscreen");
    const QGuiApplication application(argc, argv);
    if (argc != 2) {
        std::fputs("usage: merivo-contact-sheet FILE.png\n", stderr);
        return 2;
    }

    QVector<QImage> blocks;
    for (const QString& name : QDir(QStringLiteral(":/img/Images")).entryList())
        blocks.append(block(name));
    // The large pictures first, so that they share lines.
    std::stable_sort(blocks.begin(), blocks.end(),
                     [](const QImage& a, const QImage& b) { return a.height() > b.height(); });

    QVector<QPoint> places;
    QPoint place(Gap, Gap);
    int lineHeight = 0;
    for (const QImage& image : qAsConst(blocks)) {
        if (place.x() > Gap && place.x() + image.width() + Gap > SheetWidth) {
            place = QPoint(Gap, place.y() + lineHeight + Gap);
            lineHeight = 0;
        }
        places.append(place);
        place.rx() += image.width() + Gap;
        lineHeight = qMax(lineHeight, image.height());
    }

    QImage sheet(SheetWidth, place.y() + lineHeight + Gap, QImage::Format_RGB32);
    sheet.fill(Qt::white);
    QPainter painter(&sheet);
    for (int i = 0; i < blocks.size(); ++i)
        painter.drawImage(places[i], blocks[i]);
    if (!sheet.save(QString::fromLocal8Bit(argv[1]))) {
        std::fprintf(stderr, "%s: can't be written\n", argv[1]);
        return 1;
    }
    return 0;
}
