// SPDX-FileCopyrightText: 2026 The Merivo Connections developers
// SPDX-License-Identifier: MIT
#include "toolkit/LmGuiConfig.h"
#include "toolkit/LmTabs.h"
#include "tools/gallery/GalleryPages.h"
#include "tools/support/CommandLine.h"
#include "tools/support/Platform.h"

#include <QApplication>
#include <QDate>
#include <QDir>
#include <QFile>
#include <QLocale>
#include <QMenu>
#include <QScopeGuard>

namespace {

/// The first day of the week and the weekend of the default locale.
class GalleryConfig final : public LmGuiConfig
{
public:
    bool isWeekend(const QDate& date) const override
    {
        return date.isValid() && !QLocale().weekdays().contains(static_cast<Qt::DayOfWeek>(date.dayOfWeek()));
    }
    int firstWeekDay() const override { return QLocale().firstDayOfWeek() - Qt::Monday; }
};

/// Returns a picture of the widget, which is shown for a moment.
QPixmap pictureOf(QWidget* widget)
{
    if (auto* menu = qobject_cast<QMenu*>(widget)) {
        menu->popup(QPoint());
    } else {
        widget->adjustSize();
        widget->show();
    }
    QCoreApplication::processEvents();
    const QPixmap picture = widget->grab();
    widget->hide();
    return picture;
}

/// Writes a PNG of each page and of each window that it opens, and returns the exit status.
int writePictures(const QVector<GalleryPage>& pages, const QDir& folder)
{
    if (!folder.mkpath("."))
        return complain(Failure, QString("can't create the folder %1").arg(folder.path()));
    for (const GalleryPage& page : pages) {
        QVector<QWidget*> widgets = page.windows;
        widgets.prepend(page.widget);
        for (int i = 0; i < widgets.size(); ++i) {
            const QString name = i == 0 ? page.name : QString("%1-%2").arg(page.name).arg(i);
            const QString path = folder.filePath(name + ".png");
            if (!pictureOf(widgets.at(i)).save(path))
                return complain(Failure, "can't write " + path);
        }
    }
    return Success;
}

void passMessage(QtMsgType, const QMessageLogContext&, const QString& text)
{
    if (!Platform::isKnownNoise(text))
        complain(Failure, text);
}

} // namespace

int main(int argc, char** argv)
{
    CommandLine line("merivo-gallery", MERIVO_VERSION, "Shows every widget of the toolkit in one window.");
    const auto status =
        line.read(argc, argv,
                  {{"locale", "NAME", "Locale, such as de_DE. Default: the system's."},
                   {"rtl", nullptr, "Lay out from right to left. Default: the direction of the locale."},
                   {"write", "FOLDER", "Write PNGs of each group into this folder, and exit."}});
    if (status)
        return *status;
    if (const auto wrong = line.refusePositional())
        return *wrong;
    if (const auto wrong = line.setLocale())
        return *wrong;
    const QString folder = line.value("write");
    if (!folder.isEmpty())
        qputenv("QT_QPA_PLATFORM", "offscreen"); // The pictures need no display and don't depend on one.
    else if (Platform::isWithoutDisplay())
        return complain(Failure, "there is no display for the window; --write needs none");

    qInstallMessageHandler(passMessage);
    QCoreApplication::setAttribute(Qt::AA_UseHighDpiPixmaps);
    int onlyTheName = 1; // Qt would interpret some of our options as its own
    QApplication application(onlyTheName, argv);
    QApplication::setApplicationDisplayName("Merivo Gallery");
    const GalleryConfig config;
    QApplication::setStyle(config.styleName());
    QApplication::setLayoutDirection(line.isSet("rtl") ? Qt::RightToLeft : QLocale().textDirection());
    QFile styleSheet(":/gallery.qss");
    if (!styleSheet.open(QIODevice::ReadOnly))
        return complain(Failure, "the gallery's style sheet is missing");
    application.setStyleSheet(QString::fromUtf8(styleSheet.readAll()));

    const QVector<GalleryPage> pages = galleryPages();
    if (!folder.isEmpty()) {
        const auto deletePages = qScopeGuard([&pages] {
            for (const GalleryPage& page : pages)
                delete page.widget;
        });
        return writePictures(pages, folder);
    }
    LmTabWidget window;
    for (const GalleryPage& page : pages)
        window.addTab(page.widget, page.title);
    window.show();
    return QApplication::exec();
}
