// SPDX-FileCopyrightText: 2026 The Merivo Connections developers
// SPDX-License-Identifier: MIT
#pragma once

#include <QString>
#include <QStringList>

class ICommand;
class QObject;

/// The second base of every command, beside the ICommand branch: its maker, its job id and its command-line form.
///
/// A command line is a list of words: the options of the command line itself, then the command's word, then what
/// belongs to the command. A word that starts with "-" is an option and takes the next word as its value. Values may be
/// written in single quotes, and "%20" stands for a blank.
class CommandExt
{
public:
    /// @p owner is the object that makes the command; it owns nothing of it.
    explicit CommandExt(QObject* owner);
    virtual ~CommandExt();

    /// The same object seen as a command.
    virtual ICommand* command() = 0;
    /// The command's word.
    virtual QString commandName() const = 0;
    virtual bool isExecutable() const;
    /// Called before setArguments() reads its words.
    virtual void prepare();
    /// May take an option from the front of @p args, which holds a word at least; true if it did.
    virtual bool parseOption(QStringList& args);
    virtual quintptr extraResult() const;

    /// Reads the options at the front of @p args up to the first word that is none, and leaves the rest there. False
    /// for an unknown option or a "-jobid" without a value, which is then taken out as well. commandLine() holds in
    /// every case what was taken.
    bool setArguments(QStringList& args);

    QObject* owner() const { return m_owner; }
    bool flagA() const { return m_flagA; }
    bool flagB() const { return m_flagB; }
    QString commandLine() const { return m_commandLine; }
    /// The local time of construction as yyyyMMdd.hhmmss.zzz, or what an option "-jobid" said.
    QString jobId() const { return m_jobId; }

protected:
    // Only whole commands are copied.
    CommandExt(const CommandExt&) = default;
    CommandExt& operator=(const CommandExt&) = default;

    QObject* m_owner;
    bool m_flagA = false;
    bool m_flagB = false;
    QString m_commandLine;
    QString m_jobId;

private:
    static void adjustCommandLine(QStringList& words);
};
