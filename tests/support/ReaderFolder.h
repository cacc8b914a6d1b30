// SPDX-FileCopyrightText: 2026 The Merivo Connections developers
// SPDX-License-Identifier: MIT
#pragma once

#include <QDateTime>
#include <QDir>
#include <QFileInfo>
#include <QHash>
#include <QSaveFile>
#include <QTemporaryDir>
#include <QTimer>

#include <functional>

/// Simulates the reader's drive in a temporary folder, and a reader that answers on a schedule.
class ReaderFolder final : public QObject
{
public:
    /// One status, @p delayMs after the previous one, or after the command file was seen. If @p command is empty, the
    /// status has the name of the command that was seen.
    struct Answer
    {
        int delayMs;
        QString status;
        QString result = {};
        int error = 0;
        QString command = {};
    };

    ReaderFolder()
    {
        QDir(drive()).mkdir(QStringLiteral("MISC"));
        connect(&m_timer, &QTimer::timeout, this, &ReaderFolder::checkCommandFile);
    }

    QString drive() const { return m_folder.path(); }
    QString misc() const { return m_folder.path() + QStringLiteral("/MISC"); }
    bool writeFile(const QString& nameInMisc, const QByteArray& bytes) const
    {
        QSaveFile file(misc() + QLatin1Char('/') + nameInMisc);
        return file.open(QIODevice::WriteOnly) && file.write(bytes) == bytes.size() && file.commit();
    }
    QByteArray readFile(const QString& nameInMisc) const
    {
        QFile file(misc() + QLatin1Char('/') + nameInMisc);
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
    }
    /// Returns the current bytes of the command file.
    QByteArray command() const { return readFile(QStringLiteral("CommandFile.txt")); }
    /// Writes the five lines of a status in one step.
    bool writeStatus(const QString& header, const QString& command, const QString& status, const QString& result = {},
                     int error = 0) const
    {
        return writeFile(QStringLiteral("STATUS.TXT"), statusText(header, command, status, result, error));
    }
    static QByteArray statusText(const QString& header, const QString& command, const QString& status,
                                 const QString& result = {}, int error = 0)
    {
        return QStringLiteral("%1\nCmd=%2\nStatus  = %3\nResult  = %4\nError code -%5.\n")
            .arg(header, command, status, result)
            .arg(error)
            .toUtf8();
    }

    /// Answers each command of that name from this call on. A command counts as new if its file was written again, or
    /// has another text within one step of the drive's time stamps.
    void answer(const QString& commandWord, const QList<Answer>& answers)
    {
        m_answers.insert(commandWord, answers);
        m_timer.start(pollMs);
    }
    /// Called just before the last answer of a command is written, for instance to put an exchange file there.
    std::function<void(const QString& commandWord)> beforeLastAnswer;
    int pollMs = 5; ///< how often the command file is checked, from the next answer() on
    /// All command lines seen, without "Command=".
    QStringList commandsSeen;

private:
    void checkCommandFile()
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
    void send(const QString& word, QList<Answer> answers)
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

    QTemporaryDir m_folder;
    QTimer m_timer{this}; // a child, so that it follows to another thread
    QHash<QString, QList<Answer>> m_answers;
    qint64 m_lastSeen = 0;
    QString m_lastLine;
    int m_statusCount = 0;
};
