// SPDX-FileCopyrightText: 2026 The Merivo Connections developers
// SPDX-License-Identifier: MIT
#include "support/MessageCapture.h"

#include <QLoggingCategory>

#include <mutex>

namespace {

struct Message
{
    QtMsgType type;
    QString category;
    QString text;
};

std::mutex s_mutex;
QList<Message> s_messages;
QStringList* s_journal = nullptr;
QtMessageHandler s_previous = nullptr;

void capture(QtMsgType type, const QMessageLogContext& context, const QString& text)
{
    // The platform without a display says so at each window, and means nothing by it.
    if (text == QLatin1String("This plugin does not support propagateSizeHints()"))
        return;
    const std::lock_guard<std::mutex> lock(s_mutex);
    s_messages.append({type, QString::fromLatin1(context.category), text});
    if (s_journal)
        s_journal->append(QStringLiteral("qt|") + QLatin1String(context.file) + text);
}

} // namespace

MessageCapture::MessageCapture(QStringList* journal)
{
    clear();
    s_journal = journal;
    QLoggingCategory::setFilterRules(QStringLiteral("default.debug=true\nplugin.*.debug=true"));
    s_previous = qInstallMessageHandler(capture);
}

MessageCapture::~MessageCapture()
{
    qInstallMessageHandler(s_previous);
    QLoggingCategory::setFilterRules({});
}

QStringList MessageCapture::texts(QtMsgType type, const QString& category) const
{
    const std::lock_guard<std::mutex> lock(s_mutex);
    QStringList found;
    for (const Message& message : qAsConst(s_messages)) {
        if (message.type == type && (category.isEmpty() || message.category == category))
            found.append(message.text);
    }
    return found;
}

void MessageCapture::clear()
{
    const std::lock_guard<std::mutex> lock(s_mutex);
    s_messages.clear();
}
