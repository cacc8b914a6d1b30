// SPDX-FileCopyrightText: 2026 The Merivo Connections developers
// SPDX-License-Identifier: MIT
#include "hostcommands/CommandExt.h"

// Nothing uses the vocabulary; it is included so that it is created once, when the library is loaded.
#include "hostcommands/CommandKeys.h"

#include <QDateTime>
#include <QDebug>
#include <QFileInfo>

#include <algorithm>

CommandExt::CommandExt(QObject* owner)
    : m_owner(owner)
    , m_jobId(QDateTime::currentDateTime().toString(QStringLiteral("yyyyMMdd.hhmmss.zzz")))
{}

CommandExt::~CommandExt()
{
    m_owner = nullptr;
}

bool CommandExt::isExecutable() const
{
    return true;
}

void CommandExt::prepare() {}

bool CommandExt::parseOption(QStringList&)
{
    return false;
}

quintptr CommandExt::extraResult() const
{
    return 0;
}

bool CommandExt::setArguments(QStringList& args)
{
    prepare();
    QStringList seen = args;
    bool understood = true;
    while (understood && !args.isEmpty() && args.first().startsWith(QLatin1Char('-'))) {
        if (parseOption(args))
            continue;
        const QString option = args.takeFirst();
        if (option == QLatin1String("-jobid") && !args.isEmpty())
            m_jobId = args.takeFirst();
        else
            understood = false;
    }

    seen.erase(seen.end() - std::min(args.size(), seen.size()), seen.end());
    adjustCommandLine(seen);
    for (QString& word : seen) {
        if (word.isEmpty() || word.contains(QLatin1Char(' ')))
            word = QStringLiteral("'%1'").arg(word);
    }
    m_commandLine = seen.join(QLatin1Char(' '));
    return understood;
}

void CommandExt::adjustCommandLine(QStringList& words)
{
    qInfo("adjust command line");
    for (const QString& word : qAsConst(words))
        qDebug().noquote().nospace() << "### " << word;

    if (words.size() == 1) {
        // A diary file as the only argument is imported.
        const QFileInfo file(words.first());
        if (file.isFile()) {
            qDebug().noquote() << "### suffix:" << file.suffix();
            if (file.suffix().endsWith(QLatin1String("dia"), Qt::CaseInsensitive)) {
                words.prepend(QStringLiteral("-filepath"));
                words.prepend(QStringLiteral("import"));
            }
        }
    }

    words.replaceInStrings(QStringLiteral("%20"), QStringLiteral(" "));
    words.replaceInStrings(QStringLiteral("'"), QString());
    words.replaceInStrings(QStringLiteral("\""), QString());
    qInfo("-> complete");
}
