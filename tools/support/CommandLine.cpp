// SPDX-FileCopyrightText: 2026 The Merivo Connections developers
// SPDX-License-Identifier: MIT
#include "tools/support/CommandLine.h"

#include "tools/support/Platform.h"

#include <QCoreApplication>
#include <QLocale>
#include <QTextStream>

#include <cstdio>

namespace {

void write(std::FILE* stream, const QString& line)
{
    QTextStream out(Platform::outputFor(stream));
    out.setCodec("UTF-8");
    out << line << Qt::endl;
}

} // namespace

void print(const QString& line)
{
    write(stdout, line);
}

int complain(ExitStatus status, const QString& what)
{
    write(stderr, QCoreApplication::applicationName() + ": " + what);
    return status;
}

int complain(ExitStatus status, const QStringList& all)
{
    for (const QString& what : all)
        complain(status, what);
    return status;
}

CommandLine::CommandLine(const QString& program, const QString& version, const QString& description)
{
    Platform::prepareProgram();
    QCoreApplication::setApplicationName(program);
    QCoreApplication::setApplicationVersion(version);
    setApplicationDescription(description);
}

int CommandLine::refuse(QString error)
{
    if (error.endsWith('.')) // as Qt's messages do
        error.chop(1);
    return complain(WrongCall, error + "; see --help");
}

std::optional<int> CommandLine::read(int argc, char** argv, const QVector<Option>& options,
                                     const QStringList& repeatable)
{
    for (const Option& option : options)
        addOption({option.name, option.description, option.valueName});
    // Not addHelpOption(), which also adds --help-all.
    addOption({{"h", "help"}, "Show this help."});
    addOption({{"v", "version"}, "Show the version."});
    if (!parse(Platform::arguments(argc, argv)))
        return refuse(errorText());
    for (const QString& name : optionNames()) {
        if (values(name).contains(QString()))
            return refuse(QString("--%1 needs a value").arg(name));
        if (values(name).size() > 1 && !repeatable.contains(name))
            return refuse(QString("--%1 may occur only once").arg(name));
    }
    if (isSet("help")) {
        int onlyTheName = 1;
        const QCoreApplication application(onlyTheName, argv); // the help text contains the program's name
        print(helpText().trimmed());
        return Success;
    }
    if (!isSet("version"))
        return std::nullopt;
    print(QCoreApplication::applicationName() + ' ' + QCoreApplication::applicationVersion());
    return Success;
}

std::optional<int> CommandLine::refusePositional() const
{
    if (positionalArguments().isEmpty())
        return std::nullopt;
    return refuse(QString("unexpected argument '%1'").arg(positionalArguments().constFirst()));
}

std::optional<int> CommandLine::setLocale() const
{
    const QString name = value("locale");
    // QLocale returns the C locale for an unknown name.
    if (!name.isEmpty() && name != "C" && QLocale(name).language() == QLocale::C)
        return refuse(QString("--locale: there is no locale '%1'").arg(name));
    if (!name.isEmpty())
        QLocale::setDefault(QLocale(name));
    return std::nullopt;
}

std::optional<int> CommandLine::readNumber(const QString& name, uint minimum, uint maximum, uint* target) const
{
    if (!isSet(name))
        return std::nullopt;
    bool isNumber = false;
    *target = value(name).toUInt(&isNumber);
    if (isNumber && *target >= minimum && *target <= maximum)
        return std::nullopt;
    return refuse(QString("--%1: '%2' isn't a whole number from %3 to %4")
                      .arg(name, value(name), QString::number(minimum), QString::number(maximum)));
}
