// SPDX-FileCopyrightText: 2026 The Merivo Connections developers
// SPDX-License-Identifier: MIT
#pragma once

#include "support/ModalUser.h"

#include <QList>
#include <QMessageBox>

/// Answers the message boxes that are opened while it exists, and records what they showed.
class BoxAnswerer final
{
public:
    struct Box
    {
        QMessageBox::Icon icon;
        QString title;
        QString text;
        QMessageBox::StandardButtons buttons;
        QWidget* parent;
        QSize size;
    };

    /// Each box gets a line "box|title|text" in @p journal, if given, at the moment when it is seen.
    explicit BoxAnswerer(QStringList* journal = nullptr)
        : m_journal(journal)
    {}

    /// The buttons to press, box by box; with none left, Ok or the first button of the box.
    void answerWith(const QList<QMessageBox::StandardButton>& buttons) { m_answers = buttons; }
    QList<Box> seen;

private:
    void answer(QMessageBox* box);

    QStringList* m_journal;
    QList<QMessageBox::StandardButton> m_answers;
    ModalUser m_user{[this](QWidget& modal) {
        answer(qobject_cast<QMessageBox*>(&modal));
    }};
};
