// SPDX-FileCopyrightText: 2026 The Merivo Connections developers
// SPDX-License-Identifier: MIT
#pragma once

#include "hostapi/IImportDataCmd.h"
#include "hostcommands/CommandExt.h"
#include "hostcommands/ModeData.h"
#include "hostcommands/PatientData.h"

/// Imports the exchange file of the last read-out into the open database.
///
/// The session determines the file: filePath() and fileMac() ask PatientSession at each call, so a later read-out
/// changes the results of an older command. clone() is inherited and returns an ICommand that only has the type. GUI
/// thread only.
class ImportDataCommand final : public IImportDataCmd, public CommandExt, public ModeData, public PatientData
{
public:
    explicit ImportDataCommand(QObject* owner);

    using ModeData::assign;
    using PatientData::assign;

    QString filePath() const override;
    QString importTag() const override;
    /// Reads the whole file in blocks at each call. A file that can't be opened yields the MAC of no data.
    QString fileMac() const override;
    bool isImportFlagged() const override;
    QString importNote() const override;

    ICommand* command() override;
    QString commandName() const override;

    /// GUID text of the open database, the second part of the MAC key.
    QString m_databaseGuid;
};
