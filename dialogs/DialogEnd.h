// SPDX-FileCopyrightText: 2026 The Merivo Connections developers
// SPDX-License-Identifier: MIT
#pragma once

#include <QDialog>

/// Closes @p dialog as Rejected without calling its reject(), which does nothing in some states. Nothing else bypasses
/// reject().
inline void closeAsRejected(QDialog* dialog)
{
    dialog->done(QDialog::Rejected);
}
