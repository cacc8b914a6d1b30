// SPDX-FileCopyrightText: 2026 The Merivo Connections developers
// SPDX-License-Identifier: MIT
#pragma once

#include <QList>
#include <QMessageBox>
#include <QObject>
#include <QTimer>

/// Answers the message boxes that come up while it lives, and remembers what they showed.
class BoxAnswerer final : public QObject
{
    Q_OBJECT

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
    explicit BoxAnswerer(QStringList* journal = nullptr);

    /// The buttons to press, box by box; with none left, Ok or the first button of the box.
    void answerWith(const QList<QMessageBox::StandardButton>& buttons) { m_answers = buttons; }
    QList<Box> seen;

private:
    void look();

    QTimer m_timer;
    QStringList* m_journal;
    QList<QMessageBox::StandardButton> m_answers;
};
