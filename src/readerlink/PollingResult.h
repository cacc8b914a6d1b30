// SPDX-FileCopyrightText: 2026 The Merivo Connections developers
// SPDX-License-Identifier: MIT
#pragma once

#include "readerlink/StatusFileParser.h"

/// Connects @p handler of @p receiver to StatusFileParser::finished(), for one polling: call this function before
/// start(), and takeResult() in the handler. After a time-out the handler stays connected. GUI thread only.
template <typename Receiver>
void connectFinished(Receiver* receiver, void (Receiver::*handler)(bool success))
{
    QObject::connect(StatusFileParser::instance(), &StatusFileParser::finished, receiver, handler,
                     Qt::QueuedConnection);
}

/// Disconnects @p handler of @p receiver and returns the last status of the polling that called it. GUI thread only.
template <typename Receiver>
StatusRecord takeResult(Receiver* receiver, void (Receiver::*handler)(bool success))
{
    StatusFileParser* parser = StatusFileParser::instance();
    QObject::disconnect(parser, &StatusFileParser::finished, receiver, handler);
    return parser->m_lastStatus;
}
