// SPDX-FileCopyrightText: 2026 The Merivo Connections developers
// SPDX-License-Identifier: MIT
#pragma once

#include <QString>
#include <QStringList>

/// Takes Qt's messages for as long as it lives, from all threads, in the order in which they came. One at a time.
class MessageCapture final
{
    Q_DISABLE_COPY_MOVE(MessageCapture)

public:
    /// Each message gets a line "qt|text" in @p journal, if given, at the moment when it comes. A source file that
    /// it names precedes the text.
    explicit MessageCapture(QStringList* journal = nullptr);
    ~MessageCapture();

    /// The texts of one level, of all categories or of one.
    QStringList texts(QtMsgType type, const QString& category = {}) const;
    void clear();
};
