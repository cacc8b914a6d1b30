// SPDX-FileCopyrightText: 2026 The Merivo Connections developers
// SPDX-License-Identifier: MIT
#pragma once

#include <QByteArray>
#include <QIODevice>
#include <QLocale>
#include <QString>
#include <QStringList>

/// @file
/// Operations on whole files. Failures are reported by the result. They block for as long as the drive takes and are
/// thread-safe.

/// Creates the missing directories of @p filePath, which is relative to the current directory. Returns false if one
/// can't be created, and true if none is missing, as for a path without a directory or an empty one.
bool lmMakeParentDir(const QString& filePath);

/// Returns the content of a file. Returns an empty array if the file doesn't exist or can't be opened.
///
/// QIODevice::ReadOnly is added to @p mode, so that QIODevice::Text is enough to convert line ends, and
/// QIODevice::WriteOnly leaves the content of the file. QIODevice::Truncate still empties the file, and with
/// QIODevice::Append or QIODevice::NewOnly nothing is read.
QByteArray lmReadBytes(const QString& path, QIODevice::OpenMode mode);
/// Returns the content of a file, read by lmReadBytes() and decoded as UTF-8 up to the first zero byte. A byte order
/// mark at its start is removed.
QString lmReadText(const QString& path, QIODevice::OpenMode mode);
/// Returns the lines of lmReadText() without their line ends, which are a line feed, or a carriage return and a line
/// feed.
QStringList lmReadLines(const QString& path, QIODevice::OpenMode mode);

/// Writes @p data to a file, and creates its missing directories before that. Returns true only if all of @p data was
/// written.
///
/// QIODevice::WriteOnly replaces the content of an existing file, QIODevice::Append adds to it, and
/// QIODevice::ReadWrite keeps what follows after the length of @p data. A @p mode without writing fails and leaves the
/// file unchanged. An empty @p path fails with a warning in Qt's log.
bool lmWriteBytes(const QByteArray& data, const QString& path, QIODevice::OpenMode mode);

/// Returns the country of the system's locale.
QLocale::Country lmSystemCountry();
