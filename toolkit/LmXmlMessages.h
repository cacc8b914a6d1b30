// SPDX-FileCopyrightText: 2026 The Merivo Connections developers
// SPDX-License-Identifier: MIT
#pragma once

#include <QAbstractMessageHandler>
#include <QStringList>

/// Collects the messages of a validation as lines that can be shown or logged. LmXmlValidator clears it at the start of
/// each validation, so that it can be reused. Not thread-safe.
class LmXmlMessages : public QAbstractMessageHandler
{
    Q_OBJECT
    Q_DISABLE_COPY_MOVE(LmXmlMessages)

public:
    explicit LmXmlMessages(QObject* parent);
    ~LmXmlMessages() override;

    /// Returns lines such as "Error at (line 3;column 7) - description". The description is rich text.
    ///
    /// A message with a higher QtMsgType than the one before it replaces all lines so far. The label is "Error" for
    /// QtDebugMsg and QtWarningMsg and "Info" for all others, including the QtFatalMsg of an invalid document.
    QStringList messages() const { return m_messages; }
    /// Removes all lines.
    void clear();

protected:
    void handleMessage(QtMsgType type, const QString& description, const QUrl& identifier,
                       const QSourceLocation& sourceLocation) override;

private:
    QStringList m_messages;
    int m_level = 0; ///< The QtMsgType of the last message.
};
