// SPDX-FileCopyrightText: 2026 The Merivo Connections developers
// SPDX-License-Identifier: MIT
#pragma once

#include <QCommandLineParser>
#include <QStringList>
#include <QVector>

#include <optional>

/// The exit status of a program.
enum ExitStatus { Success = 0, Failure = 1, WrongCall = 2 };

/// Writes one line to standard output.
void print(const QString& line);
/// Writes one line with an error to standard error, and returns the status.
int complain(ExitStatus status, const QString& what);
int complain(ExitStatus status, const QStringList& all);

/// The command line of a program, with the options --help and --version. Needs no application object, since Qt's
/// platform and the locale may depend on it.
class CommandLine final : public QCommandLineParser
{
public:
    struct Option
    {
        const char* name;
        const char* valueName; ///< null for an option without a value
        const char* description;
    };

    /// Prepares the program for its platform, and sets its name and version. Construct it first in main().
    CommandLine(const QString& program, const QString& version, const QString& description);

    /// Parses the arguments. Returns a status if the program must end: after a usage error, which includes a missing
    /// value and a repeated option that isn't one of @p repeatable, and after --help and --version.
    std::optional<int> read(int argc, char** argv, const QVector<Option>& options, const QStringList& repeatable = {});
    /// Writes a usage error to standard error, and returns the status for it.
    static int refuse(QString error);
    /// Returns a status if there is an argument that isn't an option.
    std::optional<int> refusePositional() const;
    /// Sets the default locale to that of the option "locale". Returns a status if there is no such locale.
    std::optional<int> setLocale() const;
    /// Sets @p target to the integer value of an option, if the option is set. Returns a status if the value is
    /// invalid.
    std::optional<int> readNumber(const QString& name, uint minimum, uint maximum, uint* target) const;
};
