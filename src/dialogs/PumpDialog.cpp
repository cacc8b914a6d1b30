// SPDX-FileCopyrightText: 2026 The Merivo Connections developers
// SPDX-License-Identifier: MIT
#include "dialogs/PumpDialog.h"

#include "dialogs/DialogUtils.h"
#include "dialogs/FormScale.h"
#include "readerlink/StatusFileParser.h"
#include "toolkit/LmWidgets.h"
#include "workflows/MessageBoxes.h"

#include <QDialogButtonBox>
#include <QPushButton>

namespace {

constexpr QSize BusySize{74, 74};

} // namespace

PumpDialog::PumpDialog(IServices* services, IDatabase* database, QWidget* parent)
    : QDialog(parent)
    , m_services(services)
    , m_database(database)
    , m_busyMovie(QStringLiteral(":/img/Images/busy.gif"))
{
    m_busyMovie.setScaledSize(BusySize * formScale(this));
    // Without a frame a label is empty and takes no space in the layout until the movie starts.
    m_busyMovie.jumpToFrame(0);
    lmRemoveHelpButton(this);
    connect(StatusFileParser::instance(), &StatusFileParser::timeout, this, &PumpDialog::onDeviceReaderTimeout,
            Qt::QueuedConnection);
}

void PumpDialog::onDeviceReaderTimeout()
{
    warn(tr("Merivo Connections", "Default message box title used within plugin warnings."),
         tr("Something is wrong with the devicereader. Please reconnect it to the PC."));
    Q_EMIT deviceReaderCritical();
    closeAsRejected(this); // Cancel is disabled while a command runs
}

bool PumpDialog::hasEnabledCancel(const QDialogButtonBox& buttonBox)
{
    const QPushButton* cancel = buttonBox.button(QDialogButtonBox::Cancel);
    return cancel && cancel->isEnabled();
}

void PumpDialog::reject()
{
    if (isCancelEnabled())
        QDialog::reject();
}

void PumpDialog::accept()
{
    if (!rejectIfDiaryChanged())
        QDialog::accept();
}

bool PumpDialog::rejectIfDiaryChanged()
{
    if (!hasDiaryChanged())
        return false;
    closeAsRejected(this);
    return true;
}

void PumpDialog::setWidthScaledPixmap(QLabel* label, const QString& path, int width)
{
    showScaledToWidth(label, path, width);
}
