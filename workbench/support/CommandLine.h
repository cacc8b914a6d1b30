// SPDX-FileCopyrightText: 2026 The Merivo Connections developers
// SPDX-License-Identifier: MIT
#pragma once

#include <QCommandLineParser>
#include <QStringList>
#include <QVector>

#include <optional>

/// What a program ends with.
enum ExitStatus { Success = 0, Failure = 1, WrongCall = 2 };

/// Writes one line to standard output.
void print(const QString& line);
/// Writes one line on what went wrong to standard error, and returns the status.
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
        const char* valueName; ///< null if it takes no value
        const char* description;
    };

    /// Sets the name and the version of the application.
    CommandLine(const QString& program, const QString& version, const QString& description);

    /// Parses the arguments by the options, which help and version follow. Returns a status if the program ends with
    /// it: the call was wrong, which includes an option without its value or given twice unless it is one of @p
    /// repeatable, or help or version was asked for.
    std::optional<int> read(int argc, char** argv, const QVector<Option>& options, const QStringList& repeatable = {});
    /// Writes what is wrong with the call to standard error, and returns the status for that.
    static int refuse(QString error);
    /// Returns a status if there is an argument that isn't an option.
    std::optional<int> refusePositional() const;
    /// Sets the default locale to that of the option "locale". Returns a status if there is no such locale.
    std::optional<int> setLocale() const;
    /// Reads the whole number of an option into @p target, if the option is set. Returns a status if it isn't one.
    std::optional<int> readNumber(const QString& name, uint minimum, uint maximum, uint* target) const;
};
