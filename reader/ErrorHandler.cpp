// SPDX-FileCopyrightText: 2026 The Merivo Connections developers
// SPDX-License-Identifier: MIT
#include "reader/ErrorHandler.h"

#include "plugin/session/Logger.h"
#include "reader/MessageBoxes.h"

#include <algorithm>
#include <iterator>

namespace {

struct ErrorText
{
    int code;
    struct
    {
        const char* source;
        const char* comment;
    } title;
    const char* text;
};

// Equal titles have different comments, so that they can have different translations.
constexpr ErrorText KnownErrors[] = {
    {31, QT_TRANSLATE_NOOP3("ErrorHandler", "<b>Connection Error</b>", "Title when the pump was not found."),
     QT_TRANSLATE_NOOP("ErrorHandler", "Maybe the battery is weak, or the pump is too far away. Please move it closer "
                                       "and try again to connect. The pump can't be connected to the LM2.")},
    {32,
     {QT_TRANSLATE_NOOP("ErrorHandler", "<b>Connection lost</b>"), nullptr},
     QT_TRANSLATE_NOOP("ErrorHandler", "Maybe the battery is weak, or the pump is too far away. Please move it closer "
                                       "and try again to connect.")},
    {110,
     {QT_TRANSLATE_NOOP("ErrorHandler", "<b>Unable to pair with this device</b>"), nullptr},
     QT_TRANSLATE_NOOP("ErrorHandler", "Unfortunately, this version of the pump doesn't work with this plugin. Please "
                                       "contact the support.")},
    {124, QT_TRANSLATE_NOOP3("ErrorHandler", "<b>Connection Error</b>", "Title when the pump must be removed."),
     QT_TRANSLATE_NOOP("ErrorHandler", "This pump is already paired with the LM2. Remove the pump and then you can "
                                       "pair again.")},
    {140,
     QT_TRANSLATE_NOOP3("ErrorHandler", "<b>Connection Error</b>", "Title when the LM2 must be removed from the pump."),
     QT_TRANSLATE_NOOP("ErrorHandler", "The pump is already paired to a LM2. Remove the LM2 from the pump.")},
};

} // namespace

void ErrorHandler::showError(int errorCode)
{
    const QString windowTitle =
        tr("Merivo Connections", "Message box title used in communication error/warning messages");
    QString title = tr("<b>Unknown error code: %1</b>").arg(errorCode);
    QString text = tr("Please contact the support.");
    logFailure(QStringLiteral("Error message box: code='%1'").arg(errorCode));

    const auto known = std::find_if(std::begin(KnownErrors), std::end(KnownErrors),
                                    [errorCode](const ErrorText& error) { return error.code == errorCode; });
    if (known != std::end(KnownErrors)) {
        title = tr(known->title.source, known->title.comment);
        text = tr(known->text);
    }

    warn(windowTitle, title + QStringLiteral("<br/>") + text);
}
