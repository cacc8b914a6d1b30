// SPDX-FileCopyrightText: 2026 The Merivo Connections developers
// SPDX-License-Identifier: MIT
#include "toolkit/LmProgressDialog.h"

#include "toolkit/LmProgressBar.h"
#include "toolkit/LmWidgets.h"

LmProgressDialog::LmProgressDialog(const QString& format, QWidget* parent)
    : QProgressDialog(parent)
    , m_bar(new LmProgressBar)
{
    setBar(m_bar); // Makes it a child.
    if (!format.isEmpty())
        m_bar->setFormat(format);
    lmRemoveHelpButton(this);
}
