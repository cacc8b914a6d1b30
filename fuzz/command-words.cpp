// SPDX-FileCopyrightText: 2026 The Merivo Connections developers
// SPDX-License-Identifier: MIT

// The arguments of a command line, one in each line. The files "-a b.Dia" and "-a.txt" exist.

#include "fuzz/Target.h"
#include "hostcommands/CommandExt.h"
#include "hostcommands/ModeData.h"
#include "hostcommands/PatientData.h"

#include <QFileInfo>
#include <QMap>

namespace {

/// A command with all options that exist.
class EveryOption final : public CommandExt
{
public:
    EveryOption()
        : CommandExt(nullptr)
    {}

    ICommand* command() override { return nullptr; }
    QString commandName() const override { return {}; }

    bool parseOption(QStringList& args) override
    {
        const QStringList before = args;
        const bool taken = m_mode.parseModeOption(args) || m_patient.parsePatientOption(args);
        require(args == before.mid(taken ? 2 : 0), "an option is taken with its value or not at all");
        return taken;
    }

    QMap<QString, QString> values() const
    {
        return {{"-jobid", jobId()},
                {"-mode", m_mode.mode()},
                {"-control", m_mode.control()},
                {"-puid", m_patient.puid()},
                {"-diaryname", m_patient.diaryName()}};
    }

private:
    ModeData m_mode;
    PatientData m_patient;
};

/// Returns how many arguments at the start are options and values, including an unknown option, and sets the values.
int readOptions(const QStringList& words, QMap<QString, QString>* values)
{
    int i = 0;
    while (i < words.size() && words.at(i).startsWith('-')) {
        if (!values->contains(words.at(i)) || i + 1 == words.size())
            return i + 1;
        QString value = words.at(i + 1);
        if (words.at(i) == "-control")
            value.replace("&quot;", "\"");
        values->insert(words.at(i), value);
        i += 2;
    }
    return i;
}

/// Returns the command line of the arguments that were taken.
QString lineOf(const QStringList& taken)
{
    QStringList words = taken;
    if (words.size() == 1 && QFileInfo(words.first()).isFile() && words.first().endsWith("dia", Qt::CaseInsensitive))
        words = QStringList{"import", "-filepath"} + words;
    for (QString& word : words) {
        word.replace("%20", " ");
        word.remove('\'').remove('"');
        if (word.isEmpty() || word.contains(' '))
            word = '\'' + word + '\'';
    }
    return words.join(' ');
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    static const Drive drive;
    static const QString files[] = {drive.write("-a b.Dia", "a diary"), drive.write("-a.txt", "none")};
    Q_UNUSED(files)
    static const QString from = QDir::currentPath();

    const QStringList words = QString::fromUtf8(inputOf(data, size)).split('\n');
    QStringList left = words;
    EveryOption command;
    QMap<QString, QString> values = command.values();
    const int count = readOptions(words, &values);
    // Only arguments that begin with a hyphen are taken, which as paths name files in the current folder.
    require(QDir::setCurrent(drive.misc()), "the drive can be entered");
    const bool understood = command.setArguments(left);
    const QString line = lineOf(words.mid(0, count));
    require(QDir::setCurrent(from), "the drive can be left");

    require(left == words.mid(count), "only options are taken");
    require(command.values() == values, "an option has its value");
    require(command.commandLine() == line, "the line has what was taken");
    const bool atCommand = left.isEmpty() || !left.first().startsWith('-');
    require(!understood || atCommand, "an option that isn't taken is unknown");
    require(!line.contains('"'), "a command line has no double quotes");
    require(line.count('\'') % 2 == 0, "single quotes come in pairs");
    require(line.isEmpty() == (left.size() == words.size()), "the line is empty if nothing was taken");

    // Another command takes no more arguments if the first one has understood them.
    QStringList rest = left;
    const bool more = EveryOption().setArguments(rest);
    require(!understood || (more && rest == left), "a command name isn't an option");
    return 0;
}
