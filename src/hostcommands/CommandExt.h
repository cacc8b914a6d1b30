// SPDX-FileCopyrightText: 2026 The Merivo Connections developers
// SPDX-License-Identifier: MIT
#pragma once

#include <QString>
#include <QStringList>

class ICommand;
class QObject;

/// The second base of every command, next to ICommand: its owner, its job id and its command line.
///
/// A command line consists of options of its own, the command name and the command's arguments. An argument that begins
/// with "-" is an option, and the next one is its value. Values may be in single quotes, and "%20" represents a blank.
class CommandExt
{
public:
    /// @p owner is the object that creates the command; it doesn't own the command.
    explicit CommandExt(QObject* owner);
    virtual ~CommandExt();

    /// Returns this object as an ICommand.
    virtual ICommand* command() = 0;
    virtual QString commandName() const = 0;
    virtual bool isExecutable() const;
    /// Called at the beginning of setArguments().
    virtual void prepare();
    /// May remove an option from the front of @p args, which is not empty. Returns true if it did.
    virtual bool parseOption(QStringList& args);
    virtual quintptr extraResult() const;

    /// Removes the options at the front of @p args, up to the first argument that is not an option. Returns false for
    /// an unknown option or a "-jobid" without a value, which is then removed too. Always sets commandLine() to what
    /// was removed.
    bool setArguments(QStringList& args);

    QObject* owner() const { return m_owner; }
    bool flagA() const { return m_flagA; }
    bool flagB() const { return m_flagB; }
    QString commandLine() const { return m_commandLine; }
    /// Returns the local time of construction as yyyyMMdd.hhmmss.zzz, or the value of the option "-jobid".
    QString jobId() const { return m_jobId; }

protected:
    // Copied only as a base of a command.
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
