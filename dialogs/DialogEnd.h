// SPDX-FileCopyrightText: 2026 The Merivo Connections developers
// SPDX-License-Identifier: MIT
#pragma once

#include <QDialog>

/// Closes @p dialog as Rejected, also while its reject() does nothing: the one function that bypasses reject().
inline void closeAsRejected(QDialog* dialog)
{
    dialog->done(QDialog::Rejected);
}
