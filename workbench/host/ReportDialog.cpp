// SPDX-FileCopyrightText: 2026 The Merivo Connections developers
// SPDX-License-Identifier: MIT
#include "workbench/host/ReportDialog.h"

#include <QDateTime>
#include <QDir>
#include <QFileDialog>
#include <QPushButton>
#include <QStandardPaths>

#include <algorithm>

ReportDialog::ReportDialog(QWidget* parent)
    : QDialog(parent)
{
    setupUi(this);
    setWindowFlag(Qt::WindowContextHelpButtonHint, false);
    const QString name = QDateTime::currentDateTime().toString(QStringLiteral("'merivo-report-'yyyyMMdd-hhmmss'.zip'"));
    const QDir folder(QStandardPaths::writableLocation(QStandardPaths::DocumentsLocation));
    reportPath->setText(QDir::toNativeSeparators(folder.filePath(name)));

    connect(browseButton, &QPushButton::clicked, this, &ReportDialog::browse);
    connect(reportPath, &QLineEdit::textChanged, this, &ReportDialog::refresh);
    connect(replacePersonal, &QCheckBox::toggled, this, &ReportDialog::refresh);
    connect(buttons, &QDialogButtonBox::accepted, this, &QDialog::accept);
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
    refresh();
}

QString ReportDialog::path() const
{
    return QDir::fromNativeSeparators(reportPath->text().trimmed());
}

void ReportDialog::browse()
{
    // A report never takes the place of a file, so there is nothing to confirm.
    const QString chosen = QFileDialog::getSaveFileName(this, windowTitle(), path(), tr("Archives (*.zip)"), nullptr,
                                                        QFileDialog::DontConfirmOverwrite);
    if (!chosen.isEmpty())
        reportPath->setText(QDir::toNativeSeparators(chosen));
}

void ReportDialog::refresh()
{
    warning->setText(withPersonalData()
                         ? tr("The report will hold names, ids and serial numbers. Give it to nobody who "
                              "may not see the patients' data.")
                         : QString());
    // A layout doesn't grow its window for text that needs more lines.
    setMinimumHeight(layout()->totalHeightForWidth(std::max(width(), sizeHint().width())));
    buttons->button(QDialogButtonBox::Save)->setEnabled(!path().isEmpty());
}
