// SPDX-FileCopyrightText: 2026 The Merivo Connections developers
// SPDX-License-Identifier: MIT
#pragma once

/// Base of the commands that go to ICommandHandler::execute().
///
/// The host's order of virtual operations has no destructor here, so a command is never deleted through this class:
/// its owner goes by type() to the class that it stands for, and IImportDataCmd has a virtual destructor through its
/// data records.
class ICommand
{
public:
    enum Type {
        Import = 3,    ///< IImportDataCmd
        QueryDiary = 5 ///< IQueryDiaryCmd
    };

    explicit ICommand(int type);

    /// True for the type codes 0 to 12.
    virtual bool isValid() const;
    /// A new bare ICommand of the same type, which the caller owns; a class that can do better overrides it.
    virtual ICommand* clone() const;

    int type() const { return m_type; }

protected:
    int m_type;
};
