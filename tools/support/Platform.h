// SPDX-FileCopyrightText: 2026 The Merivo Connections developers
// SPDX-License-Identifier: MIT
#pragma once

#include <QByteArray>
#include <QStringList>

#include <cstdio>
#include <filesystem>

class QFile;

/// The differences between the operating systems and Qt's platforms. Any thread.
namespace Platform {

/// Prepares standard streams, text codec, scaling and fonts for a program on Windows; does nothing on other systems.
/// Call it first in main().
void prepareProgram();

/// Returns the stream to write to instead of @p stream, which is standard output or error. A GUI program on Windows has
/// neither, unless they are redirected; it writes to the console of its parent process, if there is one.
std::FILE* outputFor(std::FILE* stream);

/// Returns the arguments of main() as text. On Windows they include characters outside of the code page.
QStringList arguments(int argc, char** argv);

/// Returns true if Qt would abort the process because there is no display. Assumes that a platform selected by
/// QT_QPA_PLATFORM works.
bool isWithoutDisplay();

/// Returns true if @p message is one of Qt's harmless messages on a machine without a display or user session.
bool isKnownNoise(const QString& message);

/// Returns a path for the standard library, with all characters that the system allows in it.
std::filesystem::path nativePath(const QString& path);

/// Renames a file or folder atomically, and replaces an existing file. Returns the error, or an empty text. On Windows,
/// where this fails while another program has one of the files open, tries again for up to a second.
QString rename(const QString& from, const QString& to);

/// Returns the name of the codec of the locale, in which the plug-in writes commands.
QString localeCodecName();

/// Writes to an open file and flushes it. Returns false and sets the file's errorString() if that fails.
bool writeThrough(QFile& file, const QByteArray& bytes);

/// Makes an interrupt or a request to terminate end the application's event loop instead of the process. GUI thread
/// only.
void quitOnStopRequest();

} // namespace Platform
