// SPDX-FileCopyrightText: 2026 The Merivo Connections developers
// SPDX-License-Identifier: MIT
#pragma once

#include "host/IExtensionPoint.h"

#include <QString>

class IPlugin;
class QDate;

/// General services of the host: "ServicesExtensionPoint". GUI thread only.
///
/// The host's own interface has further operations, before these and between them. How many isn't known here: who
/// builds against a certain host puts placeholders for them in their places.
class IServices : public IExtensionPoint
{
public:
    /// The kinds of path() that are asked for.
    enum PathKind {
        DatabasePath = 2,    ///< the path of the open database
        TranslationsPath = 9 ///< the folder of the host's translation files
    };

    IServices() = default;
    ~IServices() override;

    /// The date as the host shows dates to the user.
    virtual QString formatDate(const QDate& date) = 0;
    /// A path of the host; see PathKind.
    virtual QString path(int kind) = 0;
    /// Writes one record in the host's log. @p source stays the plug-in's. Format and place of the log are the host's.
    virtual void logLine(IPlugin* source, const QString& channel, const QString& message, const QString& detail1,
                         const QString& detail2) = 0;
    /// A second entry of the host's log, which nothing here calls.
    virtual quintptr logValue(int level, const QString& value1, const QString& value2, const QString& value3,
                              const QString& value4, const QString& value5) = 0;
};
