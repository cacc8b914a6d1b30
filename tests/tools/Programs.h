// SPDX-FileCopyrightText: 2026 The Merivo Connections developers
// SPDX-License-Identifier: MIT
#pragma once

#include <QFile>
#include <QProcess>
#include <QRegularExpression>
#include <QTest>

inline QByteArray bytesOf(const QString& path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

inline bool write(const QString& path, const QByteArray& bytes)
{
    QFile file(path);
    return file.open(QIODevice::WriteOnly) && file.write(bytes) == bytes.size();
}

/// The pairs of a table that has them as "left = right", with a line end or "; " between two.
inline QVector<QPair<QString, QString>> pairsOf(const QString& table)
{
    QVector<QPair<QString, QString>> pairs;
    for (const QString& pair : table.split(QRegularExpression("; |\n")))
        pairs.append({pair.section(" = ", 0, 0), pair.section(" = ", 1)});
    return pairs;
}

/// A program at work in a folder.
class Program final : public QProcess
{
public:
    Program(const QString& path, const QStringList& arguments, const QString& folder = {})
    {
        setWorkingDirectory(folder);
        start(path, arguments);
    }
    /// The exit status and the text on standard error with line feeds only; a crash and a program that doesn't end have
    /// the status -1.
    QString end()
    {
        const bool isEnded = waitForFinished(60000) && exitStatus() == NormalExit;
        return QString::number(isEnded ? exitCode() : -1) + ' ' +
               QString::fromUtf8(readAllStandardError()).remove('\r');
    }
};
