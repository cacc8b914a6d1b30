// SPDX-FileCopyrightText: 2026 The Merivo Connections developers
// SPDX-License-Identifier: MIT
#pragma once

#include <QByteArray>
#include <QString>
#include <QVector>

#include <optional>

/// How the reader behaves for one command. The defaults are those of a sound reader; each fault changes one thing.
struct Behaviour
{
    bool answers = true;
    bool ends = true;
    std::optional<int> failCode;
    int extraMs = 0;
    int exchangeFiles = 1;
    QString statusWord;
    bool refreshesStatus = true;
    bool changesHeader = true;
    QString firmware;
    QString leftRunning;
};

struct FaultEntry;

/// The faults of one run, from the scenario and the command line. Each is written NAME, NAME=VALUE or, to strike one
/// command alone, either of them with @COMMAND behind it.
class FaultSet
{
public:
    /// Adds the fault that @p text names. On an unknown name, a value that doesn't fit or a command that the fault
    /// can't be tied to, nothing changes and @p error says why.
    bool add(const QString& text, QString* error);

    /// The behaviour for the command @p word; with an empty word, that of the reader as a whole.
    Behaviour behaviourFor(const QString& word) const;

    /// The catalogue for people, one line a fault.
    static QString catalogue();

private:
    struct Fault
    {
        const FaultEntry* entry;
        QString value;
        QString command;
    };

    QVector<Fault> m_faults;
};
