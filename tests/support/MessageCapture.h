// SPDX-FileCopyrightText: 2026 The Merivo Connections developers
// SPDX-License-Identifier: MIT
#pragma once

#include <QList>
#include <QString>
#include <QStringList>

/// Takes Qt's messages for as long as it lives, from all threads, in the order in which they came. One at a time.
class MessageCapture final
{
    Q_DISABLE_COPY_MOVE(MessageCapture)

public:
    struct Message
    {
        QtMsgType type;
        QString category;
        QString text;
        QString origin; ///< "file:line function" as far as the message names them
    };

    /// Each message gets a line "qt|text" in @p journal, if given, at the moment when it comes.
    explicit MessageCapture(QStringList* journal = nullptr);
    ~MessageCapture();

    QList<Message> messages() const;
    /// The texts of one level, of all categories or of one.
    QStringList texts(QtMsgType type, const QString& category = {}) const;
    void clear();
};
