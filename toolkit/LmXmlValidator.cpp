// SPDX-FileCopyrightText: 2026 The Merivo Connections developers
// SPDX-License-Identifier: MIT
#include "toolkit/LmXmlValidator.h"

#include "toolkit/LmXmlMessages.h"

#include <QByteArray>
#include <QXmlSchemaValidator>

LmXmlValidator::LmXmlValidator(const QUrl& schemaUrl, QObject* parent)
    : QObject(parent)
    , m_schemaUrl(schemaUrl)
{
    m_schema.load(m_schemaUrl);
}

LmXmlValidator::~LmXmlValidator() = default;

bool LmXmlValidator::validate(const QUrl& document, LmXmlMessages& messages)
{
    return check(messages, document);
}

bool LmXmlValidator::validate(const QByteArray& document, LmXmlMessages& messages)
{
    return check(messages, document, QUrl()); // The document has no URL.
}

template <typename... Document>
bool LmXmlValidator::check(LmXmlMessages& messages, const Document&... document)
{
    messages.clear();
    if (!m_schema.isValid())
        return true;
    QXmlSchemaValidator validator(m_schema);
    validator.setMessageHandler(&messages);
    return validator.validate(document...);
}
