// SPDX-FileCopyrightText: 2026 The Merivo Connections developers
// SPDX-License-Identifier: MIT
#pragma once

#include <QByteArray>
#include <QIODevice>
#include <QLocale>
#include <QString>
#include <QStringList>

/// @file
/// Small operations on whole files. They report by their result alone, block for as long as the drive takes, and are
/// safe on any thread. A mode is that of QFile::open().

/// Makes the directories that @p filePath, relative to the current directory, needs. False if one can't be made.
bool lmMakeParentDir(const QString& filePath);

/// The content of a file; empty too if the file doesn't exist or can't be opened. Reading is added to @p mode, so that
/// QIODevice::Text alone reads with converted line ends, and a mode for writing alone can't cost the file its content.
QByteArray lmReadBytes(const QString& path, QIODevice::OpenMode mode);
/// The same, decoded as UTF-8 up to the first zero byte.
QString lmReadText(const QString& path, QIODevice::OpenMode mode);
/// The same, line by line without the line ends.
QStringList lmReadLines(const QString& path, QIODevice::OpenMode mode);

/// Writes a file, and makes its directory before if need be. QIODevice::WriteOnly replaces a file that is there, Append
/// adds to it, and ReadWrite leaves what stands behind the length of @p data. True only if the whole of @p data was
/// written; false too for a mode without writing, which leaves the file alone.
bool lmWriteBytes(const QByteArray& data, const QString& path, QIODevice::OpenMode mode);

/// The country that the system is set to.
QLocale::Country lmSystemCountry();
