// SPDX-FileCopyrightText: 2026 The Merivo Connections developers
// SPDX-License-Identifier: MIT
#include "toolkit/LmIcons.h"
#include "toolkit/LmMessageBox.h"
#include "toolkit/LmXmlMessages.h"
#include "toolkit/LmXmlValidator.h"

#include <QApplication>
#include <QUrl>

/// Uses something of each library, and ends with 0 if all of it works.
int main(int argc, char* argv[])
{
    const QApplication application(argc, argv);
    LmXmlMessages messages(nullptr);
    LmXmlValidator validator(QUrl::fromLocalFile(PLACE "/dose.xsd"), nullptr);
    const bool works =
        lmPixmap(QStringLiteral(PLACE "/dose.svg")).size() == QSize(8, 4) &&
        LmMessageBox(nullptr).minimumWidth() == 101 && validator.validate(QByteArray("<dose>1.5</dose>"), messages) &&
        !validator.validate(QByteArray("<dose>many</dose>"), messages) && messages.messages().size() == 1;
    return works ? 0 : 1;
}
