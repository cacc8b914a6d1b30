// SPDX-FileCopyrightText: 2026 The Merivo Connections developers
// SPDX-License-Identifier: MIT
#pragma once

#include <QAbstractMessageHandler>
#include <QStringList>

/// Collects what a check of a document reports, as lines that can be shown or logged. LmXmlValidator starts it afresh
/// for each check, so that it can be used again. Not for sharing between threads.
class LmXmlMessages final : public QAbstractMessageHandler
{
    Q_OBJECT
    Q_DISABLE_COPY_MOVE(LmXmlMessages)

public:
    explicit LmXmlMessages(QObject* parent);
    ~LmXmlMessages() override;

    /// Lines like "Error at (line 3;column 7) - description", whose description is rich text. A message with a higher
    /// QtMsgType than the one before it replaces all lines so far. The label is "Error" for QtDebugMsg and QtWarningMsg
    /// and "Info" for all others, the QtFatalMsg of a document that fails among them.
    QStringList messages() const { return m_messages; }
    /// Forgets all lines.
    void clear();

protected:
    void handleMessage(QtMsgType type, const QString& description, const QUrl& identifier,
                       const QSourceLocation& sourceLocation) override;

private:
    QStringList m_messages;
    int m_level = 0; ///< The QtMsgType of the last message.
};
