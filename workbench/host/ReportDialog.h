// SPDX-FileCopyrightText: 2026 The Merivo Connections developers
// SPDX-License-Identifier: MIT
#pragma once

#include "ui_ReportDialog.h"

#include <QDialog>

/// Where a report shall go, and whether personal data is replaced in it, which it is unless the user says otherwise.
class ReportDialog final : public QDialog, private Ui::ReportDialog
{
    Q_OBJECT

public:
    explicit ReportDialog(QWidget* parent = nullptr);

    QString path() const;
    bool withPersonalData() const { return !replacePersonal->isChecked(); }

private:
    void browse();
    void refresh();
};
