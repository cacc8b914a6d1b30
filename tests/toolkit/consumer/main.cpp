// SPDX-FileCopyrightText: 2026 The Merivo Connections developers
// SPDX-License-Identifier: MIT
#include "toolkit/LmIcons.h"
#include "toolkit/LmMessageBox.h"

#include <QApplication>
#include <QUrl>

#if __has_include("toolkit/LmXmlValidator.h")
#include "toolkit/LmXmlMessages.h"
#include "toolkit/LmXmlValidator.h"

static bool worksWithXml()
{
    LmXmlMessages messages(nullptr);
    LmXmlValidator validator(QUrl::fromLocalFile(PLACE "/dose.xsd"), nullptr);
    return validator.validate(QByteArray("<dose>1.5</dose>"), messages) &&
           !validator.validate(QByteArray("<dose>many</dose>"), messages) && messages.messages().size() == 1;
}
#else
static bool worksWithXml()
{
    return true; // installed without the component Xml
}
#endif

/// Uses something of each library, and ends with 0 if all of it works.
int main(int argc, char* argv[])
{
    const QApplication application(argc, argv);
    const bool works = lmPixmap(QStringLiteral(PLACE "/dose.svg")).size() == QSize(8, 4) &&
                       LmMessageBox(nullptr).minimumWidth() == 101 && worksWithXml();
    return works ? 0 : 1;
}
