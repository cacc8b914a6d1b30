// SPDX-FileCopyrightText: 2026 The Merivo Connections developers
// SPDX-License-Identifier: MIT
#include "toolkit/LmTabs.h"
#include "workbench/gallery/GalleryConfig.h"
#include "workbench/gallery/GalleryPages.h"
#include "workbench/gallery/GalleryPictures.h"
#include "workbench/support/Platform.h"

#include <QApplication>
#include <QCommandLineParser>
#include <QFile>
#include <QLocale>
#include <QScopeGuard>

#include <cstdio>

namespace {

enum ExitStatus { Success = 0, Failure = 1, WrongCall = 2 };

int report(ExitStatus status, const QString& sentence)
{
    std::fprintf(stderr, "merivo-gallery: %s\n", qPrintable(sentence));
    return status;
}

struct Options
{
    QString locale;
    QString styleSheet;
    QString folder;
    bool rightToLeft = false;
    bool help = false;
    bool version = false;
};

void addOptions(QCommandLineParser& parser)
{
    parser.setApplicationDescription("Shows every widget of the toolkit in one window.");
    parser.addOptions({
        {"locale", "Locale of the run, such as de_DE. Default: the system's.", "NAME"},
        {"rtl", "Lay out from right to left. Default: as the locale is written."},
        {"style-sheet", "Style sheet in place of the gallery's own.", "FILE"},
        {"write", "Write a PNG of each group into this folder, and end.", "FOLDER"},
        {{"h", "help"}, "Show this help."},
        {{"v", "version"}, "Show the version."},
    });
}

/// Empty if all is well, otherwise what is wrong with the call.
QString parse(const QStringList& arguments, Options* options)
{
    QCommandLineParser parser;
    addOptions(parser);
    if (!parser.parse(arguments)) {
        QString error = parser.errorText();
        if (error.endsWith('.'))
            error.chop(1);
        return error;
    }
    options->rightToLeft = parser.isSet("rtl");
    options->help = parser.isSet("help");
    options->version = parser.isSet("version");
    const std::pair<const char*, QString*> values[] = {
        {"locale", &options->locale}, {"style-sheet", &options->styleSheet}, {"write", &options->folder}};
    for (const auto& [name, value] : values) {
        *value = parser.value(name);
        if (parser.isSet(name) && value->isEmpty())
            return QString("--%1 needs a value").arg(name);
    }
    if (!parser.positionalArguments().isEmpty())
        return QString("unexpected argument '%1'").arg(parser.positionalArguments().constFirst());
    // A name that Qt doesn't know gives the C locale.
    if (!options->locale.isEmpty() && options->locale != "C" && QLocale(options->locale).language() == QLocale::C)
        return QString("--locale: there is no locale '%1'").arg(options->locale);
    return QString();
}

int showText(int& argc, char** argv, bool help)
{
    const QCoreApplication application(argc, argv);
    QCommandLineParser parser;
    addOptions(parser);
    const QString text = help ? parser.helpText() : QStringLiteral("merivo-gallery " MERIVO_VERSION "\n");
    std::fputs(qPrintable(text), stdout);
    return Success;
}

void passMessage(QtMsgType, const QMessageLogContext&, const QString& text)
{
    if (!Platform::isKnownNoise(text))
        std::fprintf(stderr, "merivo-gallery: %s\n", qPrintable(text));
}

} // namespace

int main(int argc, char** argv)
{
    QStringList arguments;
    for (int i = 0; i < argc; ++i)
        arguments.append(QString::fromLocal8Bit(argv[i]));
    Options options;
    QString error = parse(arguments, &options);
    if (!error.isEmpty())
        return report(WrongCall, error + "; see --help");
    if (options.help || options.version)
        return showText(argc, argv, options.help);

    QFile styleSheet(options.styleSheet.isEmpty() ? ":/gallery.qss" : options.styleSheet);
    if (!options.styleSheet.isEmpty() && !styleSheet.open(QIODevice::ReadOnly))
        return report(
            Failure, QString("can't read the style sheet %1: %2").arg(styleSheet.fileName(), styleSheet.errorString()));
    if (!options.folder.isEmpty())
        qputenv("QT_QPA_PLATFORM", "offscreen"); // So the pictures don't depend on a display, nor need one.
    else if (Platform::isWithoutDisplay())
        return report(Failure, "there is no display for the window; --write needs none");
    if (!options.locale.isEmpty())
        QLocale::setDefault(QLocale(options.locale));

    qInstallMessageHandler(passMessage);
    QCoreApplication::setAttribute(Qt::AA_UseHighDpiPixmaps);
    int onlyTheName = 1; // the rest are options of ours, of which Qt would take some for its own
    QApplication application(onlyTheName, argv);
    QApplication::setApplicationDisplayName("Merivo Gallery");
    const GalleryConfig config;
    QApplication::setStyle(config.styleName());
    QApplication::setLayoutDirection(options.rightToLeft ? Qt::RightToLeft : QLocale().textDirection());
    if (!styleSheet.isOpen() && !styleSheet.open(QIODevice::ReadOnly))
        return report(Failure, "the gallery's own style sheet is missing");
    application.setStyleSheet(QString::fromUtf8(styleSheet.readAll()));

    const QVector<GalleryPage> pages = galleryPages();
    if (!options.folder.isEmpty()) {
        const auto deletePages = qScopeGuard([&pages] {
            for (const GalleryPage& page : pages)
                delete page.widget;
        });
        return writeGallery(pages, options.folder, &error) ? Success : report(Failure, error);
    }
    LmTabWidget window;
    for (const GalleryPage& page : pages)
        window.addTab(page.widget, page.title);
    window.show();
    return QApplication::exec();
}
