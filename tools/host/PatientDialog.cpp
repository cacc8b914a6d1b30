// SPDX-FileCopyrightText: 2026 The Merivo Connections developers
// SPDX-License-Identifier: MIT
#include "tools/host/PatientDialog.h"

#include "tools/host/HostDatabase.h"

#include <QPushButton>

PatientDialog::PatientDialog(const PatientRecord& patient, QWidget* parent)
    : QDialog(parent)
{
    setupUi(this);
    setWindowFlag(Qt::WindowContextHelpButtonHint, false);
    const bool isNew = patient.puid.isEmpty();
    setWindowTitle(isNew ? tr("Add patient") : tr("Edit patient"));
    familyName->setText(patient.ids.value(0));
    givenName->setText(patient.ids.value(1));
    birthday->setText(patient.ids.value(2));
    furtherId->setText(patient.ids.value(3));
    puid->setText(isNew ? HostDatabase::newPuid() : patient.puid);
    puid->setReadOnly(!isNew);

    for (const QLineEdit* field : {familyName, birthday, puid})
        connect(field, &QLineEdit::textChanged, this, &PatientDialog::refresh);
    connect(buttons, &QDialogButtonBox::accepted, this, &QDialog::accept);
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
    refresh();
}

PatientRecord PatientDialog::patient() const
{
    return {puid->text().trimmed(),
            {familyName->text().trimmed(), givenName->text().trimmed(), birthday->text().trimmed(),
             furtherId->text().trimmed()}};
}

void PatientDialog::refresh()
{
    const QString missing = familyName->text().trimmed().isEmpty() ? tr("Please enter the family name.")
                                                                   : HostDatabase::whatIsWrongWith(patient());
    problem->setText(missing);
    buttons->button(QDialogButtonBox::Save)->setEnabled(missing.isEmpty());
}
