// SPDX-FileCopyrightText: 2026 The Merivo Connections developers
// SPDX-License-Identifier: MIT
#pragma once

class QStringList;
class QTranslator;

/// Takes @p translator out of the application, loads it from the first of the files that there is, and installs it
/// again; so it can be called once more after a change of language. Every directory is tried for a name before the next
/// name is. A name stands for the file of that very name, with or without ".qm": it isn't shortened to a less special
/// one.
///
/// Returns whether a file was loaded; otherwise the translator stays out. Qt's log gets an info entry for the file that
/// is installed and a warning for each name that no directory has. GUI thread only; the translator stays the caller's.
bool lmInstallTranslator(QTranslator& translator, const QStringList& fileNames, const QStringList& directories);
