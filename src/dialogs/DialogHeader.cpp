// SPDX-FileCopyrightText: 2026 The Merivo Connections developers
// SPDX-License-Identifier: MIT
#include "dialogs/DialogHeader.h"

#include "base/PatientSession.h"
#include "dialogs/FormScale.h"

namespace {

void showIfAny(QLabel* label, const QString& text, int maxLines)
{
    showForeignText(label, text, maxLines);
    label->setVisible(!text.isEmpty());
}

} // namespace

DialogHeader::DialogHeader(QWidget* parent)
    : QWidget(parent)
{
    setupUi(this);
}

void DialogHeader::fill(const QString& simulationPath)
{
    if (simulationPath.isEmpty())
        m_SimulationLabel->hide();
    else // only developers read it, so it isn't translated
        showForeignText(m_SimulationLabel, QStringLiteral("SimulationPath: '%1'").arg(simulationPath), 4);
    const PatientSession* session = PatientSession::instance();
    showIfAny(m_PatientLine1, session->patientName(), 3);
    showIfAny(m_PatientLine2, session->patientIdExt(), 2);
    if (m_HeaderHLayout->isEmpty())
        hide(); // otherwise the dialog would reserve spacing for it
}
