// SPDX-FileCopyrightText: 2026 The Merivo Connections developers
// SPDX-License-Identifier: MIT
#include "support/ReaderFolder.h"

#include <QDateTime>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QSaveFile>

ReaderFolder::ReaderFolder()
{
    QDir(drive()).mkdir(QStringLiteral("MISC"));
    connect(&m_timer, &QTimer::timeout, this, &ReaderFolder::look);
}

bool ReaderFolder::writeFile(const QString& nameInMisc, const QByteArray& bytes) const
{
    QSaveFile file(misc() + QLatin1Char('/') + nameInMisc);
    return file.open(QIODevice::WriteOnly) && file.write(bytes) == bytes.size() && file.commit();
}

QByteArray ReaderFolder::readFile(const QString& nameInMisc) const
{
    QFile file(misc() + QLatin1Char('/') + nameInMisc);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

QByteArray ReaderFolder::statusText(const QString& header, const QString& command, const QString& status,
                                    const QString& result, int error)
{
    return QStringLiteral("%1\nCmd=%2\nStatus  = %3\nResult  = %4\nError code -%5.\n")
        .arg(header, command, status, result)
        .arg(error)
        .toUtf8();
}

bool ReaderFolder::writeStatus(const QString& header, const QString& command, const QString& status,
                               const QString& result, int error) const
{
    return writeFile(QStringLiteral("STATUS.TXT"), statusText(header, command, status, result, error));
}

void ReaderFolder::answer(const QString& commandWord, const QList<Answer>& answers)
{
    m_answers.insert(commandWord, answers);
    m_timer.start(pollMs);
}

void ReaderFolder::look()
{
    const QString path = misc() + QStringLiteral("/CommandFile.txt");
    const qint64 written = QFileInfo(path).lastModified().toMSecsSinceEpoch();
    const QString line = QString::fromUtf8(command().split('\n').value(1)).mid(8);
    const QString word = line.section(QLatin1Char(' '), 0, 0);
    // An empty file is one that is being written at this moment.
    if (word.isEmpty() || (written <= m_lastSeen && line == m_lastLine))
        return;
    m_lastSeen = written;
    m_lastLine = line;
    commandsSeen.append(line);
    if (m_answers.contains(word))
        send(word, m_answers.value(word));
}

void ReaderFolder::send(const QString& word, QList<Answer> answers)
{
    if (answers.isEmpty())
        return;
    const Answer answer = answers.takeFirst();
    QTimer::singleShot(answer.delayMs, this, [this, word, answer, answers] {
        if (answers.isEmpty() && beforeLastAnswer)
            beforeLastAnswer(word);
        writeStatus(QStringLiteral("Reader status %1").arg(++m_statusCount),
                    answer.command.isEmpty() ? word : answer.command, answer.status, answer.result, answer.error);
        send(word, answers);
    });
}
