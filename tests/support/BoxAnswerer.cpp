// SPDX-FileCopyrightText: 2026 The Merivo Connections developers
// SPDX-License-Identifier: MIT
#include "support/BoxAnswerer.h"

#include <QAbstractButton>
#include <QApplication>

BoxAnswerer::BoxAnswerer(QStringList* journal)
    : m_journal(journal)
{
    connect(&m_timer, &QTimer::timeout, this, &BoxAnswerer::look);
    m_timer.start(5);
}

void BoxAnswerer::look()
{
    auto* box = qobject_cast<QMessageBox*>(QApplication::activeModalWidget());
    if (!box || !box->isVisible())
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
