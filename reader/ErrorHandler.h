// SPDX-FileCopyrightText: 2026 The Merivo Connections developers
// SPDX-License-Identifier: MIT
#pragma once

#include <QObject>

/// Tells the user about an error that the reader reported. An object only for its translations; none is ever made.
class ErrorHandler final : public QObject
{
    Q_OBJECT

public:
    ErrorHandler() = delete;

    /// Writes the code to the log, shows it in words in a modal box, and returns when the user has closed the box. Any
    /// number is taken; those without words of their own get a general message. GUI thread.
    static void showError(int errorCode);
};
