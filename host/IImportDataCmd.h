// SPDX-FileCopyrightText: 2026 The Merivo Connections developers
// SPDX-License-Identifier: MIT
#pragma once

#include "host/ICommand.h"
#include "host/IModeData.h"
#include "host/IPatientData.h"

/// The import of one exchange file for one patient.
class IImportDataCmd : public ICommand, public virtual IModeData, public virtual IPatientData
{
public:
    IImportDataCmd();

    /// Absolute path of the exchange file.
    virtual QString filePath() const = 0;
    virtual QString importTag() const = 0;
    /// The keyed MAC over the file's bytes as they lie there at the moment of the call: HMAC with SHA-256, 64
    /// lower-case hexadecimal characters. The key is the text of SharedKey.h followed by the GUID of the open database.
    virtual QString fileMac() const = 0;
    virtual bool isImportFlagged() const = 0;
    virtual QString importNote() const = 0;

    // Declared last: it takes two places of its own in the order of virtual operations, behind the others.
    ~IImportDataCmd() override;
};
