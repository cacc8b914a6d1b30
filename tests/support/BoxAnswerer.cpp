// SPDX-FileCopyrightText: 2026 The Merivo Connections developers
// SPDX-License-Identifier: MIT
#include "support/BoxAnswerer.h"

#include <QAbstractButton>

void BoxAnswerer::answer(QMessageBox* box)
{
    if (!box)
        return;
    seen.append(
        {box->icon(), box->windowTitle(), box->text(), box->standardButtons(), box->parentWidget(), box->size()});
    if (m_journal)
        m_journal->append(QStringLiteral("box|%1|%2").arg(box->windowTitle(), box->text()));
    QAbstractButton* button = m_answers.isEmpty() ? nullptr : box->button(m_answers.takeFirst());
    if (!button)
        button = box->button(QMessageBox::Ok);
    if (!button)
        button = box->buttons().constFirst();
    button->click();
}
