// SPDX-FileCopyrightText: 2026 The Merivo Connections developers
// SPDX-License-Identifier: MIT
#pragma once

#include <QString>

/// One link of a chain that forwards the messages of a widget through its owners to a log. GUI thread only.
///
/// Each function forwards its arguments to logCritical() of the next link, whatever its own level. A class that writes
/// a log overrides all three. A link that forwards a message with its level overrides the functions and calls those of
/// nextProxy().
class LmLogProxy
{
    Q_DISABLE_COPY_MOVE(LmLogProxy)

public:
    /// @p next may be null. It isn't owned and must outlive the last message.
    explicit LmLogProxy(LmLogProxy* next);
    virtual ~LmLogProxy();

    virtual void logCritical(QString title, QString text, QString detail);
    virtual void logWarning(QString title, QString text, QString detail);
    virtual void logInformation(QString title, QString text, QString detail);

protected:
    /// Returns the next link, or null at the end of the chain. Not owned.
    LmLogProxy* nextProxy() const { return m_next; }

private:
    void forward(const QString& title, const QString& text, const QString& detail);

    LmLogProxy* m_next;
};
