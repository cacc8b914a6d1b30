// SPDX-FileCopyrightText: 2026 The Merivo Connections developers
// SPDX-License-Identifier: MIT
#pragma once

class QStringList;
class QTranslator;

/// @file
/// Installation of translations. GUI thread only.

/// Removes @p translator from the application, loads it from the first existing file and installs it again, so that it
/// can be called after a change of language. Returns true if a file was loaded; otherwise the translator isn't
/// installed. Not owned.
///
/// All directories are searched for a file name before the next one. A file name may lack the suffix ".qm", but isn't
/// shortened otherwise, unlike in QTranslator. Qt's log gets an info entry for the file that is installed and a warning
/// for each name that no directory has.
bool lmInstallTranslator(QTranslator& translator, const QStringList& fileNames, const QStringList& directories);
