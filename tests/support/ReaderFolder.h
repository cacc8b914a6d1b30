// SPDX-FileCopyrightText: 2026 The Merivo Connections developers
// SPDX-License-Identifier: MIT
#pragma once

#include <QHash>
#include <QObject>
#include <QTemporaryDir>
#include <QTimer>

#include <functional>

/// A temporary folder that plays the reader's drive, and a reader in it that answers on a schedule.
class ReaderFolder final : public QObject
{
    Q_OBJECT

public:
    /// One status, @p delayMs after the one before it, or after the command file was seen. An empty command word stands
    /// for that of the command.
    struct Answer
    {
        int delayMs;
        QString status;
        QString result = {};
        int error = 0;
        QString command = {};
    };

    ReaderFolder();

    QString drive() const { return m_folder.path(); }
    QString misc() const { return m_folder.path() + QStringLiteral("/MISC"); }
    bool writeFile(const QString& nameInMisc, const QByteArray& bytes) const;
    QByteArray readFile(const QString& nameInMisc) const;
    /// The command file's bytes as they lie there now.
    QByteArray command() const { return readFile(QStringLiteral("CommandFile.txt")); }
    /// The five lines of a status, in one step.
    bool writeStatus(const QString& header, const QString& command, const QString& status, const QString& result = {},
                     int error = 0) const;
    static QByteArray statusText(const QString& header, const QString& command, const QString& status,
                                 const QString& result = {}, int error = 0);

    /// From now on answers each command of that word so. A command counts as new when its file was written
    /// again, or has another text within one step of the drive's time stamps.
    void answer(const QString& commandWord, const QList<Answer>& answers);
    /// Called just before the last answer of a command is written, for instance to put an exchange file there.
    std::function<void(const QString& commandWord)> beforeLastAnswer;
    int pollMs = 5; ///< how often the command file is checked, from the next answer() on
    /// All command lines seen, without "Command=".
    QStringList commandsSeen;

private:
    void look();
    void send(const QString& word, QList<Answer> answers);

    QTemporaryDir m_folder;
    QTimer m_timer{this}; // a child, so that it follows to another thread
    QHash<QString, QList<Answer>> m_answers;
    qint64 m_lastSeen = 0;
    QString m_lastLine;
    int m_statusCount = 0;
};
