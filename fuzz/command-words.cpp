// SPDX-FileCopyrightText: 2026 The Merivo Connections developers
// SPDX-License-Identifier: MIT

// The words of a command line: the input's lines. The files "-a b.Dia" and "-a.txt" exist.

#include "commands/CommandExt.h"
#include "commands/ModeData.h"
#include "commands/PatientData.h"
#include "fuzz/Drive.h"

#include <QFileInfo>
#include <QMap>

namespace {

/// A command that takes every option that there is.
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
        require(args == before.mid(taken ? 2 : 0), "an option is taken with its value or left");
        return taken;
    }

    QMap<QString, QString> values() const
    {
        return {{QStringLiteral("-jobid"), jobId()},
                {QStringLiteral("-mode"), m_mode.mode()},
                {QStringLiteral("-control"), m_mode.control()},
                {QStringLiteral("-puid"), m_patient.puid()},
                {QStringLiteral("-diaryname"), m_patient.diaryName()}};
    }

private:
    ModeData m_mode;
    PatientData m_patient;
};

/// How many words are options and their values, the one included that isn't known; and the values.
int readOptions(const QStringList& words, QMap<QString, QString>* values)
{
    int i = 0;
    while (i < words.size() && words.at(i).startsWith(QLatin1Char('-'))) {
        if (!values->contains(words.at(i)) || i + 1 == words.size())
            return i + 1;
        QString value = words.at(i + 1);
        if (words.at(i) == QLatin1String("-control"))
            value.replace(QLatin1String("&quot;"), QLatin1String("\""));
        values->insert(words.at(i), value);
        i += 2;
    }
    return i;
}

/// The line that stands for what was taken.
QString lineOf(const QStringList& taken)
{
    QStringList words = taken;
    if (words.size() == 1 && QFileInfo(words.first()).isFile() &&
        words.first().endsWith(QLatin1String("dia"), Qt::CaseInsensitive))
        words = QStringList{QStringLiteral("import"), QStringLiteral("-filepath")} + words;
    for (QString& word : words) {
        word.replace(QLatin1String("%20"), QLatin1String(" "));
        word.remove(QLatin1Char('\'')).remove(QLatin1Char('"'));
        if (word.isEmpty() || word.contains(QLatin1Char(' ')))
            word = QLatin1Char('\'') + word + QLatin1Char('\'');
    }
    return words.join(QLatin1Char(' '));
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    silenceLog();
    static const Drive drive;
    static const QString files[] = {drive.write(QStringLiteral("-a b.Dia"), "a diary"),
                                    drive.write(QStringLiteral("-a.txt"), "none")};
    Q_UNUSED(files)
    static const QString from = QDir::currentPath();

    const QStringList words = Input(data, size).takeText().split(QLatin1Char('\n'));
    QStringList left = words;
    EveryOption command;
    QMap<QString, QString> values = command.values();
    const int count = readOptions(words, &values);
    // A word that is taken begins with a hyphen, so only a file of the folder that the program is in can have its name.
    require(QDir::setCurrent(drive.misc()), "the drive can be entered");
    const bool understood = command.setArguments(left);
    const QString line = lineOf(words.mid(0, count));
    require(QDir::setCurrent(from), "the drive can be left");

    require(left == words.mid(count), "options are taken, and what follows them is left");
    require(command.values() == values, "an option has its value");
    require(command.commandLine() == line, "the line has what was taken");
    const bool atCommand = left.isEmpty() || !left.first().startsWith(QLatin1Char('-'));
    require(!understood || atCommand, "an option stops only as unknown");
    require(!line.contains(QLatin1Char('"')), "a command line has no double quotes");
    require(line.count(QLatin1Char('\'')) % 2 == 0, "single quotes come in pairs");
    require(line.isEmpty() == (left.size() == words.size()), "what was taken shows");

    // What is left is read no further by a command that is asked again, and understood means just that.
    QStringList rest = left;
    const bool more = EveryOption().setArguments(rest);
    require(!understood || (more && rest == left), "a command's word is no option");
    return 0;
}
