// SPDX-FileCopyrightText: 2026 The Merivo Connections developers
// SPDX-License-Identifier: MIT
#pragma once

/// Base of the commands for ICommandHandler::execute().
///
/// The binary contract with the host has no virtual destructor here. To delete a command, cast it to the class that
/// type() names; IImportDataCmd inherits a virtual destructor from its data records.
class ICommand
{
public:
    enum Type {
        Import = 3,    ///< IImportDataCmd
        QueryDiary = 5 ///< IQueryDiaryCmd
    };

    explicit ICommand(int type);

    /// Returns true if type() is in the range 0 to 12.
    virtual bool isValid() const;
    /// Returns a new ICommand of the same type, owned by the caller. Derived classes may return a complete copy.
    virtual ICommand* clone() const;

    int type() const { return m_type; }

protected:
    int m_type;
};
