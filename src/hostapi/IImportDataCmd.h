// SPDX-FileCopyrightText: 2026 The Merivo Connections developers
// SPDX-License-Identifier: MIT
#pragma once

#include "hostapi/ICommand.h"
#include "hostapi/IModeData.h"
#include "hostapi/IPatientData.h"

/// The import of one exchange file for one patient.
class IImportDataCmd : public ICommand, public virtual IModeData, public virtual IPatientData
{
public:
    IImportDataCmd();

    /// Returns the absolute path of the exchange file.
    virtual QString filePath() const = 0;
    virtual QString importTag() const = 0;
    /// Returns the MAC of the file's current content: HMAC with SHA-256 as 64 lower-case hexadecimal characters. The
    /// key is described at SharedMacKey.
    virtual QString fileMac() const = 0;
    virtual bool isImportFlagged() const = 0;
    virtual QString importNote() const = 0;

    // Declared last: it takes two places in the virtual table, after the others.
    ~IImportDataCmd() override;
};
