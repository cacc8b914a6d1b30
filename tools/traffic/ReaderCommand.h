// SPDX-FileCopyrightText: 2026 The Merivo Connections developers
// SPDX-License-Identifier: MIT
#pragma once

#include <QByteArray>
#include <QString>

#include <optional>

/// A parsed command. Values that the command doesn't have are empty.
struct ReaderCommand
{
    QString word;
    QString serialNumber;
    QString address;
    QString patientId;
    bool accepted = false;
};

/// Parses the bytes of a command file, in the codec of the locale. Its form must match to the byte, spaces included.
/// Otherwise returns nothing and sets @p fault to the error.
std::optional<ReaderCommand> parseCommandFile(const QByteArray& bytes, QString* fault);
/// Parses the text of a command file.
std::optional<ReaderCommand> parseCommand(const QString& text, QString* fault);

/// Returns true if @p word is the name of a command that the reader knows, in capitals.
bool isCommandWord(const QString& word);
