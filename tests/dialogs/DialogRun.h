// SPDX-FileCopyrightText: 2026 The Merivo Connections developers
// SPDX-License-Identifier: MIT
#pragma once

#include "reader/StatusRecord.h"
#include "support/ReaderFolder.h"
#include "support/RecordingHost.h"

#include <QTranslator>
#include <QWidget>

/// The host that the logger writes to: one for all tests of a program, its journal empty at the begin of each run.
RecordingHost& testHost();

/// What a dialog needs around it: a reader at rest on a drive of its own, writer and parser, and a patient.
class DialogRun
{
    Q_DISABLE_COPY_MOVE(DialogRun)

public:
    /// @p translated shows the displayed texts instead of those in the sources.
    explicit DialogRun(bool translated = false);
    ~DialogRun();

    /// Ends the polling run that is under way as the reader would, and lets @p dialog take notice at once.
    void endRun(QObject* dialog, bool success, CommandStatus status, const QString& result = {}, int error = 0);
    /// The error lines of the log.
    QStringList errors() const { return testHost().journal.startingWith(QStringLiteral("err|")); }

    ReaderFolder reader;

private:
    QTranslator m_translator;
};

/// The child of @p window by its name; aborts if there is none.
template <typename Widget>
Widget* child(const QWidget& window, const char* name)
{
    auto* found = window.findChild<Widget*>(QString::fromLatin1(name));
    if (!found)
        qFatal("There is no %s", name);
    return found;
}
