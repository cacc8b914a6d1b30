// SPDX-FileCopyrightText: 2026 The Merivo Connections developers
// SPDX-License-Identifier: MIT
#pragma once

#include <QObject>
#include <QUrl>
#include <QXmlSchema>

class LmXmlMessages;
class QByteArray;

/// Validates documents against one XML schema. By design, every document passes without a valid schema. Not
/// thread-safe.
class LmXmlValidator final : public QObject
{
    Q_OBJECT
    Q_DISABLE_COPY_MOVE(LmXmlValidator)

public:
    /// Loads the schema. Blocks until it is loaded or has failed; isValid() returns false after a failure.
    LmXmlValidator(const QUrl& schemaUrl, QObject* parent);
    ~LmXmlValidator() override;

    /// Returns true if the schema was loaded and is valid.
    bool isValid() const { return m_schema.isValid(); }
    QUrl schemaUrl() const { return m_schemaUrl; }

    /// Returns true if the document at @p document passes or if the schema isn't valid. After the call @p messages
    /// holds only the messages of this validation: none without a valid schema, and none for a document that can't be
    /// read, which doesn't pass.
    bool validate(const QUrl& document, LmXmlMessages& messages);
    /// Returns true if the content @p document passes or if the schema isn't valid. After the call @p messages holds
    /// only the messages of this validation, and none without a valid schema.
    bool validate(const QByteArray& document, LmXmlMessages& messages);

private:
    template <typename... Document>
    bool check(LmXmlMessages& messages, const Document&... document);

    QUrl m_schemaUrl;
    QXmlSchema m_schema;
};
