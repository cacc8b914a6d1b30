// SPDX-FileCopyrightText: 2026 The Merivo Connections developers
// SPDX-License-Identifier: MIT
#include "toolkit/LmTranslator.h"

#include <QCoreApplication>
#include <QDebug>
#include <QStringList>
#include <QTranslator>

bool lmInstallTranslator(QTranslator& translator, const QStringList& fileNames, const QStringList& directories)
{
    QCoreApplication::removeTranslator(&translator);
    for (const QString& fileName : fileNames) {
        for (const QString& directory : directories) {
            // With the default delimiters, "mc_de" in one directory would take precedence over "mc_de_DE" in the next.
            // A null suffix means ".qm"; an empty one would mean none.
            if (translator.load(fileName, directory, QStringLiteral(""), QString())) {
                QCoreApplication::installTranslator(&translator);
                qInfo() << "Translator" << fileName << "installed from" << directory;
                return true;
            }
        }
        qWarning() << "Translator resource" << fileName << "not found";
    }
    return false;
}
