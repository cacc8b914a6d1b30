// SPDX-FileCopyrightText: 2026 The Merivo Connections developers
// SPDX-License-Identifier: MIT
#pragma once

#include <QByteArray>
#include <QString>

#include <optional>

/// One command as the reader understood it. Values that the command doesn't carry are empty.
struct ReaderCommand
{
    QString word;
    QString serialNumber;
    QString address;
    QString patientId;
    bool accepted = false;
};

/// Parses the bytes of a command file. The form is strict to the byte, the blanks included; returns nothing for any
/// other and sets @p fault to what is wrong.
std::optional<ReaderCommand> parseCommandFile(const QByteArray& bytes, QString* fault);

/// True if @p word is the word of a command that the reader knows, in capitals as the command file has it.
bool isCommandWord(const QString& word);
