// SPDX-FileCopyrightText: 2026 The Merivo Connections developers
// SPDX-License-Identifier: MIT
#include "toolkit/LmXmlMessages.h"

#include <QSourceLocation>

LmXmlMessages::LmXmlMessages(QObject* parent)
    : QAbstractMessageHandler(parent)
{}

LmXmlMessages::~LmXmlMessages() = default;

void LmXmlMessages::clear()
{
    m_messages.clear();
    m_level = 0;
}

void LmXmlMessages::handleMessage(QtMsgType type, const QString& description, const QUrl& /*identifier*/,
                                  const QSourceLocation& sourceLocation)
{
    if (m_level < type)
        m_messages.clear();
    m_level = type; // May decrease: the next message of a higher type then clears the lines.

    // The labels don't follow the severity of the types. Applications rely on them.
    const QString label = type == QtDebugMsg || type == QtWarningMsg ? QStringLiteral("Error") : QStringLiteral("Info");
    m_messages.append(
        QStringLiteral("%1 at (line %2;column %3) - %4")
            .arg(label, QString::number(sourceLocation.line()), QString::number(sourceLocation.column()), description));
}
