// SPDX-FileCopyrightText: 2026 The Merivo Connections developers
// SPDX-License-Identifier: MIT
#include "tools/gallery/GalleryPages.h"

#include "toolkit/LmButtons.h"
#include "toolkit/LmIcons.h"
#include "toolkit/LmListWidget.h"
#include "toolkit/LmMenu.h"
#include "toolkit/LmProgressBar.h"
#include "toolkit/LmProgressDialog.h"

#include <QFormLayout>
#include <QLabel>
#include <QLocale>
#include <QSlider>
#include <QVBoxLayout>

namespace {

const QString FlagPath = ":/img/images/flag.svg";

LmMenu* makeMenu(QWidget* parent)
{
    struct Entry
    {
        const char* text;
        const char* keys;
        bool hasIcon;
        bool isCheckable;
    };
    const Entry entries[] = {
        {"Raise the flag", "Ctrl+R", true, false},
        {"Show the grid", "Ctrl+G", false, true},
        {"Without keys", "", false, false},
        {"Print", "Ctrl+Shift+P", false, false},
    };
    auto* const menu = new LmMenu("Menu", parent);
    for (const Entry& entry : entries) {
        QAction* const action = menu->addAction(entry.text);
        action->setShortcut(QKeySequence(entry.keys));
        action->setCheckable(entry.isCheckable);
        action->setChecked(entry.isCheckable);
        if (entry.hasIcon)
            action->setIcon(lmIcon(FlagPath));
    }
    return menu;
}

} // namespace

GalleryPage listsPage()
{
    auto* const page = new QWidget;
    auto* const list = new LmListWidget(page);
    list->setSelectionMode(QAbstractItemView::ExtendedSelection);
    for (int day = Qt::Monday; day <= Qt::Sunday; ++day) {
        auto* const item = new QListWidgetItem(QLocale().dayName(day), list);
        if (day % 2 == 0)
            item->setIcon(lmIcon(FlagPath));
    }
    list->addItems(QStringList{"A line that is longer than the list is wide, cut off with an ellipsis"});
    list->setFixedSize(260, 300);
    list->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);

    auto* const up = new LmPushButton("Up");
    auto* const down = new LmPushButton("Down");
    auto* const add = new LmPushButton("Copy");
    auto* const remove = new LmPushButton("Remove");
    auto* const buttons = new QVBoxLayout;
    for (LmPushButton* const button : {up, down, add, remove})
        buttons->addWidget(button);
    buttons->addStretch();
    QObject::connect(up, &QAbstractButton::clicked, list, &LmListWidget::moveUp);
    QObject::connect(down, &QAbstractButton::clicked, list, &LmListWidget::moveDown);
    QObject::connect(remove, &QAbstractButton::clicked, list, &LmListWidget::removeSelectedItems);
    QObject::connect(add, &QAbstractButton::clicked, list, [list] { list->addItems(list->selectedItems()); });
    QObject::connect(list, &LmListWidget::selectionChanged, remove, &QWidget::setEnabled);
    list->item(1)->setSelected(true);
    list->item(2)->setSelected(true);

    auto* const row = new QHBoxLayout(page);
    row->addWidget(list);
    row->addLayout(buttons);
    row->addStretch();
    return {"lists", "Lists", page};
}

GalleryPage menusPage()
{
    auto* const page = new QWidget;
    LmMenu* const menu = makeMenu(page);
    auto* const button = new LmToolButton;
    button->setText("Open the menu");
    button->setPopupMode(QToolButton::InstantPopup);
    button->setMenu(menu);

    auto* const column = new QVBoxLayout(page);
    column->addWidget(button, 0, Qt::AlignLeft);
    column->addStretch();
    return {"menus", "Menus", page, {menu}};
}

GalleryPage progressPage()
{
    auto* const page = new QWidget;
    auto* const form = new QFormLayout(page);
    auto* const slider = new QSlider(Qt::Horizontal);
    slider->setRange(0, 300);
    form->addRow("Moves them all", slider);
    for (const char* const format : {"%p%", "%L1%", "%v of %m"}) {
        auto* const bar = new LmProgressBar;
        bar->setRange(slider->minimum(), slider->maximum());
        bar->setFormat(format);
        QObject::connect(slider, &QSlider::valueChanged, bar, &QProgressBar::setValue);
        form->addRow(QString("Format \"%1\"").arg(QLatin1String(format)), bar);
    }

    auto* const less = new LmHoldButton;
    auto* const more = new LmHoldButton;
    less->setText("-");
    more->setText("+");
    QObject::connect(less, &QAbstractButton::clicked, slider, [slider] { slider->setValue(slider->value() - 10); });
    QObject::connect(more, &QAbstractButton::clicked, slider, [slider] { slider->setValue(slider->value() + 10); });
    auto* const row = new QHBoxLayout;
    row->addWidget(less);
    row->addWidget(more);
    row->addStretch();
    form->addRow("Hold", row);

    auto* const dialog = new LmProgressDialog("%L1%", page);
    dialog->setMinimumDuration(24 * 60 * 60 * 1000); // Opened only by its button.
    dialog->reset();
    dialog->setAutoClose(false);
    dialog->setAutoReset(false);
    dialog->setMaximum(slider->maximum());
    dialog->setLabelText("A dialog with the same progress");
    QObject::connect(slider, &QSlider::valueChanged, dialog, &QProgressDialog::setValue);
    auto* const open = new LmPushButton("Open a dialog");
    QObject::connect(open, &QAbstractButton::clicked, dialog, &QWidget::show);
    form->addRow(QString(), open);
    slider->setValue(126);
    return {"progress", "Progress", page, {dialog}};
}
