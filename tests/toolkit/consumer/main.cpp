// SPDX-FileCopyrightText: 2026 The Merivo Connections developers
// SPDX-License-Identifier: MIT
#include "toolkit/InstanceObserver.h"
#include "toolkit/LmDriveSpace.h"
#include "toolkit/LmIcons.h"
#include "toolkit/LmMessageBox.h"
#include "toolkit/LmStoredFile.h"
#include "toolkit/LmXmlMessages.h"
#include "toolkit/LmXmlValidator.h"
#include "toolkit/ObserverManager.h"

#include <QApplication>
#include <QDebug>
#include <QTemporaryDir>
#include <QUrl>

namespace {

const char Schema[] = "<xs:schema xmlns:xs='http://www.w3.org/2001/XMLSchema'>"
                      "<xs:element name='dose' type='xs:decimal'/></xs:schema>";
const char Picture[] = "<svg xmlns='http://www.w3.org/2000/svg' width='8' height='4' viewBox='0 0 8 4'/>";

} // namespace

/// Uses something of each library, and ends with 0 if all of it works.
int main(int argc, char* argv[])
{
    const QApplication application(argc, argv);
    const QTemporaryDir folder;
    LmStoredFile(folder.filePath("schema.xsd"), Schema, QString()).save(QIODevice::WriteOnly);
    LmStoredFile(folder.filePath("picture.svg"), Picture, QString()).save(QIODevice::WriteOnly);

    InstanceObserver observer;
    observer.setObject(&folder, "QTemporaryDir::QTemporaryDir()", false);
    LmXmlMessages messages(nullptr);
    LmXmlValidator validator(QUrl::fromLocalFile(folder.filePath("schema.xsd")), nullptr);

    const bool works = ObserverManager::instance().contains(&folder) && LmDriveSpace(folder.path()).total(0) > 0 &&
                       lmPixmap(folder.filePath("picture.svg")).size() == QSize(8, 4) &&
                       LmMessageBox(nullptr).minimumWidth() == 101 &&
                       validator.validate(QByteArray("<dose>1.5</dose>"), messages) &&
                       !validator.validate(QByteArray("<dose>many</dose>"), messages) && !messages.messages().isEmpty();
    qInfo() << (works ? "The installed toolkit works." : "The installed toolkit doesn't work.");
    return works ? 0 : 1;
}
