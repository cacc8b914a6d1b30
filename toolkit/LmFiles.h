// SPDX-FileCopyrightText: 2026 The Merivo Connections developers
// SPDX-License-Identifier: MIT
#pragma once

#include <QByteArray>
#include <QIODevice>
#include <QLocale>
#include <QString>
#include <QStringList>

/// @file
/// Small operations on whole files. They report by their result alone. A mode adds to what the operation needs anyway,
/// so that QIODevice::Text is enough to read with converted line ends.

/// Makes the directories that @p filePath, relative to the current directory, needs. False if one can't be made.
bool lmMakeParentDir(const QString& filePath);

/// The content of a file; empty too if the file doesn't exist or can't be opened.
QByteArray lmReadBytes(const QString& path, QIODevice::OpenMode mode);
/// The same, decoded as UTF-8 up to the first zero byte.
QString lmReadText(const QString& path, QIODevice::OpenMode mode);
/// The same, line by line without the line ends.
QStringList lmReadLines(const QString& path, QIODevice::OpenMode mode);

/// Writes a file, in place of one that is there unless @p mode has QIODevice::Append, and makes its directory before if
/// need be. True only if the whole of @p data was written.
bool lmWriteBytes(const QByteArray& data, const QString& path, QIODevice::OpenMode mode);

/// The country that the system is set to.
QLocale::Country lmSystemCountry();
