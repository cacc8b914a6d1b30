// SPDX-FileCopyrightText: 2026 The Merivo Connections developers
// SPDX-License-Identifier: MIT
#pragma once

#include "commands/CommandExt.h"
#include "commands/ModeData.h"
#include "commands/PatientData.h"
#include "host/IImportDataCmd.h"

/// The import of the exchange file of the last read-out into the open database.
///
/// The file is named by the session, not by the command: filePath() and fileMac() ask PatientSession at each call, so a
/// later read-out changes what an older command answers. clone() is the base's and gives a bare command that has lost
/// everything but the type. GUI thread only.
class ImportDataCommand final : public IImportDataCmd, public CommandExt, public ModeData, public PatientData
{
public:
    explicit ImportDataCommand(QObject* owner);

    using ModeData::assign;
    using PatientData::assign;

    QString filePath() const override;
    QString importTag() const override;
    /// Streams the whole file at each call, in memory that doesn't grow with it. A file that can't be opened gives the
    /// code of no data.
    QString fileMac() const override;
    bool isImportFlagged() const override;
    QString importNote() const override;

    ICommand* command() override;
    QString commandName() const override;

    /// GUID text of the open database: the second part of the MAC's key.
    QString m_databaseGuid;
};
