// SPDX-FileCopyrightText: 2026 The Merivo Connections developers
// SPDX-License-Identifier: MIT
#include "toolkit/LmGuiConfig.h"
#include "toolkit/LmTabs.h"
#include "workbench/gallery/GalleryPages.h"
#include "workbench/gallery/GalleryPictures.h"
#include "workbench/support/CommandLine.h"
#include "workbench/support/Platform.h"

#include <QApplication>
#include <QDate>
#include <QFile>
#include <QLocale>
#include <QScopeGuard>

namespace {

/// Weeks and days off as the default locale has them.
class GalleryConfig final : public LmGuiConfig
{
public:
    bool isWeekend(const QDate& date) const override
    {
        return date.isValid() && !QLocale().weekdays().contains(static_cast<Qt::DayOfWeek>(date.dayOfWeek()));
    }
    int firstWeekDay() const override { return QLocale().firstDayOfWeek() - Qt::Monday; }
};

void passMessage(QtMsgType, const QMessageLogContext&, const QString& text)
{
    if (!Platform::isKnownNoise(text))
        complain(Failure, text);
}

} // namespace

int main(int argc, char** argv)
{
    CommandLine line("merivo-gallery", MERIVO_VERSION, "Shows every widget of the toolkit in one window.");
    const auto status = line.read(argc, argv,
                                  {{"locale", "NAME", "Locale of the run, such as de_DE. Default: the system's."},
                                   {"rtl", nullptr, "Lay out from right to left. Default: as the locale is written."},
                                   {"write", "FOLDER", "Write a PNG of each group into this folder, and end."}});
    if (status)
        return *status;
    if (const auto wrong = line.refusePositional())
        return *wrong;
    if (const auto wrong = line.setLocale())
        return *wrong;
    const QString folder = line.value("write");
    if (!folder.isEmpty())
        qputenv("QT_QPA_PLATFORM", "offscreen"); // So the pictures don't depend on a display, nor need one.
    else if (Platform::isWithoutDisplay())
        return complain(Failure, "there is no display for the window; --write needs none");

    qInstallMessageHandler(passMessage);
    QCoreApplication::setAttribute(Qt::AA_UseHighDpiPixmaps);
    int onlyTheName = 1; // the rest are options of ours, of which Qt would take some for its own
    QApplication application(onlyTheName, argv);
    QApplication::setApplicationDisplayName("Merivo Gallery");
    const GalleryConfig config;
    QApplication::setStyle(config.styleName());
    QApplication::setLayoutDirection(line.isSet("rtl") ? Qt::RightToLeft : QLocale().textDirection());
    QFile styleSheet(":/gallery.qss");
    if (!styleSheet.open(QIODevice::ReadOnly))
        return complain(Failure, "the gallery's own style sheet is missing");
    application.setStyleSheet(QString::fromUtf8(styleSheet.readAll()));

    const QVector<GalleryPage> pages = galleryPages();
    if (!folder.isEmpty()) {
        QString error;
        const auto deletePages = qScopeGuard([&pages] {
            for (const GalleryPage& page : pages)
                delete page.widget;
        });
        return writeGallery(pages, folder, &error) ? Success : complain(Failure, error);
    }
    LmTabWidget window;
    for (const GalleryPage& page : pages)
        window.addTab(page.widget, page.title);
    window.show();
    return QApplication::exec();
}
