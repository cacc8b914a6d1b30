// SPDX-FileCopyrightText: 2026 The Merivo Connections developers
// SPDX-License-Identifier: MIT
#pragma once

#include "hostapi/IExtensionPoint.h"

#include <QString>

class IPlugin;
class QDate;

/// General services of the host, "ServicesExtensionPoint". GUI thread only.
///
/// The host's interface has further operations before and between these. Their number is unknown; to build against a
/// particular host, add placeholders in their positions.
class IServices : public IExtensionPoint
{
public:
    /// The kinds of path() in use.
    enum PathKind {
        DatabasePath = 2,    ///< the path of the open database
        TranslationsPath = 9 ///< the folder of the host's translation files
    };

    IServices() = default;
    ~IServices() override;

    /// Returns @p date as the host shows dates to the user.
    virtual QString formatDate(const QDate& date) = 0;
    /// Returns a path of the host; see PathKind.
    virtual QString path(int kind) = 0;
    /// Writes a record to the host's log. @p source is not owned. The host decides on the log's format and location.
    virtual void logLine(IPlugin* source, const QString& channel, const QString& message, const QString& detail1,
                         const QString& detail2) = 0;
    /// Another entry point of the host's log; unused.
    virtual quintptr logValue(int level, const QString& value1, const QString& value2, const QString& value3,
                              const QString& value4, const QString& value5) = 0;
};
