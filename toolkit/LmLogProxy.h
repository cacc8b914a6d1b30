// SPDX-FileCopyrightText: 2026 The Merivo Connections developers
// SPDX-License-Identifier: MIT
#pragma once

#include <QString>

/// One link of a chain that carries a widget's messages up its owners to a log.
///
/// Every operation as it stands here hands its three texts to logCritical() of the next link, whatever its own level,
/// and does nothing at the end of the chain. A class that wants the level overrides all three. GUI thread only.
class LmLogProxy
{
    Q_DISABLE_COPY_MOVE(LmLogProxy)

public:
    /// @p next may be null; it isn't owned and must outlive the last message.
    explicit LmLogProxy(LmLogProxy* next);
    virtual ~LmLogProxy();

    virtual void logCritical(QString title, QString text, QString detail);
    virtual void logWarning(QString title, QString text, QString detail);
    virtual void logInformation(QString title, QString text, QString detail);

private:
    void forward(const QString& title, const QString& text, const QString& detail);

    LmLogProxy* m_next;
};
