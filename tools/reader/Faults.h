// SPDX-FileCopyrightText: 2026 The Merivo Connections developers
// SPDX-License-Identifier: MIT
#pragma once

#include <QHash>
#include <QString>
#include <QVector>

/// The faults that apply to one command, or at the reader's start: their values by their names in the catalogue.
using ActiveFaults = QHash<QString, QString>;

struct FaultEntry;

/// The faults of one run, from the scenario and the command line. Each is written NAME[=VALUE][@COMMAND][:once]. With
/// @COMMAND it applies to that command only, with :once only to the first command that it can apply to. ReaderSimulator
/// has the effects.
class FaultSet final
{
public:
    /// Adds the fault that @p text describes. On an unknown name, a value that doesn't fit or a command that the fault
    /// can't be restricted to, nothing changes and @p error says why.
    bool add(const QString& text, QString* error);

    /// Returns the faults for the command @p word, or with an empty word those at the reader's start. Of several with
    /// the same name the last one counts. Removes those that apply only once.
    ActiveFaults take(const QString& word);

    /// Returns the catalogue as text, one line for each fault.
    static QString catalogue();

private:
    struct Fault
    {
        const FaultEntry* entry;
        QString value;
        QString command;
        bool appliesOnce;
    };

    QVector<Fault> m_faults;
};
