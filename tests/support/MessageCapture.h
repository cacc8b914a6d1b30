// SPDX-FileCopyrightText: 2026 The Merivo Connections developers
// SPDX-License-Identifier: MIT
#pragma once

#include <QLoggingCategory>
#include <QStringList>

#include <mutex>

/// Captures Qt's messages of all threads, in their order, while it exists. Only one can exist at a time.
class MessageCapture final
{
    Q_DISABLE_COPY_MOVE(MessageCapture)

public:
    /// Appends a line "qt|text" to @p journal, if any, for each message. The text follows the source file that the
    /// message names, if any.
    explicit MessageCapture(QStringList* journal = nullptr)
    {
        clear();
        s_journal = journal;
        QLoggingCategory::setFilterRules(QStringLiteral("default.debug=true\nplugin.*.debug=true"));
        s_previous = qInstallMessageHandler(capture);
    }
    ~MessageCapture()
    {
        qInstallMessageHandler(s_previous);
        QLoggingCategory::setFilterRules({});
    }

    /// Returns the texts of one level, of all categories or of one.
    QStringList texts(QtMsgType type, const QString& category = {}) const
    {
        const std::lock_guard<std::mutex> lock(s_mutex);
        QStringList found;
        for (const Message& message : qAsConst(s_messages)) {
            if (message.type == type && (category.isEmpty() || message.category == category))
                found.append(message.text);
        }
        return found;
    }
    void clear()
    {
        const std::lock_guard<std::mutex> lock(s_mutex);
        s_messages.clear();
    }

private:
    struct Message
    {
        QtMsgType type;
        QString category;
        QString text;
    };

    static void capture(QtMsgType type, const QMessageLogContext& context, const QString& text)
    {
        // Qt's platform "offscreen" logs this for each window.
        if (text == QLatin1String("This plugin does not support propagateSizeHints()"))
            return;
        const std::lock_guard<std::mutex> lock(s_mutex);
        s_messages.append({type, QString::fromLatin1(context.category), text});
        if (s_journal)
            s_journal->append(QStringLiteral("qt|") + QLatin1String(context.file) + text);
    }

    inline static std::mutex s_mutex;
    inline static QList<Message> s_messages;
    inline static QStringList* s_journal = nullptr;
    inline static QtMessageHandler s_previous = nullptr;
};
