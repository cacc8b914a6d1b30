// SPDX-FileCopyrightText: 2026 The Merivo Connections developers
// SPDX-License-Identifier: MIT
#pragma once

#include "workbench/reader/ReaderDrive.h"

#include <QString>
#include <QVector>

#include <optional>

/// At what point of a command the drive goes away.
enum class LeavingMoment {
    Never,
    Command,
    Running,
    Done,
};

/// What a read-out leaves on the drive.
enum class ExchangeForm {
    OneFile,
    NoFile,
    TwoFiles,
    Folder,
    GrowingFile,
};

/// How the reader behaves for one command. The defaults are those of a sound reader; each fault changes one thing.
struct Behaviour
{
    bool answers = true;
    bool showsRunning = true;
    bool ends = true;
    bool abortsItself = false;
    /// The code to fail with; ReaderFiles.h has the one that stands for none.
    std::optional<int> failCode;
    int extraMs = 0;

    bool refreshesStatus = true;
    bool changesHeader = true;
    bool changesHeaderAlone = false;
    bool endsWithOldStatus = false;
    bool emptiesStatus = false;
    QString commandWord;
    bool hasLowerCaseWord = false;
    QString statusWord;
    StatusManner manner;

    LeavingMoment leavesAt = LeavingMoment::Never;
    bool leavesWhole = true;
    /// Until the drive is back; 0 for good.
    int awayMs = 0;
    /// For how long the file can't be written; 0 for good.
    std::optional<int> triggerBlockedMs;
    std::optional<int> commandBlockedMs;

    bool hasDeviceList = true;
    std::optional<int> listBytes;
    int listDevices = 0;
    ExchangeForm exchange = ExchangeForm::OneFile;

    QString firmware;
    QString leftRunning;
    bool hasFirmwareLog = true;
    bool hasBinaryLog = false;
    /// The version in a second firmware log.
    QString secondFirmware;
};

struct FaultEntry;

/// The faults of one run, from the scenario and the command line. Each is written NAME or NAME=VALUE. @COMMAND behind
/// that strikes one command alone, and :once at the end the first command alone that the fault can strike.
class FaultSet
{
public:
    /// Adds the fault that @p text names. On an unknown name, a value that doesn't fit or a command that the fault
    /// can't be tied to, nothing changes and @p error says why.
    bool add(const QString& text, QString* error);

    /// The behaviour for the command @p word; with an empty word, that at the reader's start. A fault that strikes once
    /// is used up by it.
    Behaviour strike(const QString& word);

    /// The catalogue for people, one line a fault.
    static QString catalogue();

private:
    struct Fault
    {
        const FaultEntry* entry;
        QString value;
        QString command;
        bool strikesOnce;
    };

    QVector<Fault> m_faults;
};
