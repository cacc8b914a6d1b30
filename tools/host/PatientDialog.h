// SPDX-FileCopyrightText: 2026 The Merivo Connections developers
// SPDX-License-Identifier: MIT
#pragma once

#include "hostapi/IDatabase.h"
#include "ui_PatientDialog.h"

#include <QDialog>

/// Edits the data of a new or existing patient. Save is enabled while the data is valid; otherwise the error is shown
/// above the buttons.
class PatientDialog final : public QDialog, private Ui::PatientDialog
{
    Q_OBJECT

public:
    /// With an empty puid in @p patient the patient is new, and the key has a random default that can be changed.
    explicit PatientDialog(const PatientRecord& patient, QWidget* parent = nullptr);

    PatientRecord patient() const;

private:
    void refresh();
};
