// SPDX-FileCopyrightText: 2026 The Merivo Connections developers
// SPDX-License-Identifier: MIT
#pragma once

#include <QObject>
#include <QUrl>
#include <QXmlSchema>

class LmXmlMessages;
class QByteArray;

/// Checks documents against one XML schema. An aid and no gate: without a valid schema every document passes. Not for
/// sharing between threads.
class LmXmlValidator final : public QObject
{
    Q_OBJECT
    Q_DISABLE_COPY_MOVE(LmXmlValidator)

public:
    /// Loads the schema, which blocks until it is there or has failed. A failure shows nowhere but in what Qt itself
    /// writes to standard error.
    LmXmlValidator(const QUrl& schemaUrl, QObject* parent);
    ~LmXmlValidator() override;

    /// Whether the document passes. @p messages, which stays the caller's, holds what was found after the call; it is
    /// empty if there is no valid schema.
    bool validate(const QUrl& document, LmXmlMessages& messages);
    bool validate(const QByteArray& document, LmXmlMessages& messages);

private:
    template <typename... Document>
    bool check(LmXmlMessages& messages, const Document&... document);

    QUrl m_schemaUrl;
    QXmlSchema m_schema;
};
