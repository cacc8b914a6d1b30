// SPDX-FileCopyrightText: 2026 The Merivo Connections developers
// SPDX-License-Identifier: MIT

// Puts every picture of the resource on one sheet, on a light and on a dark ground, in the sizes in which the dialogs
// show it, at one and at two device pixels a pixel.
#include <QDir>
#include <QGuiApplication>
#include <QImageReader>
#include <QPainter>

#include <cstdio>

namespace {

constexpr int margin = 16;
constexpr int cellWidth = 300;
constexpr int labelHeight = 20;

struct Row
{
    const char* name;
    int height;
    QVector<int> widths;
};

// The widths are those at which a dialog, a menu or a button asks for the picture.
const QVector<Row> rows = {
    {"Cygnara.svg", 72, {100}},
    {"DeviceReader.svg", 132, {100}},
    {"ConfirmCode.svg", 138, {200}},
    {"CancelOnPump.svg", 140, {200}},
    {"PumpFinger.svg", 188, {200}},
    {"PumpDownloadGreyDark.svg", 32, {16, 24, 32}},
    {"PumpDownloadGreyLight.svg", 32, {16, 24, 32}},
    {"PumpDownloadWhite.svg", 32, {16, 24, 32}},
    {"icon_pump_data_download.svg", 36, {16, 26, 32}},
    {"icon_pump_data_download_deactivated.svg", 36, {16, 26, 32}},
    {"icon_plus_grey_dark.svg", 36, {16, 26, 32}},
    {"icon_plus_grey_light.svg", 36, {16, 26, 32}},
    {"icon_minus_grey_dark.svg", 36, {16, 26, 32}},
    {"icon_minus_grey_light.svg", 36, {16, 26, 32}},
    {"icon_data_download_grey_dark.svg", 36, {16, 26, 32}},
    {"icon_data_download_grey_light.svg", 36, {16, 26, 32}},
    {"icon_help_grey_dark.svg", 36, {16, 26, 32}},
    {"icon_help_grey_light.svg", 36, {16, 26, 32}},
    {"icon_connected.svg", 36, {10, 16, 20}},
    {"icon_check_green.svg", 36, {16, 26, 32}},
    {"result_succeeded.svg", 52, {26, 50}},
    {"result_failed.svg", 52, {26, 50}},
    {"busy.gif", 76, {74}},
};

QImage picture(const QString& path, int width, int scale)
{
    QImageReader reader(path);
    const QSize natural = reader.size();
    if (path.endsWith(QLatin1String(".svg"))) {
        reader.setScaledSize(QSize(width, qRound(width * double(natural.height()) / natural.width())) * scale);
    }
    QImage image = reader.read();
    if (image.isNull()) {
        qFatal("%s: %s", qPrintable(path), qPrintable(reader.errorString()));
    }
    if (!path.endsWith(QLatin1String(".svg"))) {
        image = image.scaled(image.size() * scale, Qt::KeepAspectRatio, Qt::SmoothTransformation);
    }
    image.setDevicePixelRatio(scale);
    return image;
}

// One column of the sheet: all pictures on one ground at one scale. The painter's own scale doesn't enter: a picture at
// two device pixels a pixel is shown twice as large, pixel for pixel.
QImage column(const QColor& ground, const QColor& ink, int scale)
{
    int height = margin;
    for (const Row& row : rows) {
        height += row.height * scale + labelHeight + margin;
    }
    QImage sheet(cellWidth * scale, height, QImage::Format_ARGB32_Premultiplied);
    sheet.fill(ground);
    QPainter painter(&sheet);
    painter.setPen(ink);
    int y = margin;
    for (const Row& row : rows) {
        painter.drawText(QRect(margin, y, sheet.width() - margin, labelHeight), Qt::AlignVCenter,
                         QStringLiteral("%1  %2x").arg(QLatin1String(row.name)).arg(scale));
        y += labelHeight;
        int x = margin;
        for (const int width : row.widths) {
            QImage image = picture(QStringLiteral(":/img/Images/") + QLatin1String(row.name), width, scale);
            image.setDevicePixelRatio(1);
            painter.drawImage(x, y, image);
            x += image.width() + margin;
        }
        y += row.height * scale + margin;
    }
    return sheet;
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
    const QDir images(QStringLiteral(":/img/Images"));
    if (images.entryList().size() != rows.size()) {
        std::fputs("the sheet's list of pictures isn't that of the resource\n", stderr);
        return 1;
    }

    const QColor white(0xf4, 0xf5, 0xf5);
    const QColor black(0x26, 0x28, 0x2a);
    const QVector<QImage> columns = {column(white, black, 1), column(black, white, 1), column(white, black, 2),
                                     column(black, white, 2)};
    QImage sheet(6 * cellWidth, columns.last().height(), QImage::Format_RGB32);
    sheet.fill(white);
    QPainter painter(&sheet);
    int x = 0;
    for (const QImage& part : columns) {
        painter.fillRect(x, 0, part.width(), sheet.height(), part.pixelColor(0, 0));
        painter.drawImage(x, 0, part);
        x += part.width();
    }
    if (!sheet.save(QString::fromLocal8Bit(argv[1]))) {
        std::fprintf(stderr, "%s: can't be written\n", argv[1]);
        return 1;
    }
    return 0;
}
