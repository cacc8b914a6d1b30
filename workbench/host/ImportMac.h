// SPDX-FileCopyrightText: 2026 The Merivo Connections developers
// SPDX-License-Identifier: MIT
#pragma once

#include <QByteArray>
#include <QString>

/// HMAC with SHA-256, as lower-case hexadecimal text. It is written out here, on the bare hash, so that it checks the
/// plug-in's MAC by other means than the plug-in makes it with.
QByteArray hmacSha256(const QByteArray& key, const QByteArray& message);

/// The MAC that the import of a file with these bytes into the database with that GUID must bring.
QByteArray importMac(const QByteArray& fileBytes, const QString& databaseGuid);

/// Compares all of both, in a time that depends on their lengths alone.
bool equalInConstantTime(const QByteArray& a, const QByteArray& b);
