// SPDX-FileCopyrightText: 2026 The Merivo Connections developers
// SPDX-License-Identifier: MIT
#include "host/IImportDataCmd.h"

IImportDataCmd::IImportDataCmd()
    : ICommand(Import)
{}

IImportDataCmd::~IImportDataCmd() = default;
