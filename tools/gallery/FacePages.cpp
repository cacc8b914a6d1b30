// SPDX-FileCopyrightText: 2026 The Merivo Connections developers
// SPDX-License-Identifier: MIT
#include "tools/gallery/GalleryPages.h"

#include "toolkit/LmButtons.h"
#include "toolkit/LmClickFrame.h"
#include "toolkit/LmFileDialog.h"
#include "toolkit/LmIcons.h"
#include "toolkit/LmMessageBox.h"
#include "toolkit/LmTabs.h"
#include "toolkit/LmTooltip.h"

#include <QGridLayout>
#include <QGroupBox>
#include <QLabel>
#include <QPainter>
#include <QPen>
#include <QVBoxLayout>
#include <QVariant>

namespace {

QString imagePath(const char* name)
{
    return QString(":/img/images/%1.svg").arg(name);
}

LmClickFrame* makeFrame(const QString& text, bool isMarked)
{
    auto* const frame = new LmClickFrame;
    frame->setFrameShape(QFrame::StyledPanel);
    frame->setClickStyle(isMarked);
    auto* const layout = new QVBoxLayout(frame);
    layout->addWidget(new QLabel(text));
    QObject::connect(frame, qOverload<>(&LmClickFrame::clicked), frame,
                     [frame] { frame->setClickStyle(!frame->property("ClickStyle").toBool()); });
    return frame;
}

/// Paints pictures at the edges, corners and the centre of a rectangle, and two hatched areas.
class Canvas final : public QWidget
{
public:
    Canvas() { setFixedSize(420, 200); }

protected:
    void paintEvent(QPaintEvent*) override
    {
        QPainter painter(this);
        const QRectF area(10.5, 10.5, 250, 180);
        painter.drawRect(area);
        const bool mirrored = layoutDirection() == Qt::RightToLeft;
        const QPicture flag = mirrored ? lmMirroredPicture(imagePath("flag")) : lmPicture(imagePath("flag"));
        const int places[] = {Qt::AlignLeft | Qt::AlignTop, Qt::AlignRight | Qt::AlignTop, Qt::AlignCenter,
                              Qt::AlignLeft | Qt::AlignBottom, Qt::AlignRight | Qt::AlignBottom};
        for (const int place : places)
            lmPaintPicture(&painter, flag, area, place);
        lmPaintHatched(&painter, {280, 10, 61, 180}, QPen(QColor(13, 166, 158)));
        lmPaintHatched(&painter, {341, 58, 69, 132}, QPen(QColor(72, 68, 68)));
    }
};

QLabel* iconLabel(const QPixmap& pixmap)
{
    auto* const label = new QLabel;
    label->setPixmap(pixmap);
    return label;
}

QPixmap picturePixmap(const QPicture& picture)
{
    const qreal ratio = lmDevicePixelRatio(nullptr);
    QPixmap pixmap(QSize(48, 48) * ratio);
    pixmap.setDevicePixelRatio(ratio);
    pixmap.fill(Qt::transparent);
    QPainter painter(&pixmap);
    lmPaintPicture(&painter, picture, QPointF(0, 0), Qt::AlignLeft | Qt::AlignTop);
    return pixmap;
}

} // namespace

GalleryPage buttonsPage()
{
    auto* const page = new QWidget;
    auto* const buttons = new QHBoxLayout;
    buttons->addWidget(new LmPushButton(lmIcon(imagePath("flag")), "Push button"));
    auto* const check = new LmCheckButton("Check button");
    check->setCheckable(true);
    check->setChecked(true);
    buttons->addWidget(check);
    auto* const tool = new LmToolButton;
    tool->setText("Tool button");
    buttons->addWidget(tool);
    auto* const baltic = new LmBalticButton;
    baltic->setIconFor("Day", lmIcon(imagePath("sun")));
    baltic->setIconFor("Night", lmIcon(imagePath("moon")));
    baltic->setIconStyle("Day");
    baltic->setIconSize(QSize(24, 24));
    QObject::connect(baltic, &QAbstractButton::clicked, baltic, [baltic] {
        const bool isDay = baltic->property("IconStyle").toString() == "Day";
        baltic->setIconStyle(isDay ? "Night" : "Day");
    });
    buttons->addWidget(baltic);
    buttons->addWidget(new LmBigCheckBox("Big check box"));
    buttons->addStretch();

    auto* const frames = new QHBoxLayout;
    frames->addWidget(makeFrame("Frame", false));
    frames->addWidget(makeFrame("Marked frame", true));
    frames->addStretch();

    auto* const tabs = new LmTabWidget;
    auto* const stack = new LmTabStackedWidget;
    for (int i = 1; i <= 3; ++i) {
        tabs->addTab(new QLabel(QString("Page %1 of the tabs").arg(i)), QString("Tab %1").arg(i));
        stack->addWidget(new QLabel(QString("Page %1 of the stack, which follows the tabs").arg(i)));
    }
    QObject::connect(tabs, &QTabWidget::currentChanged, stack, &QStackedWidget::setCurrentIndex);

    auto* const column = new QVBoxLayout(page);
    column->addLayout(buttons);
    column->addLayout(frames);
    column->addWidget(tabs);
    column->addWidget(stack);
    column->addWidget(new LmDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel, Qt::Horizontal));
    column->addStretch();
    return {"buttons", "Buttons and frames", page};
}

GalleryPage picturesPage()
{
    auto* const page = new QWidget;
    auto* const grid = new QGridLayout;
    const QString flag = imagePath("flag");
    const QColor orange(224, 120, 32);
    const std::pair<const char*, QPixmap> icons[] = {
        {"lmIcon()", lmIcon(flag).pixmap(48, 48)},
        {"lmPixmap(), 24", lmPixmap(flag, 24, 24)},
        {"lmPicture()", picturePixmap(lmPicture(flag))},
        {"lmMirroredPicture()", picturePixmap(lmMirroredPicture(flag))},
        {"lmColorizePixmap()", lmColorizePixmap(lmPixmap(flag), orange)},
        {"lmColorizeIcon()", lmColorizeIcon(lmIcon(flag), orange).pixmap(32, 32)},
    };
    int column = 0;
    for (const auto& [call, pixmap] : icons) {
        grid->addWidget(iconLabel(pixmap), 0, column, Qt::AlignCenter);
        grid->addWidget(new QLabel(call), 1, column, Qt::AlignCenter);
        ++column;
    }
    auto* const rows = new QVBoxLayout(page);
    rows->addLayout(grid);
    rows->addWidget(new Canvas, 0, Qt::AlignLeft);
    rows->addStretch();
    return {"pictures", "Icons and pictures", page};
}

GalleryPage messagesPage()
{
    auto* const page = new QWidget;
    auto* const column = new QVBoxLayout(page);
    const auto addButton = [column](const char* text) {
        auto* const button = new LmPushButton(text);
        column->addWidget(button, 0, Qt::AlignLeft);
        return button;
    };
    auto* const warning =
        new LmMessageBox(QMessageBox::Warning, "A title that is wider than the text", "Short.", QMessageBox::Ok, page);
    QObject::connect(addButton("A warning"), &QAbstractButton::clicked, warning, &QDialog::open);
    auto* const question =
        new LmMessageBox(QMessageBox::Question, "Question", "The first line of the question.<br/>Continue?",
                         QMessageBox::Yes | QMessageBox::No, page);
    question->setButtonText(QMessageBox::Yes, "Yes, with a custom text");
    QObject::connect(addButton("A question"), &QAbstractButton::clicked, question, &QDialog::open);

    auto* const tooltip = new LmTooltip(page);
    tooltip->setText("Drag me: I stay within the width of the screens.");
    LmPushButton* const toggle = addButton("A tooltip that can be dragged");
    QObject::connect(toggle, &QAbstractButton::clicked, tooltip, [tooltip, toggle] {
        tooltip->move(toggle->mapToGlobal(QPoint(0, toggle->height())));
        tooltip->setVisible(!tooltip->isVisible());
    });

    QObject::connect(addButton("Choose a folder"), &QAbstractButton::clicked, page,
                     [page] { LmFileDialog::getExistingDirectory(page, "Choose a folder", QString()); });
    column->addStretch();
    return {"messages", "Messages", page, {warning, question, tooltip}};
}

QVector<GalleryPage> galleryPages()
{
    return {numbersPage(),  datesPage(),   monthsPage(),   listsPage(),   menusPage(),
            progressPage(), buttonsPage(), picturesPage(), messagesPage()};
}
