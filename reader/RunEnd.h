// SPDX-FileCopyrightText: 2026 The Merivo Connections developers
// SPDX-License-Identifier: MIT
#pragma once

#include "reader/StatusFileParser.h"

// How whoever commands the reader learns of the end: by a handler that hears of one run alone. GUI thread only.

/// Lets @p handler of @p receiver hear of the end of the polling run that is about to begin. It calls takeRunEnd()
/// first of all. A run that ends by a time-out doesn't call it, and leaves it waiting.
template <typename Receiver>
void awaitRunEnd(Receiver* receiver, void (Receiver::*handler)(bool success))
{
    QObject::connect(StatusFileParser::instance(), &StatusFileParser::finished, receiver, handler,
                     Qt::QueuedConnection);
}

/// Lets go of the run that has called @p handler, and returns what happened in it.
template <typename Receiver>
StatusRecord takeRunEnd(Receiver* receiver, void (Receiver::*handler)(bool success))
{
    StatusFileParser* parser = StatusFileParser::instance();
    QObject::disconnect(parser, &StatusFileParser::finished, receiver, handler);
    return parser->m_lastStatus;
}
