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
/// All directories are searched for one file name before the next. File names must match exactly, with or without
/// ".qm"; the fallback of QTranslator to shorter names isn't used. Writes an info entry to Qt's log for the installed
/// file, and a warning for each name that isn't found.
bool lmInstallTranslator(QTranslator& translator, const QStringList& fileNames, const QStringList& directories);
