// SPDX-FileCopyrightText: 2026 The Merivo Connections developers
// SPDX-License-Identifier: MIT
#pragma once

#include "host/IDatabase.h"
#include "ui_PatientDialog.h"

#include <QDialog>

/// A patient's data, for a new patient or one that is there. Save is open while they can be saved; what is missing
/// stands above the buttons.
class PatientDialog final : public QDialog, private Ui::PatientDialog
{
    Q_OBJECT

public:
    /// An empty puid in @p patient asks for a new patient: the key gets a proposal, and can be changed.
    explicit PatientDialog(const PatientRecord& patient, QWidget* parent = nullptr);

    PatientRecord patient() const;

private:
    void refresh();
};
