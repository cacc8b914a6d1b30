// SPDX-FileCopyrightText: 2026 The Merivo Connections developers
// SPDX-License-Identifier: MIT
#pragma once

#include <QObject>

/// Reports reader errors to the user. A QObject only for its translation context; never instantiated.
class ErrorHandler final : public QObject
{
    Q_OBJECT

public:
    ErrorHandler() = delete;

    /// Logs the error code and shows a modal message box that describes it. Unknown codes have a general text. GUI
    /// thread only.
    static void showError(int errorCode);
};
