// SPDX-FileCopyrightText: 2026 The Merivo Connections developers
// SPDX-License-Identifier: MIT
#pragma once

#include <QByteArray>
#include <QString>

#include <filesystem>

class QFile;

/// What differs between the systems that the programs run on, and what Qt's platforms make of it. Any thread.
namespace Platform {

/// True where Qt would end the process for want of a display. A platform that QT_QPA_PLATFORM names is taken to work.
bool isWithoutDisplay();

/// True for what Qt says of a machine without a display or a user's session, where it is no news.
bool isKnownNoise(const QString& message);

/// A path as the standard library takes it, with all characters that the system allows in it.
std::filesystem::path nativePath(const QString& path);

/// Appends to an open file and hands all to the system. False if that fails, with the reason in the file's
/// errorString().
bool writeThrough(QFile& file, const QByteArray& bytes);

/// Ends the application's event loop on an interrupt or a request to terminate, instead of the process at once. GUI
/// thread only.
void quitOnStopRequest();

} // namespace Platform
