// SPDX-FileCopyrightText: 2026 The Merivo Connections developers
// SPDX-License-Identifier: MIT
#include "workflows/ErrorHandler.h"

#include "base/Logger.h"
#include "workflows/MessageBoxes.h"

void ErrorHandler::showError(int errorCode)
{
    const QString windowTitle =
        tr("Merivo Connections", "Message box title used in communication error/warning messages");
    QString title = tr("<b>Unknown error code: %1</b>").arg(errorCode);
    QString text = tr("Please contact the support.");
    logFailure(QStringLiteral("Error message box: code='%1'").arg(errorCode));

    // Equal titles have different comments, so that they can have different translations.
    switch (errorCode) {
    case 31:
        title = tr("<b>Connection Error</b>", "Title when the pump was not found.");
        text = tr("Maybe the battery is weak, or the pump is too far away. Please move it closer and try again to "
                  "connect. The pump can't be connected to the LM2.");
        break;
    case 32:
        title = tr("<b>Connection lost</b>");
        text = tr("Maybe the battery is weak, or the pump is too far away. Please move it closer and try again to "
                  "connect.");
        break;
    case 110:
        title = tr("<b>Unable to pair with this device</b>");
        text = tr("Unfortunately, this version of the pump doesn't work with this plugin. Please contact the support.");
        break;
    case 124:
        title = tr("<b>Connection Error</b>", "Title when the pump must be removed.");
        text = tr("This pump is already paired with the LM2. Remove the pump and then you can pair again.");
        break;
    case 140:
        title = tr("<b>Connection Error</b>", "Title when the LM2 must be removed from the pump.");
        text = tr("The pump is already paired to a LM2. Remove the LM2 from the pump.");
        break;
    default:
        break;
    }

    warn(windowTitle, title + QStringLiteral("<br/>") + text);
}
